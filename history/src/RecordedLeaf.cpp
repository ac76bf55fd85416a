// SPDX-License-Identifier: MIT
// Makes samples of one selector's values.
#include "RecordedLeaf.h"

#include "HistoryValueCodec.h"
#include "HistoryWriter.h"
#include "ProcessDataAccess.h"

#include <algorithm>
#include <utility>

namespace {

// The type that a value has where its description names none that is known.
bool typeOfValue(const QVariant &value, HistoryType *type)
{
    for (int i = 0; i <= int(HistoryType::Bytes); ++i) {
        if (value.isValid() && HistoryValueCodec::fits(HistoryType(i), value)) {
            *type = HistoryType(i);
            return true;
        }
    }
    return false;
}

// Platforms hand out small numbers in larger types.
QVariant inType(HistoryType type, const QVariant &value)
{
    return HistoryValueCodec::fits(type, value)
        ? value
        : HistoryValueCodec::decode(type, HistoryValueCodec::encode(type, value));
}

ProcessDataDefinitions::ErrorTypes storedError(const ProcessValue &value)
{
    using Access = ProcessDataAccess::ErrorType;
    static_assert(int(Access::NoError) == ProcessDataDefinitions::NoError);
    static_assert(int(Access::NotInitialized) == ProcessDataDefinitions::NotInitialized);
    static_assert(int(Access::SourceLost) == ProcessDataDefinitions::SourceLost);
    static_assert(int(Access::NoValue) == ProcessDataDefinitions::NoValue);
    static_assert(int(Access::DeviceFault) == ProcessDataDefinitions::DeviceFault);
    static_assert(int(Access::OutOfRange) == ProcessDataDefinitions::OutOfRange);
    return ProcessDataDefinitions::ErrorTypes(ProcessDataAccess::errorTypeOf(value));
}

} // namespace

RecordedLeaf::RecordedLeaf(RecordedSelector selector, qint64 slack)
    : selector(std::move(selector))
    , slack(slack)
{
}

QString RecordedLeaf::source() const
{
    return selector.url.section(QLatin1Char('/'), 0, 4);
}

QStringList RecordedLeaf::describe(const QJsonObject &now)
{
    QStringList names = properties.keys() + now.keys();
    names.removeDuplicates();
    names.removeAll(QStringLiteral("session")); // tells runs of a publisher apart
    names.erase(std::remove_if(
                    names.begin(), names.end(),
                    [&](const QString &name) { return properties.value(name) == now.value(name); }),
                names.end());
    const bool both = isDescribed() && !now.isEmpty();
    properties = now;
    if (!names.isEmpty()) {
        series = -1; // the writer gives an equal description its old number
        forget();
    }
    return both ? names : QStringList();
}

bool RecordedLeaf::isLost(const ProcessValue &value)
{
    const auto error = ProcessDataAccess::errorTypeOf(value);
    return error == ProcessDataAccess::ErrorType::SourceLost
        || error == ProcessDataAccess::ErrorType::NoValue;
}

void RecordedLeaf::forget()
{
    policy.reset();
}

bool RecordedLeaf::beginSeries(const QVariant &value, HistoryWriter &writer)
{
    if (!HistoryValueCodec::typeOf(properties.value(QLatin1String("type")).toString(), &type)
        && !typeOfValue(value, &type)) {
        return false;
    }
    SamplingRule rule;
    rule.every = std::max<qint64>(0, selector.every - slack);
    rule.atLeastEvery = std::max<qint64>(0, selector.atLeastEvery - slack);
    rule.deadband = selector.deadband;
    if (selector.deadbandIsPercent) {
        const QJsonValue lowest = properties.value(QLatin1String("minimum"));
        const QJsonValue highest = properties.value(QLatin1String("maximum"));
        rule.deadband = lowest.isDouble() && highest.isDouble()
            ? SamplingRule::ofRange(selector.deadband, lowest.toDouble(), highest.toDouble())
            : 0;
    }
    policy = SamplingPolicy(rule);
    series
        = writer.addSeries({selector.url, type, properties.value(QLatin1String("unit")).toString(),
                            properties.value(QLatin1String("description")).toString(), 0});
    hasStored = false;
    return true;
}

void RecordedLeaf::take(const ProcessValue &value, qint64 now, HistoryWriter &writer)
{
    const QVariant read = ProcessDataAccess::valueOf(value);
    const auto error = storedError(value);
    if (error == ProcessDataDefinitions::NoValue || (series < 0 && !beginSeries(read, writer))) {
        return;
    }
    const qint64 timestamp = ProcessDataAccess::timestampOf(value);
    const HistorySample sample{timestamp == 0 ? now : timestamp, inType(type, read), error, false};
    if (!policy.take(sample.value, error, now)) {
        return;
    }
    if (hasStored && stored.time == sample.time && stored.errorType == error
        && stored.value == sample.value) {
        return; // due, but not published again
    }
    stored = sample;
    hasStored = writer.append(series, sample);
    ++(hasStored ? outcome.samples : outcome.refused);
}
