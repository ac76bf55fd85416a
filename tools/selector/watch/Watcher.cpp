// SPDX-License-Identifier: MIT
// Polling, change signals and the end of a watch.
#include "Watcher.h"

#include "ValueText.h"

#include <QDateTime>

#include <numeric>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1000000;

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch() * nanosecondsPerMillisecond;
}

// What stands in the column of the selectors.
QVector<QString> shownNames(const QVector<WatchTarget> &targets)
{
    QVector<QString> names;
    for (const WatchTarget &target : targets) {
        names.append(selectorCell(target.url, target.label).text);
    }
    return names;
}

} // namespace

Watcher::Watcher(const QVector<WatchTarget> &targets, const WatchOptions &options,
                 const std::optional<UntilExpression> &until, const Console &console)
    : handler(nullptr)
    , lines(shownNames(targets), console.style, options.timestamps)
    , console(console)
    , until(until)
    , changesOnly(options.changesOnly)
    , wantedLines(options.count)
{
    if (options.plot) {
        screen = std::make_unique<PlotScreen>(targets, console, PlotAbilities::ofStandardOutput());
    }
    connect(&handler,
            qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged),
            this, [this](const QVector<int> &indices) {
                announce(QStringLiteral("processDataDescriptionChanged"), indices);
            });
    connect(&handler, qOverload<QVector<int>>(&SelectorHandlerProcessValue::propertyChanged), this,
            [this](const QVector<int> &indices) {
                announce(QStringLiteral("propertyChanged"), indices);
            });
    connect(&timer, &QTimer::timeout, this, &Watcher::poll);
    timer.setInterval(options.interval);
    for (const WatchTarget &target : targets) {
        Selector selector;
        selector.url = target.url;
        selector.label = target.label;
        selectors.append(selector);
    }
    handler.setSelectorUrls(urlsOf(targets));
    for (int i = 0; i < selectors.size(); ++i) {
        selectors[i].properties = propertiesOf(handler, i);
    }
}

void Watcher::start()
{
    if (!screen) {
        console.out << lines.header();
    }
    if (!flush()) {
        return;
    }
    timer.start();
    poll();
}

void Watcher::poll()
{
    const QVector<ProcessValue> values = handler.getValues();
    SelectorExaminer examiner; // one for all: a service is asked once
    for (int i = 0; i < values.size() && !hasEnded(); ++i) {
        read(i, values.at(i), examiner);
    }
    if (screen) {
        plot();
    }
    checkCondition();
}

void Watcher::plot()
{
    for (int i = 0; i < selectors.size(); ++i) {
        const Selector &selector = selectors.at(i);
        bool isNumber = false;
        double sample = selector.value.value.toDouble(&isNumber);
        // A text that reads like a number is still none.
        isNumber = isNumber && selector.value.value.userType() != QMetaType::QString
            && selector.value.value.userType() != QMetaType::QByteArray && selector.value.isGood();
        sample = isNumber ? sample : qQNaN();
        const QString unit = selector.properties.value(QLatin1String("unit")).toString();
        const QString value = selector.failure == ExitAllGood
            ? valueToShortText(selector.value.value) + QLatin1Char(' ') + unit
            : selector.reason;
        screen->panel(i).add(sample, value.trimmed());
    }
    screen->draw();
    if (flush()) {
        countLine();
    }
}

void Watcher::finish()
{
    timer.stop();
    if (screen) {
        screen->finish();
    }
}

void Watcher::checkCondition()
{
    if (!until || met || resultsAreLost()) {
        return;
    }
    QVector<WatchedValue> values;
    values.reserve(selectors.size());
    for (const Selector &selector : qAsConst(selectors)) {
        values.append({selector.value.isGood() ? selector.value.value : QVariant(),
                       selector.seen == Seen::Changed});
    }
    if (until->evaluate(values) == UntilExpression::True) {
        met = true;
        timer.stop();
        Q_EMIT finished();
    }
}

void Watcher::read(int index, const LeafValue &value, SelectorExaminer &examiner)
{
    Selector &selector = selectors[index];
    const bool missing = value.isMissing();
    Finding finding;
    if (missing) {
        // Asking the services anew each time would cost a call for each selector.
        finding = selector.examine ? examiner.explain(selector.url) : selector.finding;
    }
    selector.examine = !missing;
    const bool same = selector.seen != Seen::Never && value.errorType == selector.value.errorType
        && value.value == selector.value.value && finding.text == selector.finding.text;
    if (same) {
        return;
    }
    const bool first = selector.seen == Seen::Never;
    selector.seen = first ? Seen::Unchanged : Seen::Changed;
    selector.value = value;
    selector.finding = finding;
    const ReadResult result{selector.url, value, selector.properties, finding, selector.label};
    const Entry entry = readEntry(result);
    selector.failure = entry.exitCode();
    selector.reason = entry.reason;
    if (!screen && !(first && changesOnly)) {
        print(lines.value(index, result, now()));
    }
    if (selector.failure != ExitAllGood && !resultsAreLost()
        && !(screen && console.silentReasons)) {
        printReason(entry.subject, entry.reason, console);
    }
}

void Watcher::announce(const QString &signal, const QVector<int> &indices)
{
    QVector<SelectorChange> changes;
    for (const int index : indices) {
        if (index < 0 || index >= selectors.size()) {
            continue;
        }
        Selector &selector = selectors[index];
        selector.examine = true;
        const QJsonObject properties = propertiesOf(handler, index);
        if (properties.isEmpty() && selector.properties.isEmpty()) {
            continue; // it was not there and is not: at most the reason differs, which poll() shows
        }
        changes.append(compareProperties(index, selector.url, selector.properties, properties));
        selector.properties = properties;
        selector.seen = selector.seen == Seen::Never ? Seen::Never : Seen::Changed;
    }
    if (!changes.isEmpty() && !screen && !console.style.quiet) {
        print(lines.signal(signal, changes, now()));
    }
    if (!screen && !hasEnded()) {
        poll();
    }
}

void Watcher::print(const QString &text)
{
    if (hasEnded()) {
        return;
    }
    console.out << text;
    if (flush()) {
        countLine();
    }
}

bool Watcher::flush()
{
    if (flushResults(console)) {
        return true;
    }
    timer.stop();
    Q_EMIT finished();
    return false;
}

void Watcher::countLine()
{
    ++printed;
    if (wantedLines != 0 && isComplete()) {
        timer.stop();
        Q_EMIT finished();
    }
}

ExitCode Watcher::exitCode() const
{
    return std::accumulate(
        selectors.begin(), selectors.end(), ExitAllGood,
        [](ExitCode code, const Selector &selector) { return graver(code, selector.failure); });
}

bool Watcher::resultsAreLost() const
{
    return console.out.status() != QTextStream::Ok;
}

bool Watcher::hasEnded() const
{
    return met || resultsAreLost() || (wantedLines != 0 && isComplete());
}

bool Watcher::isComplete() const
{
    return printed >= wantedLines;
}
