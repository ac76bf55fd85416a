// SPDX-License-Identifier: MIT
// The device's own interface: sources and values of a JSON file, which all processes share.
//
// The file that the environment variable BARE_DEVICE names holds "descriptions", an array, and
// "values": by MODULE/OBJECT/INSTANCE/PATH objects with "value", and perhaps "state" (a number of
// ErrorTypes) and "since" (microseconds since 1970-01-01 00:00 UTC, as text).
#ifndef BAREDEVICE_H
#define BAREDEVICE_H

#include <QJsonObject>
#include <QString>

namespace BareDevice {

bool isThere();

bool serves(const QString &module);

/// Empty when there is none.
QJsonObject description(const QString &module, const QString &object, const QString &instance);

/// Empty when there is none.
QJsonObject value(const QString &key);

bool setValue(const QString &key, const QJsonObject &value);

} // namespace BareDevice

#endif
