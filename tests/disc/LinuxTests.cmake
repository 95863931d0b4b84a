# The system's own calls, played by a simulated drive.
target_sources(tarvel_test_disc PRIVATE ../support/SgIoAnswers.cpp ../support/SgIoCalls.cpp ../support/SgIoStandIn.cpp)
