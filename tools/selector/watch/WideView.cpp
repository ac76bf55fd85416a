// SPDX-License-Identifier: MIT
// Renders rows of instants.
#include "WideView.h"

#include "PlotFrame.h"
#include "ValueText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr int timeWidth = 23;
constexpr int valueWidth = 12;

QString jsonRow(const QVector<ReadResult> &results, qint64 time)
{
    QJsonArray values;
    QJsonArray errorTypes;
    for (const ReadResult &result : results) {
        const ReadRow row = readRow(result);
        values.append(valueToJson(row.state == Entry::Good ? result.value.value : QVariant()));
        errorTypes.append(row.error);
    }
    const QJsonObject object{{QStringLiteral("schema"), QStringLiteral("selector.watch/1")},
                             {QStringLiteral("event"), QStringLiteral("row")},
                             {QStringLiteral("time"), timeToIsoText(time)},
                             {QStringLiteral("values"), values},
                             {QStringLiteral("errorTypes"), errorTypes}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact))
        + QLatin1Char('\n');
}

} // namespace

WideView::WideView(const QVector<WatchTarget> &targets, const Console &console)
    : console(console)
{
    columns.append({QStringLiteral("time"), false});
    widths.append(timeWidth);
    // A person finds the shortest names that tell them apart, a program what it asked for.
    const bool forPeople = console.style.format == Format::Table;
    const QStringList titles = forPeople ? plotTitles(targets) : QStringList();
    for (int i = 0; i < targets.size(); ++i) {
        const WatchTarget &target = targets.at(i);
        const QString title = forPeople ? printable(titles.at(i))
                                        : (target.label.isEmpty() ? target.url : target.label);
        columns.append({title, true});
        widths.append(std::max(valueWidth, title.size()));
    }
}

void WideView::start()
{
    console.out << header();
}

void WideView::show(const QVector<ReadResult> &results, qint64 time)
{
    console.out << row(results, time);
}

QString WideView::header() const
{
    if (!console.style.legend || console.style.format == Format::Json) {
        return {};
    }
    QStringList titles;
    Row cells;
    for (const Column &column : columns) {
        titles.append(column.key);
        cells.append(column.key);
    }
    if (console.style.format == Format::Csv) {
        return renderCsvLine(titles) + QLatin1Char('\n');
    }
    cells.first() = Cell(QStringLiteral("TIME"));
    return asTitle(renderTableLine(columns, widths, cells, Entry::Good, false),
                   console.style.colour)
        + QLatin1Char('\n');
}

QString WideView::row(const QVector<ReadResult> &results, qint64 time) const
{
    if (console.style.format == Format::Json) {
        return jsonRow(results, time);
    }
    Row cells{Cell(timeToText(time), timeToIsoText(time))};
    QStringList fields{timeToIsoText(time)};
    Entry::State worst = Entry::Good;
    for (const ReadResult &result : results) {
        const ReadRow row = readRow(result);
        const bool isGood = row.state == Entry::Good;
        worst = std::max(worst, row.state);
        cells.append(isGood ? row.value : Cell(QStringLiteral("-")));
        fields.append(isGood ? row.value.machineText : QString());
    }
    return (console.style.format == Format::Csv
                ? renderCsvLine(fields)
                : renderTableLine(columns, widths, cells, worst, console.style.colour))
        + QLatin1Char('\n');
}
