// SPDX-License-Identifier: MIT
// A client that stays up through everything, and what must hold of what it sees.
#include "SoakClient.h"

#include "Descriptions.h"

#include <chrono>

namespace {

constexpr int identities = 100; // values hold publication * identities + identity
constexpr int setpointIdentity = -1;

// The value's number; 0 for one that was never published.
qint64 numberOf(const ProcessValue &value)
{
    return value.getErrorType() == ProcessDataDefinitions::NoValue ? 0
                                                                   : value.getValue().toLongLong();
}

int identityOf(const SoakSelector &selector)
{
    return selector.leaf == "setpoint" ? setpointIdentity
                                       : int(SoakWorld::valueOf(0, selector.source, selector.leaf));
}

} // namespace

SoakClient::SoakClient(const SoakWorld &world)
    : world(world)
    , handler(QVector<QString>(), nullptr)
{
    connect(
        &handler,
        QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::processDataDescriptionChanged),
        this, &SoakClient::noteChange);
    connect(&handler, QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::propertyChanged),
            this, &SoakClient::noteChange);
    thread = std::thread([this] { readOn(); });
}

SoakClient::~SoakClient()
{
    stopped = true;
    thread.join();
}

SoakSelector SoakClient::selector(int source, const QString &leaf) const
{
    return {source, leaf, selectorUrl(world.source(source).module, leaf)};
}

QVector<SoakSelector> SoakClient::fullList() const
{
    QVector<SoakSelector> list;
    for (int source = 0; source < SoakWorld::sourceCount; ++source) {
        for (const char *leaf :
             {"value0", "value1", "value2", "value3", "value4", "text", "extra", "setpoint"}) {
            list += selector(source, leaf);
        }
    }
    return list;
}

void SoakClient::apply(const QVector<SoakSelector> &list)
{
    QVector<QString> urls;
    for (const SoakSelector &selector : list) {
        urls += selector.url;
    }
    handler.setSelectorUrls(urls);
    selectors = list;
    texts = handler.getPropertiesAsJsonString();
}

void SoakClient::write(double value)
{
    for (int i = 0; i < selectors.size(); ++i) {
        if (selectors.at(i).leaf == "setpoint") {
            handler.setValue(ProcessValue(QVariant(value)), i);
            return;
        }
    }
}

QString SoakClient::wrong()
{
    if (olderThanSeen != 0) {
        return QString("a value went back to %1").arg(olderThanSeen.load());
    }
    const QVector<ProcessValue> values = handler.getValues();
    if (values.size() != selectors.size()) {
        return QString("%1 values of %2 selectors").arg(values.size()).arg(selectors.size());
    }
    for (int i = 0; i < values.size(); ++i) {
        const SoakSelector &selector = selectors.at(i);
        const qint64 number = numberOf(values.at(i));
        const bool own = selector.source < 0
            ? values.at(i).getErrorType() == ProcessDataDefinitions::NoValue
            : selector.leaf == "setpoint" || number == 0
                || number % identities == identityOf(selector);
        if (!own) {
            return QString("index %1, %2, reads as %3").arg(i).arg(selector.url).arg(number);
        }
    }
    return {};
}

QString SoakClient::unsettled()
{
    for (int i = 0; i < selectors.size(); ++i) {
        const QString problem = selectors.at(i).source < 0 ? QString() : unsettled(i);
        if (!problem.isEmpty()) {
            return QString("index %1, %2: ").arg(i).arg(selectors.at(i).url) + problem;
        }
    }
    const QVector<QString> now = handler.getPropertiesAsJsonString();
    for (int i = 0; i < now.size(); ++i) {
        if (now.at(i) != texts.at(i)) {
            return QString("index %1, %2: was not signalled; known: %3; now: %4")
                .arg(i)
                .arg(selectors.at(i).url, texts.at(i), now.at(i));
        }
    }
    return {};
}

QString SoakClient::unsettled(int index)
{
    const SoakSelector &selector = selectors.at(index);
    const SoakSource &source = world.source(selector.source);
    const ProcessValue value = handler.getValue(index);
    const bool isSetpoint = selector.leaf == "setpoint";
    if (!isSetpoint && !world.leafNames(selector.source).contains(selector.leaf)) {
        return value.getErrorType() == ProcessDataDefinitions::NoValue
            ? QString()
            : "is there, but its source does not have it";
    }
    const qint64 expected = SoakWorld::valueOf(source.published, selector.source, selector.leaf);
    if (!isSetpoint
        && (value.getErrorType() != ProcessDataDefinitions::NoError
            || numberOf(value) != expected)) {
        return QString("reads as %1 with error type %2, not as %3")
            .arg(numberOf(value))
            .arg(value.getErrorType())
            .arg(expected);
    }
    const QString unit = handler.getProperty("unit", index).toString();
    const QString current = QString("v%1").arg(source.version);
    return unit == current ? QString() : QString("has unit \"%1\", not %2").arg(unit, current);
}

void SoakClient::noteChange(const QVector<int> &indices)
{
    ++signalCount;
    for (const int index : indices) {
        if (index < texts.size()) {
            texts[index] = handler.getPropertyAsJsonString(index);
        }
    }
}

// Indices mean nothing here, the list may be replaced at any time: a value tells whose it is.
void SoakClient::readOn()
{
    qint64 seen[identities] = {};
    while (!stopped) {
        const QVector<ProcessValue> values = handler.getValues();
        for (const ProcessValue &value : values) {
            noteOlder(value, seen);
        }
        handler.getPropertiesAsJsonString();
        readCount += values.size();
        std::this_thread::sleep_for(std::chrono::microseconds(200)); // the lock is others' too
    }
}

// Setpoints are written by the client: they are negative, and left out.
void SoakClient::noteOlder(const ProcessValue &value, qint64 *seen)
{
    const qint64 number = numberOf(value);
    if (number <= 0) {
        return;
    }
    qint64 &last = seen[number % identities];
    if (number < last) {
        olderThanSeen = number;
    }
    last = number;
}
