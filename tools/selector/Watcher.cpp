// SPDX-License-Identifier: MIT
// Polling, change signals and the end of a watch.
#include "Watcher.h"

#include "Diagnosis.h"

#include <QDateTime>
#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1000000;

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch() * nanosecondsPerMillisecond;
}

} // namespace

Watcher::Watcher(const QVector<QString> &urls, const CommandLine &line, const Console &console)
    : handler(nullptr)
    , lines(urls, console.style)
    , console(console)
    , wantedLines(line.count)
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
    connect(&timer, &QTimer::timeout, this, &Watcher::poll);
    timer.setInterval(line.interval);
    for (const QString &url : urls) {
        Selector selector;
        selector.url = url;
        selectors.append(selector);
    }
    handler.setSelectorUrls(urls);
    for (int i = 0; i < selectors.size(); ++i) {
        selectors[i].properties = currentProperties(i);
    }
}

void Watcher::start()
{
    console.out << lines.header();
    console.out.flush();
    timer.start();
    poll();
}

QJsonObject Watcher::currentProperties(int index)
{
    return QJsonDocument::fromJson(handler.getPropertyAsJsonString(index).toUtf8()).object();
}

void Watcher::poll()
{
    const QVector<ProcessValue> values = handler.getValues();
    for (int i = 0; i < values.size() && (wantedLines == 0 || printed < wantedLines); ++i) {
        read(i, values.at(i));
    }
}

void Watcher::read(int index, const ProcessValue &value)
{
    Selector &selector = selectors[index];
    const bool missing = value.getErrorType() == ProcessDataDefinitions::NoValue;
    Finding finding;
    if (missing) {
        // Asking the services anew each time would cost a call for each selector.
        finding = selector.examine ? Diagnosis().explain(selector.url) : selector.finding;
    }
    selector.examine = !missing;
    const bool same = selector.seen && value.getErrorType() == selector.errorType
        && value.getValue() == selector.value && finding.text == selector.finding.text;
    if (same) {
        return;
    }
    selector.seen = true;
    selector.value = value.getValue();
    selector.errorType = value.getErrorType();
    selector.finding = finding;
    const ReadResult result{selector.url, value, selector.properties, finding};
    const Entry entry = readEntry(result);
    selector.good = entry.state == Entry::Good || entry.state == Entry::Skipped;
    print(lines.value(index, result, now()));
    if (!selector.good) {
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
        const QJsonObject properties = currentProperties(index);
        changes.append(compareProperties(index, selector.url, selector.properties, properties));
        selector.properties = properties;
        selector.examine = true;
    }
    print(lines.signal(signal, changes, now()));
    if (wantedLines == 0 || printed < wantedLines) {
        poll();
    }
}

void Watcher::print(const QString &text)
{
    if (isComplete() && wantedLines != 0) {
        return;
    }
    console.out << text;
    console.out.flush();
    ++printed;
    if (wantedLines != 0 && isComplete()) {
        timer.stop();
        Q_EMIT finished();
    }
}

bool Watcher::allGood() const
{
    return std::all_of(selectors.begin(), selectors.end(),
                       [](const Selector &selector) { return selector.good; });
}

bool Watcher::isComplete() const
{
    return printed >= wantedLines;
}
