// SPDX-License-Identifier: MIT
// One selector that is recorded: its series, and which of its values become samples.
#ifndef RECORDEDLEAF_H
#define RECORDEDLEAF_H

#include "HistoryRecorder.h"
#include "HistoryTypes.h"
#include "ProcessValue.h"

#include <QJsonObject>
#include <QStringList>

class RecordedLeaf
{
public:
    /// @param slack  ns by which a cycle may come too early for @c every
    RecordedLeaf(RecordedSelector selector, qint64 slack);

    const QString &url() const { return selector.url; }
    /// The beginning of the URL that names the source: scheme, module, object, instance.
    QString source() const;

    /// Takes over what the description says of the leaf now; an empty object: there is no leaf.
    ///
    /// @returns the names of the properties that are different; none when there was no leaf
    QStringList describe(const QJsonObject &now);
    bool isDescribed() const { return !properties.isEmpty(); }

    /// Whether a value shows that its source is gone, or that there is no leaf.
    static bool isLost(const ProcessValue &value);

    /// Looks at one value.
    ///
    /// @param now  when it was read
    void take(const ProcessValue &value, qint64 now, HistoryWriter &writer);
    /// The next value becomes a sample.
    void forget();

    HistoryRecorder::Outcome outcome;

private:
    bool beginSeries(const QVariant &value, HistoryWriter &writer);

    RecordedSelector selector;
    const qint64 slack;
    SamplingPolicy policy;
    QJsonObject properties;
    HistoryType type = HistoryType::Float64;
    int series = -1;
    HistorySample stored; ///< the last one
    bool hasStored = false;
};

#endif
