// SPDX-License-Identifier: MIT
// Tells by their keys what columns hold.
#include "ScreenColumns.h"

#include "AgeText.h"

#include <QDateTime>
#include <QHash>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1000000;

QString ageOf(const Cell &cell, qint64 now)
{
    const QDateTime time = QDateTime::fromString(cell.machineText, Qt::ISODateWithMs);
    return time.isValid() ? ageText(time.toMSecsSinceEpoch() * nanosecondsPerMillisecond, now)
                          : printable(cell.text);
}

QString shortened(const QString &text, int width, ColumnKind kind)
{
    if (text.size() <= width) {
        return text;
    }
    return kind == ColumnKind::Text ? text.left(width - 1) + ellipsis
                                    : ellipsis + text.right(width - 1);
}

} // namespace

ColumnKind kindOf(const Column &column)
{
    static const QHash<QString, ColumnKind> kinds{
        {QStringLiteral("url"), ColumnKind::Name},
        {QStringLiteral("place"), ColumnKind::Name},
        {QStringLiteral("source"), ColumnKind::Name},
        {QStringLiteral("subject"), ColumnKind::Path},
        {QStringLiteral("file"), ColumnKind::Path},
        {QStringLiteral("description"), ColumnKind::Text},
        {QStringLiteral("value"), ColumnKind::Value},
        {QStringLiteral("before"), ColumnKind::Value},
        {QStringLiteral("after"), ColumnKind::Value},
        {QStringLiteral("time"), ColumnKind::Time},
        {QStringLiteral("note"), ColumnKind::Prose},
        {QStringLiteral("finding"), ColumnKind::Prose},
        {QStringLiteral("advice"), ColumnKind::Prose},
    };
    return kinds.value(column.key, ColumnKind::Other);
}

QString titleOf(const Column &column)
{
    return kindOf(column) == ColumnKind::Time ? QStringLiteral("AGE") : column.key.toUpper();
}

bool isAlignedRight(const Column &column)
{
    return column.alignRight || kindOf(column) == ColumnKind::Time;
}

QStringList shortened(QStringList texts, int width, ColumnKind kind)
{
    for (QString &text : texts) {
        text = shortened(text, width, kind);
    }
    return texts;
}

QString shownText(const Cell &cell, ColumnKind kind, qint64 now)
{
    if (kind == ColumnKind::Time) {
        return ageOf(cell, now);
    }
    return kind == ColumnKind::Name ? cell.text : printable(cell.text);
}
