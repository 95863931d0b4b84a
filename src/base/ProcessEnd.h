#pragma once

/// The last step of main: what it returns goes to the system as the process's exit
/// code. Where the libraries cannot be trusted to clean up behind main, the process
/// ends here.
int endOfMain(int exitCode);
