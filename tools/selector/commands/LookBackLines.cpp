// SPDX-License-Identifier: MIT
// Rows of a history as a table, CSV or JSON.
#include "LookBackLines.h"

#include "Entries.h"
#include "ErrorTypeText.h"
#include "ValueText.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr int timeWidth = 23;
constexpr int valueWidth = 12;
constexpr int unitWidth = 6;
constexpr int errorWidth = 11;

ProcessDataAccess::ErrorType errorOf(const HistorySample &sample)
{
    return ProcessDataAccess::ErrorType(int(sample.errorType));
}

Cell timeCell(qint64 time)
{
    return {timeToText(time), timeToIsoText(time)};
}

Cell valueCell(const QVariant &value)
{
    const QVariant shown = shownValue(value);
    return {valueToShortText(shown), valueToText(shown)};
}

QString sampleNote(const HistorySample &sample)
{
    QStringList notes{explainErrorType(errorOf(sample))};
    if (sample.late) {
        notes.append(QStringLiteral("older than one before it: a clock was set back"));
    }
    notes.removeAll(QString());
    return notes.join(QStringLiteral("; "));
}

Cell pieceCell(const QString &aggregate, const HistoryPiece &piece)
{
    const bool numbers = piece.numbers > 0;
    return aggregate == QLatin1String("first") ? valueCell(piece.first.value)
        : aggregate == QLatin1String("last")   ? valueCell(piece.last.value)
        : !numbers                             ? Cell(QString())
        : aggregate == QLatin1String("min")    ? valueCell(piece.least)
        : aggregate == QLatin1String("max")    ? valueCell(piece.greatest)
                                               : valueCell(piece.mean);
}

QString pieceNote(const HistoryPiece &piece, const QStringList &units)
{
    const auto first = errorOf(piece.first);
    const auto last = errorOf(piece.last);
    QStringList notes;
    if (units.size() > 1) {
        notes.append(QStringLiteral("different units: ") + units.join(QStringLiteral(", ")));
    }
    if (first != ProcessDataAccess::ErrorType::NoError) {
        notes.append(QStringLiteral("first: ") + errorTypeName(first));
    }
    if (last != ProcessDataAccess::ErrorType::NoError) {
        notes.append(QStringLiteral("last: ") + errorTypeName(last));
    }
    return notes.join(QStringLiteral("; "));
}

} // namespace

LookBackLines::LookBackLines(const LookBack &asked, int widest, const Console &console)
    : asked(asked)
    , console(console)
    , withUrl(widest > 0 || console.style.format != Format::Table)
{
    if (withUrl) {
        columns = columnsOf("url");
        widths = {widest};
    }
    if (asked.inPieces()) {
        columns += columnsOf("from count>");
        widths += {timeWidth, 6};
        for (const QString &aggregate : asked.aggregates) {
            columns.append({aggregate, true});
            widths.append(valueWidth);
        }
        columns += columnsOf("unit note");
        widths += {unitWidth, 0};
    } else {
        columns += columnsOf("time value> unit error note");
        widths += {timeWidth, valueWidth, unitWidth, errorWidth, 0};
    }
}

void LookBackLines::begin()
{
    if (console.style.format == Format::Json) {
        const QJsonObject head{{QStringLiteral("schema"), QStringLiteral("selector.history/1")},
                               {QStringLiteral("from"), timeToIsoText(asked.from)},
                               {QStringLiteral("fromNs"), QString::number(asked.from)},
                               {QStringLiteral("until"), timeToIsoText(asked.until)},
                               {QStringLiteral("untilNs"), QString::number(asked.until)}};
        const QByteArray text = QJsonDocument(head).toJson(QJsonDocument::Compact);
        console.out << QString::fromUtf8(text.chopped(1)) << QStringLiteral(",\"results\":[");
    } else if (console.style.legend && console.style.format == Format::Table) {
        console.out << renderTableHeader(columns, widths, console.style.colour) << '\n';
    } else if (console.style.legend) {
        QStringList fields;
        for (const Column &column : qAsConst(columns)) {
            fields.append(column.key);
        }
        console.out << renderCsvLine(
            fields
            + QStringList{QStringLiteral("kind"), QStringLiteral("until"), QStringLiteral("label")})
                    << '\n';
    }
}

void LookBackLines::separate()
{
    if (!firstSelector) {
        console.out << ',';
    }
    firstSelector = false;
    if (console.style.pretty) {
        console.out << '\n';
    }
}

void LookBackLines::beginSelector(const PastSelector &one)
{
    selector = one;
    firstRow = true;
    if (console.style.format == Format::Json) {
        separate();
        QJsonObject head{{QStringLiteral("url"), selector.url},
                         {QStringLiteral("status"), QStringLiteral("ok")}};
        insertLabel(selector.label, head);
        const QByteArray text = QJsonDocument(head).toJson(QJsonDocument::Compact);
        console.out << QString::fromUtf8(text.chopped(1)) << QStringLiteral(",\"rows\":[");
    }
}

void LookBackLines::add(const PastRow &row)
{
    if (console.style.format == Format::Json) {
        console.out << (firstRow ? "" : ",") << (console.style.pretty ? "\n  " : "")
                    << QString::fromUtf8(QJsonDocument(jsonOf(row, asked, selector.unitsOf(row)))
                                             .toJson(QJsonDocument::Compact));
    } else {
        printCells(asked.inPieces() ? pieceCells(row) : cellsOf(row), kindName(row.kind));
    }
    firstRow = false;
}

void LookBackLines::endSelector()
{
    if (console.style.format == Format::Json) {
        console.out << QStringLiteral("]}");
    } else if (firstRow && console.style.format == Format::Table) {
        Row row(columns.size() - (withUrl ? 1 : 0), Cell(QString()));
        row.last() = Cell(QStringLiteral("nothing was recorded in this time"));
        printCells({row, Entry::Skipped, {}}, {});
    }
}

void LookBackLines::addMissing(const PastSelector &missing, const QString &reason)
{
    if (console.style.format == Format::Json) {
        separate();
        QJsonObject result{{QStringLiteral("url"), missing.url},
                           {QStringLiteral("status"), QStringLiteral("failed")},
                           {QStringLiteral("code"), QStringLiteral("notRecorded")},
                           {QStringLiteral("reason"), reason}};
        insertLabel(missing.label, result);
        console.out << QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Compact));
    } else {
        selector = missing;
        Row row(columns.size() - (withUrl ? 1 : 0), Cell(QString()));
        row.last() = Cell(reason);
        printCells({row, Entry::Failed, {}}, {});
    }
    console.out.flush();
    printReason(missing.url, reason, console);
}

void LookBackLines::end()
{
    if (console.style.format == Format::Json) {
        console.out << (console.style.pretty ? "\n" : "") << QStringLiteral("]}\n");
    }
}

LookBackLines::Cells LookBackLines::cellsOf(const PastRow &row) const
{
    const Cell none{QString()};
    if (row.kind == PastRow::Event) {
        return {{timeCell(row.time), none, none, none, noteOf(row.event)}, Entry::Skipped, {}};
    }
    if (row.kind == PastRow::Gap) {
        return {{timeCell(row.time), none, none, none, noteOf(row.gap)},
                Entry::Doubtful,
                timeToIsoText(row.gap.until)};
    }
    const auto error = errorOf(row.sample);
    const QString note = row.kind == PastRow::Held ? QStringLiteral("held when the range began")
                                                   : sampleNote(row.sample);
    return {{timeCell(row.time), valueCell(row.sample.value),
             selector.unitsOf(row).join(QLatin1Char(' ')), errorTypeName(error), note},
            error == ProcessDataAccess::ErrorType::NoError ? Entry::Good : Entry::Doubtful,
            {}};
}

LookBackLines::Cells LookBackLines::pieceCells(const PastRow &row) const
{
    Cells cells;
    cells.row = {timeCell(row.time)};
    if (row.kind == PastRow::Piece) {
        const QStringList units = selector.unitsOf(row);
        cells.row.append(Cell(QString::number(row.piece.count)));
        for (const QString &aggregate : asked.aggregates) {
            cells.row.append(pieceCell(aggregate, row.piece));
        }
        cells.row
            += Row{units.size() == 1 ? units.constFirst() : QString(), pieceNote(row.piece, units)};
        cells.until = timeToIsoText(row.piece.until);
        return cells;
    }
    const Cells explanation = cellsOf(row);
    cells.row += Row(asked.aggregates.size() + 2, Cell(QString()));
    cells.row.append(explanation.row.last());
    cells.state = explanation.state;
    cells.until = explanation.until;
    return cells;
}

void LookBackLines::printCells(const Cells &cells, const QString &kind)
{
    const Row row
        = withUrl ? Row{selectorCell(selector.url, selector.label)} + cells.row : cells.row;
    if (console.style.format == Format::Table) {
        console.out << renderTableLine(columns, widths, row, cells.state, console.style.colour)
                    << '\n';
        return;
    }
    QStringList fields;
    for (const Cell &cell : row) {
        fields.append(cell.machineText);
    }
    console.out << renderCsvLine(fields + QStringList{kind, cells.until, selector.label}) << '\n';
}
