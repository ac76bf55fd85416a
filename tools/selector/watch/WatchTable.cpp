// SPDX-License-Identifier: MIT
// Keeps the rows of watched selectors.
#include "WatchTable.h"

#include "KeyDecoder.h"
#include "ScreenColumns.h"

#include <QUrl>

#include <algorithm>

namespace {

// Ages change all the time; that does not stand out.
bool mayStandOut(const Column &column)
{
    return column.key != QLatin1String("time");
}

} // namespace

WatchTable::WatchTable(const QVector<WatchTarget> &targets)
    : columns(readColumns())
{
    for (const WatchTarget &target : targets) {
        Row row;
        row.name = target.name + QLatin1Char(' ') + QUrl::fromPercentEncoding(target.url.toUtf8());
        rows.append(row);
    }
}

void WatchTable::take(const QVector<ReadResult> &results, qint64 moment)
{
    for (int i = 0; i < rows.size(); ++i) {
        Row &row = rows[i];
        const Entry entry = readEntry(results.at(i));
        const bool isFirst = row.entry.rows.isEmpty();
        row.changed.resize(columns.size());
        for (int cell = 0; !isFirst && cell < columns.size(); ++cell) {
            if (mayStandOut(columns.at(cell))
                && entry.rows.first().at(cell).machineText
                    != row.entry.rows.first().at(cell).machineText) {
                row.changed[cell] = std::max<qint64>(moment, 1);
            }
        }
        row.entry = entry;
    }
}

WatchTable::Answer WatchTable::press(const QString &key)
{
    const QChar character = key.isEmpty() ? QChar() : key.at(0);
    if (!typing) {
        if (character == QLatin1Char('q')) {
            return Answer::Leave;
        }
        const bool clears = character == QChar(escapeKey) && !filter.isEmpty();
        if (clears) {
            filter.clear();
        }
        typing = character == QLatin1Char('/');
        return clears || typing ? Answer::Draw : Answer::Nothing;
    }
    if (character == QChar(enterKey) || character == QChar(escapeKey)) {
        typing = false;
        filter = character == QChar(escapeKey) ? QString() : filter;
    } else if (character == QChar(backspaceKey)) {
        filter.chop(filter.size() > 1 && filter.at(filter.size() - 1).isLowSurrogate() ? 2 : 1);
    } else if (character.isPrint() || character.isSurrogate()) {
        filter += key;
    }
    return Answer::Draw;
}

bool WatchTable::isWanted(const Row &row) const
{
    return !row.entry.rows.isEmpty() && row.name.contains(filter, Qt::CaseInsensitive);
}

QVector<ScreenRow> WatchTable::wantedRows(qint64 moment) const
{
    QVector<ScreenRow> wanted;
    for (const Row &row : rows) {
        if (!isWanted(row)) {
            continue;
        }
        ScreenRow shown{row.entry.rows.first(), row.entry.state, {}};
        for (const qint64 changed : row.changed) {
            shown.changed.append(changed != 0 && moment - changed < changeStands);
        }
        wanted.append(shown);
    }
    return wanted;
}

QStringList WatchTable::frame(const Style &style, int height, qint64 moment)
{
    const QVector<ScreenRow> wanted = wantedRows(moment);
    if (style.width != widthOfScreen) {
        widths.clear();
        widthOfScreen = style.width;
    }
    const ScreenTable table(columns, wanted, style, widths);
    QStringList lines = table.header(style.legend);
    if (!wanted.isEmpty()) {
        widths = table.columnWidths();
    }
    const int room = std::max(0, height - 1);
    lines = lines.mid(0, room);
    const int most = room - lines.size();
    int shown = 0;
    for (; shown < wanted.size(); ++shown) {
        QStringList ofRow = table.lines(shown);
        if (ofRow.size() > most && most > 1) { // it would hide itself
            ofRow = ofRow.mid(0, most - 1) << QStringLiteral("    ") + ellipsis;
        }
        if (lines.size() + ofRow.size() > room) {
            break;
        }
        lines += ofRow;
    }
    while (lines.size() < room) {
        lines.append(QString());
    }
    lines.append(lastLine(wanted.size(), wanted.size() - shown).left(style.width));
    return lines;
}

QString WatchTable::lastLine(int wanted, int hidden) const
{
    if (typing) {
        return QStringLiteral("/%1_").arg(printable(filter));
    }
    QStringList parts;
    if (hidden > 0) {
        parts.append(QStringLiteral("%1 of %2 rows do not fit").arg(hidden).arg(wanted));
    }
    if (!filter.isEmpty()) {
        parts.append(QStringLiteral("%1 of %2 rows have \"%3\"")
                         .arg(wanted)
                         .arg(rows.size())
                         .arg(printable(filter)));
    }
    parts.append(filter.isEmpty() ? QStringLiteral("q quits, / filters")
                                  : QStringLiteral("q quits, / filters, Esc shows all"));
    return parts.join(QStringLiteral("; "));
}

QString WatchTable::report(const Style &style) const
{
    Report report{QString(), columns, {}};
    for (const Row &row : rows) {
        if (!row.entry.rows.isEmpty()) {
            report.entries.append(row.entry);
        }
    }
    return render(report, style);
}
