// SPDX-License-Identifier: MIT
// Reading single values out of JSON.
#ifndef JSONFUNCTIONS_H
#define JSONFUNCTIONS_H

#include "ProcessDataPlatformExport.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

// Called by the library while it reads lists of registered providers.
// Threads: reentrant; any thread, also at the same time. None of them logs.

/// Reads one value of an object.
///
/// @param key     a single key, never split
/// @param value   receives the value; not to be relied on when the result is false
/// @returns whether the object holds the key
PROCESSDATAPLATFORM_EXPORT bool readJsonValue(const QString &key, const QJsonObject &object,
                                              QJsonValue &value);

/// Reads an array at the end of a path of objects.
///
/// @param key    keys joined by "/"
/// @param array  receives the array; not to be relied on when the result is false
/// @returns false when a step of the path is missing or no object, or its end is no array
PROCESSDATAPLATFORM_EXPORT bool readJsonArrayFromJson(const QString &key, const QJsonObject &object,
                                                      QJsonArray &array);

/// Parses JSON text that holds an array.
///
/// @returns the array; an empty one when the text is empty, no JSON or no array
PROCESSDATAPLATFORM_EXPORT QJsonArray createJsonArrayFromJsonString(const QString &text);

#endif
