// SPDX-License-Identifier: MIT
// Descriptions and selectors as tests write them.
#ifndef DESCRIPTIONS_H
#define DESCRIPTIONS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

inline QJsonObject leaf(const QString &name, const QString &type, QJsonObject more = {})
{
    more.insert("name", name);
    more.insert("type", type);
    return more;
}

inline QJsonObject description(const QJsonArray &elements)
{
    return {{"format", "process-data-description/1"}, {"elements", elements}};
}

inline QString selectorUrl(const QString &module, const QString &path,
                           const QString &object = "Controller", const QString &instance = "1")
{
    return QString("processdata://%1/%2/%3/%4").arg(module, object, instance, path);
}

#endif
