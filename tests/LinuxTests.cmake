target_sources(tarvel_test_support PRIVATE support/LinuxStuckFile.cpp)
if(TARVEL_BUILD_ENDURANCE)
    add_subdirectory(endurance)
endif()
