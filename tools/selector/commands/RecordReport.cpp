// SPDX-License-Identifier: MIT
// Results of a recording, selector by selector and in all.
#include "RecordReport.h"

#include "Counted.h"
#include "Entries.h"
#include "Examination.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QString noteOf(const RecordResult &result)
{
    if (!result.finding.isNone()) {
        return result.finding.text;
    }
    if (result.outcome.refused > 0) {
        return QStringLiteral("%1 too long to be stored")
            .arg(counted(result.outcome.refused, "value was", "values were"));
    }
    return result.outcome.isLost ? QStringLiteral("its source is lost") : QString();
}

Entry recordEntry(const RecordResult &result)
{
    Entry entry = entryOf(result.url, result.finding);
    entry.json.insert(QStringLiteral("url"), result.url);
    entry.json.insert(QStringLiteral("samples"), result.outcome.samples);
    entry.reason = noteOf(result);
    if (result.finding.isNone() && result.outcome.refused > 0) {
        entry.state = Entry::Doubtful;
        entry.json.insert(QStringLiteral("status"), stateName(entry.state));
    }
    if (!entry.reason.isEmpty()) {
        entry.json.insert(QStringLiteral("reason"), entry.reason);
    }
    insertLabel(result.label, entry.json);
    entry.rows.append({selectorCell(result.url, result.label),
                       QString::number(result.outcome.samples), entry.reason, result.label});
    return entry;
}

QString summaryOf(qint64 samples, int selectors, const RecordEnd &end)
{
    const QString dropped = end.dropped == 0 ? QStringLiteral("none dropped")
                                             : QStringLiteral("%1 dropped").arg(end.dropped);
    return QStringLiteral("%1 of %2 stored in %3, %4")
        .arg(counted(samples, "sample", "samples"), counted(selectors, "selector", "selectors"),
             end.database, dropped);
}

void printJson(const Report &report, qint64 samples, const RecordEnd &end, const Console &console)
{
    QJsonArray results;
    for (const Entry &entry : report.entries) {
        results.append(entry.json);
    }
    const QJsonObject all{
        {QStringLiteral("schema"), report.schema},  {QStringLiteral("database"), end.database},
        {QStringLiteral("samples"), samples},       {QStringLiteral("dropped"), end.dropped},
        {QStringLiteral("written"), end.isWritten}, {QStringLiteral("results"), results}};
    const QByteArray text = QJsonDocument(all).toJson(
        console.style.pretty ? QJsonDocument::Indented : QJsonDocument::Compact);
    console.out << QString::fromUtf8(text.trimmed()) << '\n';
}

} // namespace

void finishResults(const HistoryRecorder &recorder, QVector<RecordResult> &results)
{
    SelectorExaminer examiner;
    for (RecordResult &result : results) {
        if (result.position < 0) {
            continue;
        }
        result.outcome = recorder.outcome(result.position);
        if (result.outcome.samples == 0 && result.outcome.refused == 0) {
            result.finding = examiner.explain(result.url);
            if (result.finding.isNone()) {
                result.finding
                    = {Finding::NotReadable, QStringLiteral("it had no value in this time")};
            }
        }
    }
}

int printRecordReport(const QVector<RecordResult> &results, const RecordEnd &end,
                      const Console &console)
{
    Report report{QStringLiteral("selector.record/1"), columnsOf("url samples> note label|"), {}};
    qint64 samples = 0;
    int stored = 0;
    for (const RecordResult &result : results) {
        report.entries.append(recordEntry(result));
        samples += result.outcome.samples;
        stored += result.outcome.samples > 0 ? 1 : 0;
    }
    int code = report.exitCode();
    if (console.style.format == Format::Json) {
        printJson(report, samples, end, console);
        for (const Entry &entry : qAsConst(report.entries)) {
            if (entry.exitCode() != ExitAllGood) {
                printReason(entry.subject, entry.reason, console);
            }
        }
    } else {
        code = printReport(report, console);
    }
    if (console.style.format == Format::Table) {
        console.out << '\n' << printable(summaryOf(samples, stored, end)) << '\n';
    }
    console.out.flush();
    if (!end.isWritten) {
        console.err << printable(
            QStringLiteral("selector: not all of it could be written: %1")
                .arg(end.trouble.isEmpty() ? QStringLiteral("no reason is known") : end.trouble))
                    << '\n';
        console.err.flush();
    }
    return code == ExitAllGood && (!end.isWritten || end.dropped > 0) ? ExitSomeFailed : code;
}
