// SPDX-License-Identifier: MIT
// Renders the lines of selector watch.
#include "WatchLines.h"

#include "ScreenColumns.h"
#include "ScreenRowLayout.h"
#include "ValueText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr int timeWidth = 23;
constexpr int clockWidth = 12; // without the date
constexpr int valueWidth = 12;
constexpr int unitWidth = 6;
constexpr int errorWidth = 9;

QString whatName(SelectorChange::What what)
{
    switch (what) {
    case SelectorChange::Found:
        return QStringLiteral("found");
    case SelectorChange::Lost:
        return QStringLiteral("lost");
    case SelectorChange::Restarted:
        return QStringLiteral("restarted");
    case SelectorChange::Changed:
        break;
    }
    return QStringLiteral("changed");
}

} // namespace

SelectorChange compareProperties(int index, const QString &url, const QJsonObject &before,
                                 const QJsonObject &after)
{
    SelectorChange change{index, url, SelectorChange::Changed, {}, {}};
    if (before.isEmpty() || after.isEmpty()) {
        change.what = before.isEmpty() ? SelectorChange::Found : SelectorChange::Lost;
        change.text = before.isEmpty() ? QStringLiteral("found") : QStringLiteral("lost");
        return change;
    }
    QStringList names = before.keys() + after.keys();
    names.sort();
    names.removeDuplicates();
    names.removeAll(QStringLiteral("session")); // tells runs of a publisher apart
    QStringList texts;
    for (const QString &name : qAsConst(names)) {
        if (before.value(name) != after.value(name)) {
            change.properties.append(name);
            texts.append(QStringLiteral("%1 %2 -> %3")
                             .arg(name, propertyToText(before.value(name)),
                                  propertyToText(after.value(name))));
        }
    }
    if (texts.isEmpty()) {
        change.what = SelectorChange::Restarted;
        texts.append(QStringLiteral("publisher restarted"));
    }
    change.text = texts.join(QStringLiteral(", "));
    return change;
}

WatchLines::WatchLines(const QVector<QString> &names, const Style &style, bool timestamps)
    : style(style)
    , timestamps(timestamps)
    , columns(columnsOf("time url value> unit error note"))
{
    const bool screen = style.width > 0;
    QStringList shown = names.toList();
    if (screen) {
        screenNames = ScreenNames::of(shown);
        shown = screenNames.rests;
    }
    int urlWidth = 3;
    for (const QString &name : qAsConst(shown)) {
        urlWidth = std::max(urlWidth, printable(name).size());
    }
    const int widthOfTime = screen ? clockWidth : timeWidth;
    widths = {widthOfTime, urlWidth, valueWidth, unitWidth, errorWidth, 0};
    if (timestamps) {
        columns.prepend({QStringLiteral("seen")});
        widths.prepend(widthOfTime);
    }
}

QString WatchLines::jsonLine(QJsonObject object, qint64 now) const
{
    object.insert(QStringLiteral("schema"), QStringLiteral("selector.watch/1"));
    if (timestamps) {
        object.insert(QStringLiteral("seen"), timeToIsoText(now));
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact))
        + QLatin1Char('\n');
}

QString WatchLines::csvLine(QStringList fields, qint64 now) const
{
    if (timestamps) {
        fields.prepend(timeToIsoText(now));
    }
    return renderCsvLine(fields) + QLatin1Char('\n');
}

QString WatchLines::header() const
{
    if (style.quiet || style.format == Format::Json) {
        return {};
    }
    if (style.format == Format::Csv) {
        const QString seen = timestamps ? QStringLiteral("seen,") : QString();
        return style.legend
            ? seen + QStringLiteral("event,time,url,value,unit,error,note,indices,label\n")
            : QString();
    }
    const QString above = screenNames.common.isEmpty()
        ? QString()
        : printable(screenNames.common) + ellipsis + QLatin1Char('\n');
    return style.legend
        ? above + renderTableHeader(columns, widths, style.colour) + QLatin1Char('\n')
        : above;
}

QString WatchLines::shownTime(qint64 time, qint64 now) const
{
    const QString text = timeToText(time);
    const QString date = text.section(QLatin1Char(' '), 0, 0);
    const bool isToday = timeToText(now).startsWith(date);
    return style.width > 0 && isToday ? text.section(QLatin1Char(' '), 1) : text;
}

QString WatchLines::tableLine(Row cells, Entry::State state) const
{
    if (style.width == 0) {
        return renderTableLine(columns, widths, cells, state, style.colour) + QLatin1Char('\n');
    }
    const QString note = printable(cells.takeLast().text);
    ScreenRowLayout layout(style.width);
    for (int i = 0; i < cells.size(); ++i) {
        layout.add(printable(cells.at(i).text), widths.at(i), columns.at(i).alignRight, false);
    }
    if (note.isEmpty() || layout.hasRoomFor(note)) {
        layout.add(note, 0, false, false);
    } else {
        layout.addSentence(note);
    }
    QString text;
    const QStringList lines = layout.lines();
    for (const QString &line : lines) {
        text += inColourOf(state, line, style.colour) + QLatin1Char('\n');
    }
    return text;
}

QString WatchLines::value(int index, const ReadResult &result, qint64 now) const
{
    const ReadRow row = readRow(result);
    if (style.quiet) {
        return renderQuietLine(row.value) + QLatin1Char('\n');
    }
    const qint64 time = row.timestamp == 0 ? now : row.timestamp;
    if (style.format == Format::Json) {
        QJsonObject json = readEntry(result).json;
        json.insert(QStringLiteral("event"), QStringLiteral("value"));
        json.insert(QStringLiteral("index"), index);
        json.insert(QStringLiteral("time"), timeToIsoText(time));
        return jsonLine(json, now);
    }
    if (style.format == Format::Csv) {
        return csvLine({QStringLiteral("value"), timeToIsoText(time), result.url,
                        row.value.machineText, row.unit, row.error, row.note,
                        QString::number(index), result.label},
                       now);
    }
    const Cell name = style.width > 0 ? Cell(screenNames.rests.at(index))
                                      : selectorCell(result.url, result.label);
    Row cells{shownTime(time, now), name, row.value, row.unit, row.error, row.note};
    if (timestamps) {
        cells.prepend(shownTime(now, now));
    }
    return tableLine(cells, row.state);
}

QString WatchLines::signal(const QString &signal, const QVector<SelectorChange> &changes,
                           qint64 now) const
{
    QJsonArray details;
    QJsonArray indices;
    QStringList numbers;
    QStringList texts;
    for (const SelectorChange &change : changes) {
        indices.append(change.index);
        numbers.append(QString::number(change.index));
        texts.append(QStringLiteral("%1 %2").arg(change.index).arg(change.text));
        details.append(QJsonObject{
            {QStringLiteral("index"), change.index},
            {QStringLiteral("url"), change.url},
            {QStringLiteral("what"), whatName(change.what)},
            {QStringLiteral("properties"), QJsonArray::fromStringList(change.properties)}});
    }
    if (style.format == Format::Json) {
        return jsonLine({{QStringLiteral("event"), signal},
                         {QStringLiteral("time"), timeToIsoText(now)},
                         {QStringLiteral("indices"), indices},
                         {QStringLiteral("changes"), details}},
                        now);
    }
    const QString note = texts.join(QStringLiteral("; "));
    if (style.format == Format::Csv) {
        return csvLine({signal, timeToIsoText(now), QString(), QString(), QString(), QString(),
                        note, numbers.join(QLatin1Char(' ')), QString()},
                       now);
    }
    return printable(QStringLiteral("%1  %2 [%3]: %4")
                         .arg(shownTime(now, now), signal, numbers.join(QLatin1String(", ")), note))
        + QLatin1Char('\n');
}
