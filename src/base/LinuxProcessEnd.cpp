#include "base/ProcessEnd.h"

int endOfMain(int exitCode)
{
    return exitCode;
}
