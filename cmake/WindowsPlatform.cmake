# The libraries that Windows alone brings, each under the name of what it serves,
# and what its compiler must be told.

add_library(tarvel_platform_http INTERFACE)
target_link_libraries(tarvel_platform_http INTERFACE winhttp)

# What OpenSSL and the loopback of the tests stand on.
add_library(tarvel_platform_loopback INTERFACE)
target_link_libraries(tarvel_platform_loopback INTERFACE ws2_32 crypt32)

add_library(tarvel_platform_run_guard INTERFACE)
target_link_libraries(tarvel_platform_run_guard INTERFACE winmm)

# Offsets of 64 bits, wide calls alone, and no macros named like functions.
add_compile_definitions(_FILE_OFFSET_BITS=64 UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
# Nobody calls it: see base/WindowsThreadEnd.cpp.
add_link_options(LINKER:--undefined=destroyBeforeFreeing)
# The codec and tag libraries are linked statically.
add_compile_definitions(FLAC__NO_DLL TAGLIB_STATIC)

# What makes an executable the program: no console window, its icon, its version and
# its manifest.
enable_language(RC)
function(tarvel_finish_program target)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/program.rc)
    set(manifest ${CMAKE_CURRENT_BINARY_DIR}/program.manifest)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${resource} @ONLY)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.manifest.in ${manifest} @ONLY)
    target_sources(${target} PRIVATE ${resource})
    set_source_files_properties(${resource} PROPERTIES
        OBJECT_DEPENDS "${manifest};${PROJECT_SOURCE_DIR}/packaging/icon.ico")
    set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ON)
endfunction()

# No drive can be played to a whole program here.
function(tarvel_add_played_drive)
endfunction()

# FFmpeg is built here with what the program uses of it, and linked in no time.
function(tarvel_add_media_module)
endfunction()
function(tarvel_load_media_at_need target)
endfunction()
