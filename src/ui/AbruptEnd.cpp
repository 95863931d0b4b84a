#include "ui/AbruptEnd.h"

#include <cstdlib>

namespace {

AbruptEnd* replacementEnd = nullptr;

} // namespace

void AbruptEnd::endProcess()
{
    std::_Exit(EXIT_SUCCESS);
}

AbruptEndOverride::AbruptEndOverride(AbruptEnd& replacement) : previous(replacementEnd)
{
    replacementEnd = &replacement;
}

AbruptEndOverride::~AbruptEndOverride()
{
    replacementEnd = previous;
}

AbruptEnd& abruptEnd()
{
    static AbruptEnd own;
    return replacementEnd ? *replacementEnd : own;
}
