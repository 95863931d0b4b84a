add_executable(tarvel_convert_at_need ConvertAtNeed.cpp)
target_link_libraries(tarvel_convert_at_need PRIVATE tarvel_options)
tarvel_load_media_at_need(tarvel_convert_at_need)
target_compile_definitions(tarvel_test_codecs PRIVATE
    TARVEL_CONVERT_AT_NEED="$<TARGET_FILE:tarvel_convert_at_need>"
    TARVEL_MEDIA_MODULE="$<TARGET_FILE:tarvel_media_module>"
    TARVEL_PROGRAM="$<TARGET_FILE:tarvel-cd-ripper>")
add_dependencies(tarvel_test_codecs tarvel_convert_at_need tarvel-cd-ripper)
