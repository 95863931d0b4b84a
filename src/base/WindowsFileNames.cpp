#include "base/FileNames.h"

#include <QRegularExpression>

namespace {

// The superscript digits are the ports' digits as well.
const QRegularExpression& deviceName()
{
    static const QRegularExpression name(
        QStringLiteral("^(CON|PRN|AUX|NUL|CONIN\\$|CONOUT\\$|(COM|LPT)[0-9\u00B9\u00B2\u00B3])\\s*(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    return name;
}

} // namespace

qsizetype nameLength(const QString& name)
{
    return name.size();
}

QString harmlessName(QString name)
{
    static const QRegularExpression control(QStringLiteral("[\\x00-\\x1F]"));
    name.remove(control);
    while (name.endsWith(u'.') || name.endsWith(u' '))
        name.chop(1);
    if (const auto device = deviceName().match(name); device.hasMatch())
        name.insert(device.capturedEnd(1), u'_');
    return name;
}
