// SPDX-License-Identifier: MIT
// Polling, change signals and the end of a watch.
#include "Watcher.h"

#include "AgeText.h"
#include "WatchViews.h"

#include <numeric>

namespace {

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
    , options(options)
    , lines(shownNames(targets), console.style, options.timestamps)
    , console(console)
    , ticks(options.interval)
    , until(until)
    , view(makeView(options.view, targets, console))
{
    connectSignals();
    for (const WatchTarget &target : targets) {
        Selector selector;
        selector.latest.url = target.url;
        selector.latest.label = target.label;
        selector.miss = target.miss;
        selectors.append(selector);
    }
    handler.setSelectorUrls(urlsOf(targets));
    for (int i = 0; i < selectors.size(); ++i) {
        selectors[i].latest.properties = propertiesOf(handler, i);
    }
}

void Watcher::connectSignals()
{
    connect(&handler,
            qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged),
            this, [this](const QVector<int> &indices) {
                announce(QStringLiteral("processDataDescriptionChanged"), indices);
            });
    connect(&handler, qOverload<QVector<int>>(&SelectorHandlerProcessValue::propertyChanged), this,
            [this](const QVector<int> &indices) {
                announce(QStringLiteral("propertyChanged"), indices);
            });
    connect(&ticks, &SteadyTicks::ticked, this, &Watcher::look);
    if (view) {
        connect(view.get(), &WatchView::left, this, &Watcher::end);
    }
}

QStringList Watcher::withoutRange() const
{
    QStringList urls;
    for (const Selector &selector : selectors) {
        const QJsonObject &properties = selector.latest.properties;
        if (!properties.isEmpty() && !options.deadband.of(properties)) {
            urls.append(selector.latest.url);
        }
    }
    return urls;
}

void Watcher::start()
{
    if (view) {
        view->start();
    } else {
        console.out << lines.header();
    }
    if (flush()) {
        ticks.start();
    }
}

void Watcher::look(qint64 time)
{
    const QVector<ProcessValue> values = handler.getValues();
    const qint64 now = currentTime(); // what ages count from; a tick keeps to its own clock
    SelectorExaminer examiner; // one for all: a service is asked once
    for (int i = 0; i < values.size() && !hasEnded(); ++i) {
        read(i, values.at(i), now, examiner);
    }
    showView(time);
    checkCondition(now);
}

void Watcher::showView(qint64 time)
{
    if (!view || hasEnded()) {
        return;
    }
    QVector<ReadResult> results;
    results.reserve(selectors.size());
    for (const Selector &selector : qAsConst(selectors)) {
        results.append(selector.latest);
    }
    view->show(results, time);
    if (flush()) {
        countLine();
    }
}

void Watcher::finish()
{
    ticks.stop();
    if (view) {
        view->finish();
    }
}

void Watcher::checkCondition(qint64 now)
{
    if (!until || met || resultsAreLost()) {
        return;
    }
    QVector<WatchedValue> values;
    values.reserve(selectors.size());
    for (const Selector &selector : qAsConst(selectors)) {
        const LeafValue &value = selector.latest.value;
        const bool isGood = value.isGood() && selector.latest.finding.isNone();
        WatchedValue watched{isGood ? value.value : QVariant(), selector.seen == Seen::Changed, {}};
        if (value.timestamp != 0) {
            watched.age = ageInSeconds(value.timestamp, now);
        }
        values.append(watched);
    }
    if (until->evaluate(values) == UntilExpression::True) {
        met = true;
        end();
    }
}

Finding Watcher::findingOf(Selector &selector, qint64 now, SelectorExaminer &examiner) const
{
    const bool missing = selector.latest.value.isMissing();
    const bool examine = selector.examine;
    selector.examine = !missing;
    if (!missing) {
        return options.maximumAge.judge(selector.latest.value, now);
    }
    // Asking the services anew each time would cost a call for each selector.
    return !selector.miss.isNone() ? selector.miss
        : examine                  ? examiner.explain(selector.latest.url)
                                   : selector.latest.finding;
}

bool Watcher::isWorthTelling(const Selector &selector) const
{
    const LeafValue &value = selector.latest.value;
    return selector.seen == Seen::Never || value.errorType != selector.told.errorType
        || selector.latest.finding.text != selector.toldReason
        || Deadband::isExceeded(selector.told.value, value.value,
                                options.deadband.of(selector.latest.properties).value_or(0));
}

void Watcher::read(int index, const LeafValue &value, qint64 now, SelectorExaminer &examiner)
{
    Selector &selector = selectors[index];
    selector.latest.value = value;
    selector.latest.finding = findingOf(selector, now, examiner);
    if (!isWorthTelling(selector)) {
        return;
    }
    const bool first = selector.seen == Seen::Never;
    selector.seen = first ? Seen::Unchanged : Seen::Changed;
    selector.told = value;
    selector.toldReason = selector.latest.finding.text;
    const Entry entry = readEntry(selector.latest);
    selector.failure = entry.exitCode();
    if (!view && !(first && options.changesOnly)) {
        print(lines.value(index, selector.latest, currentTime()));
    }
    if (selector.failure != ExitAllGood && !resultsAreLost()) {
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
        ReadResult &latest = selector.latest;
        const QJsonObject properties = propertiesOf(handler, index);
        if (properties.isEmpty() && latest.properties.isEmpty()) {
            continue; // it was not there and is not: at most the reason differs, which look() shows
        }
        changes.append(compareProperties(index, latest.url, latest.properties, properties));
        latest.properties = properties;
        selector.seen = selector.seen == Seen::Never ? Seen::Never : Seen::Changed;
    }
    if (!changes.isEmpty() && !view && !console.style.quiet) {
        print(lines.signal(signal, changes, currentTime()));
    }
    if (!view && !hasEnded()) {
        look(currentTime());
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
    end();
    return false;
}

void Watcher::countLine()
{
    ++printed;
    if (options.count != 0 && isComplete()) {
        end();
    }
}

void Watcher::end()
{
    ticks.stop();
    Q_EMIT finished();
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
    return met || resultsAreLost() || (options.count != 0 && isComplete());
}

bool Watcher::isComplete() const
{
    return printed >= options.count;
}
