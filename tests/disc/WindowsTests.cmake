# The system's own calls, played by a simulated drive.
target_sources(tarvel_test_disc PRIVATE ../support/WindowsDriveCalls.cpp ../support/WindowsDriveStandIn.cpp)
