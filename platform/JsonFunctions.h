// SPDX-License-Identifier: MIT
// Reading single values out of JSON.
#ifndef JSONFUNCTIONS_H
#define JSONFUNCTIONS_H

#include "ProcessDataPlatformExport.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/// Reads one value of an object. Called by the library while it reads lists of registered
/// providers.
///
/// @param key     a single key, never split
/// @param object  in which it is looked for, not deeper
/// @param value   receives the value; not to be relied on when the result is false
/// @returns whether the object holds the key
/// Errors:  told by the result alone: it must not log.
/// Threads: reentrant; any, also at the same time.
PROCESSDATAPLATFORM_EXPORT bool readJsonValue(const QString &key, const QJsonObject &object,
                                              QJsonValue &value);

/// Reads an array at the end of a path of objects. Called like readJsonValue.
///
/// @param key     keys joined by "/"
/// @param object  where the path begins
/// @param array   receives the array; not to be relied on when the result is false
/// @returns false when a step of the path is missing or not an object, or its end is not an array
/// Errors:  told by the result alone: it must not log.
/// Threads: reentrant; any, also at the same time.
PROCESSDATAPLATFORM_EXPORT bool readJsonArrayFromJson(const QString &key, const QJsonObject &object,
                                                      QJsonArray &array);

/// Parses JSON text that holds an array. Called like readJsonValue.
///
/// @param text  of a list of providers, as a client handed it over
/// @returns the array; an empty one when the text is empty, no JSON or no array
/// Errors:  told by the result alone: it must not log.
/// Threads: reentrant; any, also at the same time.
PROCESSDATAPLATFORM_EXPORT QJsonArray createJsonArrayFromJsonString(const QString &text);

#endif
