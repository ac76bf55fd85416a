// SPDX-License-Identifier: MIT
// Lists the series of a history.
#include "HistoryInfoReport.h"

#include "Counted.h"
#include "ValueText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

constexpr double nanosecondsPerSecond = 1e9;

// In the order of HistoryType.
constexpr std::array<const char *, 13> typeNames{"bool",    "int8",   "int16",  "int32",  "int64",
                                                 "uint8",   "uint16", "uint32", "uint64", "float32",
                                                 "float64", "string", "bytes"};

struct Missing
{
    int gaps = 0;
    qint64 nanoseconds = 0; // gaps that overlap count once
};

bool findMissing(HistoryReader &reader, const HistorySeriesInfo &info, Missing &missing)
{
    QVector<HistoryGap> gaps;
    if (info.samples == 0) {
        return true;
    }
    if (!reader.gaps(info.series.selector, info.first, info.last + 1, &gaps)) {
        return false;
    }
    missing.gaps = gaps.size();
    qint64 end = info.first;
    for (const HistoryGap &gap : qAsConst(gaps)) {
        missing.nanoseconds += std::max<qint64>(0, gap.until - std::max(end, gap.from));
        end = std::max(end, gap.until);
    }
    return true;
}

QJsonObject jsonOf(const HistorySeriesInfo &info, const QString &type, const Missing &missing)
{
    QJsonObject json{{QStringLiteral("url"), info.series.selector},
                     {QStringLiteral("status"), QStringLiteral("ok")},
                     {QStringLiteral("type"), type},
                     {QStringLiteral("samples"), info.samples},
                     {QStringLiteral("gaps"), missing.gaps},
                     {QStringLiteral("missingNs"), QString::number(missing.nanoseconds)}};
    if (!info.series.unit.isEmpty()) {
        json.insert(QStringLiteral("unit"), info.series.unit);
    }
    if (!info.series.description.isEmpty()) {
        json.insert(QStringLiteral("description"), info.series.description);
    }
    if (info.samples > 0) {
        json.insert(QStringLiteral("first"), timeToIsoText(info.first));
        json.insert(QStringLiteral("firstNs"), QString::number(info.first));
        json.insert(QStringLiteral("last"), timeToIsoText(info.last));
        json.insert(QStringLiteral("lastNs"), QString::number(info.last));
    }
    return json;
}

Entry entryOf(const HistorySeriesInfo &info, const Missing &missing)
{
    const QString type = QString::fromLatin1(typeNames.at(size_t(info.series.type)));
    const QString seconds
        = QString::number(static_cast<double>(missing.nanoseconds) / nanosecondsPerSecond);
    const QString shown = missing.gaps == 0 ? QString() : seconds + QStringLiteral(" s");
    Entry entry;
    entry.subject = info.series.selector;
    entry.json = jsonOf(info, type, missing);
    entry.rows.append({info.series.selector, type, info.series.unit, QString::number(info.samples),
                       Cell(timeToText(info.first), timeToIsoText(info.first)),
                       Cell(timeToText(info.last), timeToIsoText(info.last)),
                       QString::number(missing.gaps), Cell(shown, seconds)});
    return entry;
}

void printJson(const Report &report, const QString &database, const HistoryInfo &info,
               const Console &console)
{
    QJsonArray results;
    for (const Entry &entry : report.entries) {
        results.append(entry.json);
    }
    const QJsonObject all{
        {QStringLiteral("schema"), report.schema}, {QStringLiteral("database"), database},
        {QStringLiteral("version"), info.version}, {QStringLiteral("bytes"), info.bytes},
        {QStringLiteral("dropped"), info.dropped}, {QStringLiteral("results"), results}};
    const QByteArray text = QJsonDocument(all).toJson(
        console.style.pretty ? QJsonDocument::Indented : QJsonDocument::Compact);
    console.out << QString::fromUtf8(text.trimmed()) << '\n';
}

QString summaryOf(const QString &database, const HistoryInfo &info)
{
    const qint64 samples = std::accumulate(
        info.series.begin(), info.series.end(), qint64(0),
        [](qint64 sum, const HistorySeriesInfo &one) { return sum + one.samples; });
    const QString dropped = info.dropped == 0 ? QStringLiteral("none dropped")
                                              : QStringLiteral("%1 dropped").arg(info.dropped);
    return QStringLiteral("%1: version %2, %3, %4 in %5, %6")
        .arg(database)
        .arg(info.version)
        .arg(QLocale::c().formattedDataSize(info.bytes, 1, QLocale::DataSizeTraditionalFormat),
             counted(samples, "sample", "samples"), counted(info.series.size(), "series", "series"),
             dropped);
}

} // namespace

bool printHistoryInfo(HistoryReader &reader, const QString &database, const Console &console)
{
    HistoryInfo info;
    if (!reader.info(&info)) {
        return false;
    }
    Report report{QStringLiteral("selector.historyInfo/1"),
                  columnsOf("url type unit samples> first last gaps> missing>"),
                  {}};
    for (const HistorySeriesInfo &series : qAsConst(info.series)) {
        Missing missing;
        if (!findMissing(reader, series, missing)) {
            return false;
        }
        report.entries.append(entryOf(series, missing));
    }
    if (console.style.format == Format::Json) {
        printJson(report, database, info, console);
        return true;
    }
    printReport(report, console);
    if (console.style.format == Format::Table) {
        console.out << '\n' << printable(summaryOf(database, info)) << '\n';
    }
    return true;
}
