#include "ui/Resources.h"

#include <QDir>

void initResources()
{
    Q_INIT_RESOURCE(resources);
}
