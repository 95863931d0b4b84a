#include "disc/DrivePlatform.h"

namespace {

DrivePlatform* replacementPlatform = nullptr;

} // namespace

DrivePlatform& drivePlatform()
{
    static const std::unique_ptr<DrivePlatform> own = makeDrivePlatform();
    return replacementPlatform ? *replacementPlatform : *own;
}

DrivePlatformOverride::DrivePlatformOverride(DrivePlatform& replacement) : previous(replacementPlatform)
{
    replacementPlatform = &replacement;
}

DrivePlatformOverride::~DrivePlatformOverride()
{
    replacementPlatform = previous;
}
