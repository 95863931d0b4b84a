#include "disc/DrivePlatform.h"

DrivePlatform& drivePlatform()
{
    static const std::unique_ptr<DrivePlatform> own = makeDrivePlatform();
    return DrivePlatformOverride::orElse(*own);
}
