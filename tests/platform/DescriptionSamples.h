// SPDX-License-Identifier: MIT
// Descriptions that keep every rule, and ways to break one.
#ifndef DESCRIPTIONSAMPLES_H
#define DESCRIPTIONSAMPLES_H

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

inline QJsonObject leaf(const QString &name, qint64 offset, const QString &type = "float64")
{
    return {{"name", name}, {"type", type}, {"offset", offset}};
}

inline QJsonObject with(QJsonObject object, const QString &key, const QJsonValue &value)
{
    object.insert(key, value);
    return object;
}

inline QJsonObject without(QJsonObject object, const QString &key)
{
    object.remove(key);
    return object;
}

inline QJsonObject document(const QJsonArray &elements)
{
    return {{"format", "process-data-description/1"},
            {"module", "Pump"},
            {"object", "Controller"},
            {"instance", "1"},
            {"session", 5},
            {"buffer",
             QJsonObject{{"name", "/processdata.Pump_Controller_1.7"},
                         {"generation", 7},
                         {"size", 384},
                         {"ownerUid", 990}}},
            {"elements", elements}};
}

inline QJsonObject withBuffer(const QString &key, const QJsonValue &value)
{
    QJsonObject whole = document({});
    return with(whole, "buffer", with(whole.value("buffer").toObject(), key, value));
}

inline QJsonObject withLeaf(const QString &key, const QJsonValue &value)
{
    return document({with(leaf("a", 192), key, value)});
}

#endif
