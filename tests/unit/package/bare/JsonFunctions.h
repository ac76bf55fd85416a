// SPDX-License-Identifier: MIT
// JSON functions.
#ifndef JSONFUNCTIONS_H
#define JSONFUNCTIONS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

bool readJsonValue(const QString &key, const QJsonObject &object, QJsonValue &value);
bool readJsonArrayFromJson(const QString &key, const QJsonObject &object, QJsonArray &array);
QJsonArray createJsonArrayFromJsonString(const QString &text);

#endif
