#include "ui/AbruptEnd.h"

#include <windows.h>

#include <cstdlib>

// Any other way out lets the libraries clean up under the threads that it has
// already ended.
void AbruptEnd::endProcess()
{
    TerminateProcess(GetCurrentProcess(), EXIT_SUCCESS);
}
