target_sources(tarvel_test_metadata_net PRIVATE http/LinuxHttpTest.cpp)

# Asks for more than its memory holds, in a process of its own.
add_executable(tarvel_scarce_memory_probe http/LinuxScarceMemoryProbe.cpp)
target_link_libraries(tarvel_scarce_memory_probe PRIVATE tarvel_options tarvel_metadata)
target_compile_definitions(tarvel_test_metadata_net PRIVATE
    TARVEL_SCARCE_MEMORY_PROBE="$<TARGET_FILE:tarvel_scarce_memory_probe>")
add_dependencies(tarvel_test_metadata_net tarvel_scarce_memory_probe)
