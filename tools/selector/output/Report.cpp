// SPDX-License-Identifier: MIT
// Renders reports.
#include "Report.h"

#include "EscapedText.h"
#include "ScreenTable.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <numeric>

namespace {

const QLatin1String bold("\x1b[1m");
const QLatin1String red("\x1b[31m");
const QLatin1String yellow("\x1b[33m");
const QLatin1String plain("\x1b[0m");

QString coloured(const QString &text, const QLatin1String &colour, bool wanted)
{
    return wanted && colour.size() > 0 ? colour + text + plain : text;
}

QLatin1String colourOf(Entry::State state)
{
    switch (state) {
    case Entry::Failed:
        return red;
    case Entry::Doubtful:
    case Entry::Skipped:
        return yellow;
    case Entry::Good:
        break;
    }
    return QLatin1String();
}

QString joined(const QVector<Column> &columns, const QVector<int> &widths, const QStringList &cells)
{
    QString line;
    for (int i = 0; i < cells.size(); ++i) {
        const QString &cell = cells.at(i);
        const bool last = i == cells.size() - 1;
        line += columns.at(i).alignRight ? cell.rightJustified(widths.at(i))
                                         : cell.leftJustified(last ? 0 : widths.at(i));
        line += last ? QString() : QStringLiteral("  ");
    }
    while (line.endsWith(QLatin1Char(' '))) {
        line.chop(1);
    }
    return line;
}

// An empty cell would shift the ones behind it for whoever splits the line at blanks.
QStringList tableCells(const Row &row)
{
    QStringList cells;
    for (int i = 0; i < row.size(); ++i) {
        const QString text = printable(row.at(i).text);
        const bool last = i == row.size() - 1;
        cells.append(text.isEmpty() && !last ? QStringLiteral("-") : text);
    }
    return cells;
}

QStringList titles(const QVector<Column> &columns)
{
    QStringList result;
    for (const Column &column : columns) {
        result.append(column.key.toUpper());
    }
    return result;
}

QString renderTable(const Report &report, const Style &style)
{
    QVector<int> widths;
    for (const Column &column : report.columns) {
        widths.append(column.key.size());
    }
    for (const Entry &entry : report.entries) {
        for (const Row &row : entry.rows) {
            const QStringList cells = tableCells(row);
            for (int i = 0; i < cells.size(); ++i) {
                widths[i] = std::max(widths.at(i), cells.at(i).size());
            }
        }
    }
    QString text;
    if (style.legend) {
        text = renderTableHeader(report.columns, widths, style.colour) + QLatin1Char('\n');
    }
    for (const Entry &entry : report.entries) {
        for (const Row &row : entry.rows) {
            text += renderTableLine(report.columns, widths, row, entry.state, style.colour)
                + QLatin1Char('\n');
        }
    }
    return text;
}

QString renderQuiet(const Report &report)
{
    QString text;
    for (const Entry &entry : report.entries) {
        if (report.quietNames && entry.state == Entry::Failed) {
            continue;
        }
        const int count = report.quietNames ? 1 : entry.rows.size();
        for (int i = 0; i < count; ++i) {
            const Cell &cell = entry.rows.at(i).at(report.quietColumn);
            text += (report.quietNames ? printable(cell.machineText) : renderQuietLine(cell))
                + QLatin1Char('\n');
        }
    }
    return text;
}

// Positions of the columns in the order of CSV.
QVector<int> csvOrder(const QVector<Column> &columns)
{
    QVector<int> order(columns.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_partition(order.begin(), order.end(),
                          [&](int i) { return columns.at(i).place == Column::Alike; });
    return order;
}

// What people see.
Report forTable(Report report)
{
    for (int i = report.columns.size() - 1; i >= 0; --i) {
        if (report.columns.at(i).place != Column::CsvAlone) {
            continue;
        }
        report.columns.removeAt(i);
        for (Entry &entry : report.entries) {
            for (Row &row : entry.rows) {
                if (i < row.size()) { // rows of a tree end with its names
                    row.removeAt(i);
                }
            }
        }
    }
    return report;
}

QString renderCsv(const Report &report, bool legend)
{
    const QVector<int> order = csvOrder(report.columns);
    QStringList header;
    for (const int column : order) {
        header.append(report.columns.at(column).key);
    }
    QString text = legend ? renderCsvLine(header) + QLatin1Char('\n') : QString();
    for (const Entry &entry : report.entries) {
        for (const Row &row : entry.rows) {
            QStringList fields;
            for (const int column : order) {
                fields.append(row.at(column).machineText);
            }
            text += renderCsvLine(fields) + QLatin1Char('\n');
        }
    }
    return text;
}

QString renderPairs(const Report &report)
{
    QString text;
    for (const Entry &entry : report.entries) {
        text += entry.pair + QLatin1Char('\n');
    }
    return text;
}

QString renderJson(const Report &report, bool pretty)
{
    QJsonArray results;
    for (const Entry &entry : report.entries) {
        results.append(entry.json);
    }
    const QJsonDocument document(QJsonObject{{QStringLiteral("schema"), report.schema},
                                             {QStringLiteral("results"), results}});
    const QByteArray json
        = document.toJson(pretty ? QJsonDocument::Indented : QJsonDocument::Compact);
    return QString::fromUtf8(json.trimmed()) + QLatin1Char('\n');
}

} // namespace

QVector<Column> columnsOf(const char *keys)
{
    QVector<Column> columns;
    const QStringList all = QString::fromLatin1(keys).split(QLatin1Char(' '));
    for (QString key : all) {
        const Column::Place place = key.endsWith(QLatin1Char('+')) ? Column::LastInCsv
            : key.endsWith(QLatin1Char('|'))                       ? Column::CsvAlone
                                                                   : Column::Alike;
        key.chop(place == Column::Alike ? 0 : 1);
        const bool alignRight = key.endsWith(QLatin1Char('>'));
        columns.append({alignRight ? key.chopped(1) : key, alignRight, place});
    }
    return columns;
}

ExitCode Entry::exitCode() const
{
    return state == Failed || state == Doubtful ? failure : ExitAllGood;
}

ExitCode Report::exitCode() const
{
    return std::accumulate(
        entries.begin(), entries.end(), ExitAllGood,
        [](ExitCode code, const Entry &entry) { return graver(code, entry.exitCode()); });
}

ExitCode graver(ExitCode one, ExitCode other)
{
    for (const ExitCode code : {ExitTimeLimit, ExitDenied, ExitSomeFailed}) {
        if (one == code || other == code) {
            return code;
        }
    }
    return ExitAllGood;
}

QString render(const Report &report, const Style &style)
{
    if (style.quiet && report.quietColumn >= 0) {
        return renderQuiet(report);
    }
    switch (style.format) {
    case Format::Json:
        return renderJson(report, style.pretty);
    case Format::Csv:
        return renderCsv(report, style.legend);
    case Format::Pairs:
        return renderPairs(report);
    case Format::Table:
        break;
    }
    const Report seen = forTable(report);
    return style.width > 0 ? renderForScreen(seen, style) : renderTable(seen, style);
}

QString inColourOf(Entry::State state, const QString &text, bool wanted)
{
    return coloured(text, colourOf(state), wanted);
}

QString asTitle(const QString &text, bool colour)
{
    return coloured(text, bold, colour);
}

QString renderTableLine(const QVector<Column> &columns, const QVector<int> &widths, const Row &row,
                        Entry::State state, bool colour)
{
    return inColourOf(state, joined(columns, widths, tableCells(row)), colour);
}

QString renderTableHeader(const QVector<Column> &columns, const QVector<int> &widths, bool colour)
{
    return asTitle(joined(columns, widths, titles(columns)), colour);
}

QString renderCsvLine(const QStringList &fields)
{
    QStringList quoted;
    for (const QString &field : fields) {
        const bool plainField = std::none_of(field.begin(), field.end(), [](QChar c) {
            return c == QLatin1Char(',') || c == QLatin1Char('"') || c == QLatin1Char('\n')
                || c == QLatin1Char('\r');
        });
        QString text = field;
        quoted.append(plainField
                          ? text
                          : QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\""))
                              + QLatin1Char('"'));
    }
    return quoted.join(QLatin1Char(','));
}

QString renderQuietLine(const Cell &cell)
{
    return cell.machineText.isEmpty() && !cell.holdsValue ? QString()
                                                          : escapedText(cell.machineText);
}
