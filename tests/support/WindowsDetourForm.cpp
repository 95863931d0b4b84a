#include "support/DetourForm.h"

bool detourIsAProxy()
{
    return true;
}
