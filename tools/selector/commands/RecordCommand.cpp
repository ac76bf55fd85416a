// SPDX-License-Identifier: MIT
// selector record: values into a database until it is told to end.
#include "Command.h"
#include "Counted.h"
#include "DurationOption.h"
#include "Entries.h"
#include "Examination.h"
#include "HistoryRecorder.h"
#include "HistoryWriter.h"
#include "LiveLeaves.h"
#include "RecordReport.h"
#include "Selection.h"
#include "SelectorList.h"
#include "UnixSignals.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <csignal>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1'000'000;
constexpr qint64 longestRecording = 24LL * 86400 * 1'000'000'000; // what a timer can count
constexpr int usualInterval = 1000; // ms

struct Wish
{
    QString database;
    RecordedSelector rule; ///< of each selector, but for its URL
    int duration = 0; ///< ms; 0: until a signal comes
};

bool readDeadband(const CommandLine &line, RecordedSelector &rule, QString &usage)
{
    if (!line.has("deadband")) {
        return true;
    }
    QString text = line.text("deadband");
    rule.deadbandIsPercent = text.endsWith(QLatin1Char('%'));
    if (rule.deadbandIsPercent) {
        text.chop(1);
    }
    bool ok = false;
    rule.deadband = text.toDouble(&ok);
    if (ok && rule.deadband >= 0 && std::isfinite(rule.deadband)
        && (!rule.deadbandIsPercent || rule.deadband <= 100)) {
        return true;
    }
    usage = QStringLiteral("--deadband must be a number that is not negative, such as 0.5, or "
                           "percent of the range, such as 0.5%, not \"%1\".")
                .arg(line.text("deadband"));
    return false;
}

bool readWish(const CommandLine &line, Wish &wish, QString &usage)
{
    wish.database = line.arguments.value(0);
    if (wish.database.isEmpty()) {
        usage = QStringLiteral("No database given.");
        return false;
    }
    wish.rule.every = line.number("every", usualInterval) * nanosecondsPerMillisecond;
    qint64 duration = line.number("timeout") * nanosecondsPerMillisecond;
    if (!readDeadband(line, wish.rule, usage)
        || !readDuration(line, "at-least-every", longestRecording, wish.rule.atLeastEvery, usage)
        || !readDuration(line, "for", longestRecording, duration, usage)) {
        return false;
    }
    if (line.has("for") && line.has("timeout")) {
        usage = QStringLiteral("--for and --timeout exclude each other.");
        return false;
    }
    wish.duration = static_cast<int>(duration / nanosecondsPerMillisecond);
    if (line.has("for") && wish.duration == 0) {
        usage = QStringLiteral("--for must be at least 1ms.");
        return false;
    }
    return true;
}

Selection expanded(const QVector<ListLine> &typed)
{
    Catalog catalog;
    Selection selection(typed, lookupIn(catalog));
    SelectorHandlerProcessValue handler(urlsOf(selection.lines()), nullptr);
    selection.expandGroups([&](int i) { return hasLeaf(handler, i); });
    return selection;
}

// Those that can be recorded; what is wrong with the others goes into the report.
QVector<RecordedSelector> chooseSelectors(const Selection &selection, const Wish &wish,
                                          QVector<RecordResult> &results)
{
    QVector<RecordedSelector> chosen;
    for (int i = 0; i < selection.lines().size(); ++i) {
        const ListLine &line = selection.lines().at(i);
        const bool again
            = std::any_of(results.begin(), results.end(),
                          [&](const RecordResult &one) { return one.url == line.url; });
        if (again) {
            continue;
        }
        RecordResult result;
        result.url = line.url;
        result.label = line.label;
        result.finding = selection.finding(i);
        if (result.finding.isNone()) {
            result.finding = textFinding(parseSelectorUrl(line.url));
        }
        if (result.finding.isNone()) {
            result.position = chosen.size();
            RecordedSelector selector = wish.rule;
            selector.url = line.url;
            chosen.append(selector);
        }
        results.append(result);
    }
    return chosen;
}

void say(const QString &text, const Console &console)
{
    console.err << printable(QStringLiteral("selector: ") + text) << '\n';
    console.err.flush();
}

// A mistyped selector should show before a day of recording is over.
void sayWhatIsMissing(const HistoryRecorder &recorder, const QVector<RecordResult> &results,
                      const Console &console)
{
    SelectorExaminer examiner;
    for (const RecordResult &result : results) {
        if (result.position < 0) {
            if (stateOf(result.finding) == Entry::Failed) {
                say(QStringLiteral("%1: %2").arg(result.url, result.finding.text), console);
            }
        } else if (recorder.outcome(result.position).isLost) {
            const Finding finding = examiner.explain(result.url);
            say(QStringLiteral("%1: %2; it is recorded when it comes")
                    .arg(result.url,
                         finding.isNone() ? QStringLiteral("no value so far") : finding.text),
                console);
        }
    }
}

void connectWriter(HistoryWriter &writer, QString &trouble, const Console &console)
{
    // Queued: the writer's signals come from its own thread.
    QObject::connect(
        &writer, &HistoryWriter::troubleChanged, qApp, [&trouble, console](const QString &reason) {
            trouble = reason;
            say(reason.isEmpty() ? QStringLiteral("the database takes samples again") : reason,
                console);
        });
    QObject::connect(&writer, &HistoryWriter::samplesDropped, qApp,
                     [console](qint64 count, const QString &reason) {
                         say(QStringLiteral("%1 dropped: %2")
                                 .arg(counted(count, "sample was", "samples were"), reason),
                             console);
                     });
}

// Returns the signal that ended it; 0: its time was up.
int recordUntilTheEnd(HistoryRecorder &recorder, const Wish &wish,
                      const QVector<RecordResult> &results, const Console &console)
{
    int end = 0;
    const UnixSignals signalsOfSystem;
    QObject::connect(&signalsOfSystem, &UnixSignals::received, qApp, [&end](int number) {
        end = number;
        QCoreApplication::quit();
    });
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, qApp, &QCoreApplication::quit);
    if (wish.duration > 0) {
        limit.start(wish.duration);
    }
    recorder.start();
    sayWhatIsMissing(recorder, results, console);
    QCoreApplication::exec();
    return end;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    Wish wish;
    QVector<ListLine> selectors;
    CommandLine withoutDatabase = line;
    withoutDatabase.arguments = line.arguments.mid(1);
    if (!readWish(line, wish, usage)
        || !collectSelectors(withoutDatabase, LineForm::Url, selectors, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    HistorySettings settings;
    settings.database = wish.database;
    HistoryWriter writer(settings);
    QString trouble;
    connectWriter(writer, trouble, console);
    if (!writer.open()) {
        say(writer.errorText(), console);
        return ExitSomeFailed;
    }
    QVector<RecordResult> results;
    const auto chosen = chooseSelectors(expanded(selectors), wish, results);
    // Until it is made, signals end the process.
    HistoryRecorder recorder(chosen, writer);
    const int end = recordUntilTheEnd(recorder, wish, results, console);
    RecordEnd summary{wish.database, writer.flush(), writer.dropped()};
    QCoreApplication::processEvents(); // what the writer said last
    summary.trouble = trouble;
    finishResults(recorder, results);
    const int verdict = printRecordReport(results, summary, console);
    return end == SIGINT ? static_cast<int>(ExitInterrupted) : verdict;
}

} // namespace

Command recordCommand()
{
    return {
        QStringLiteral("record"),
        QStringLiteral("store values in a database as they change"),
        "Usage: selector record [OPTIONS] FILE SELECTOR...\n"
        "Stores the values of each selector in the database FILE, which is made where missing,\n"
        "until SIGINT, SIGTERM or --for ends it; then says how many samples are stored. A lost\n"
        "source, its return and a changed description are stored, too. Selectors whose service is\n"
        "not there yet are recorded when it comes up. selector history shows what is stored.\n",
        {{"--every MS", "look at the values so often (1000), in milliseconds or with a unit",
          "1 to 3600000.", Option::Milliseconds},
         {"--deadband N",
          "store a number only when it differs by more than N in its unit, or\n"
          "by more than N% of its range (0: any change)",
          "The range is the minimum and the maximum of the leaf's description; a leaf without them "
          "has every change stored.",
          Option::Name},
         {"--at-least-every DURATION",
          "store a value that was published again after that time, such as\n"
          "60s, though it is the same",
          "", Option::Name},
         {"--for DURATION", "end after that time, such as 90s, 15min, 8h or 7d", "At most 24d.",
          Option::Name},
         {"--timeout S", "the same as --for, in seconds", "No call takes longer.", Option::Seconds},
         urlFileOption},
        "Record also: 1 when the database cannot be written, samples were dropped, or a selector\n"
        "never had a value; 130 after SIGINT.\n"
        "\nExample: selector record --every 100ms --deadband 0.5% --for 2s history.db \\\n"
        "             processdata://PumpStation/Pump/1/drive/speed\n",
        {Arguments::FileAndUrls, Arguments::many},
        run};
}
