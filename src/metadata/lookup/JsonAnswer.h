#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLatin1String>

/// The array at a key of a service's answer; empty when the answer is no JSON
/// object or has no such array.
inline QJsonArray jsonArray(const QByteArray& body, QLatin1String key)
{
    return QJsonDocument::fromJson(body).object()[key].toArray();
}
