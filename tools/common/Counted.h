// SPDX-License-Identifier: MIT
// Numbers with their noun.
#ifndef COUNTED_H
#define COUNTED_H

#include <QString>

/// "1 leaf", "2 leaves", "0 leaves".
inline QString counted(qint64 number, const char *one, const char *more)
{
    return QStringLiteral("%1 %2").arg(number).arg(QLatin1String(number == 1 ? one : more));
}

#endif
