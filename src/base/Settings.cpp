#include "base/Settings.h"

QString driveOffsetKey(const QString& driveModel)
{
    QString model = driveModel;
    model.replace(u'/', u'_').replace(u'\\', u'_');
    return QStringLiteral("driveOffsets/") + model;
}
