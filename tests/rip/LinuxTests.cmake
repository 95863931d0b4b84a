# The system's own calls, played by a simulated drive.
target_sources(tarvel_test_rip PRIVATE
    ../support/LinuxPlatformDrive.cpp ../support/SgIoAnswers.cpp ../support/SgIoCalls.cpp ../support/SgIoStandIn.cpp)
target_link_libraries(tarvel_test_rip PRIVATE tarvel_platform_run_guard)
