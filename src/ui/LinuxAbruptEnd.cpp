#include "ui/AbruptEnd.h"

#include <cstdlib>

void AbruptEnd::endProcess()
{
    std::_Exit(EXIT_SUCCESS);
}
