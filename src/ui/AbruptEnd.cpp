#include "ui/AbruptEnd.h"

AbruptEnd& abruptEnd()
{
    static AbruptEnd own;
    return AbruptEndOverride::orElse(own);
}
