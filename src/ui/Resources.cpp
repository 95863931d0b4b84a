#include "ui/Resources.h"

#include <QtGlobal>
#include <QDir>

void initResources()
{
    Q_INIT_RESOURCE(resources);
}
