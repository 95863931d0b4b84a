#include "support/DetourForm.h"

bool detourIsAProxy()
{
    return false;
}
