# The system's own calls, played by a simulated drive.
target_sources(tarvel_test_rip PRIVATE WindowsOutputFolderTest.cpp
    ../support/WindowsPlatformDrive.cpp ../support/WindowsDriveCalls.cpp ../support/WindowsDriveStandIn.cpp)
