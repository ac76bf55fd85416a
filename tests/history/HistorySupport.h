// SPDX-License-Identifier: MIT
// What the tests of the history share: a folder, a writer's settings, everything that was stored.
#ifndef HISTORYSUPPORT_H
#define HISTORYSUPPORT_H

#include "HistoryReader.h"
#include "HistoryWriter.h"

#include <QTemporaryDir>
#include <QtTest>

#include <limits>

namespace HistorySupport {

constexpr qint64 second = 1'000'000'000;
constexpr qint64 lastTime = std::numeric_limits<qint64>::max();

inline HistorySeries numbers(const QString &selector = QStringLiteral("processdata://Pump/C/1/n"))
{
    return {selector, HistoryType::Int64, QStringLiteral("1/min"), QString(), 0};
}

inline HistorySample sample(qint64 time, const QVariant &value,
                            ProcessDataDefinitions::ErrorTypes error
                            = ProcessDataDefinitions::NoError)
{
    return {time, value, error, false};
}

/// Commits when it is asked to, or when it ends.
inline HistorySettings settings(const QString &database)
{
    HistorySettings settings;
    settings.database = database;
    settings.commitEvery = 3'600'000;
    return settings;
}

inline QVector<HistorySample> stored(const QString &database, const QString &selector)
{
    HistoryReader reader;
    QVector<HistorySample> all;
    if (!reader.open(database)
        || !reader.samples(selector, -lastTime, lastTime, [&all](const HistorySample &sample) {
               all << sample;
               return true;
           })) {
        qWarning() << "reading failed:" << reader.errorText();
    }
    return all;
}

inline QVector<HistoryEvent> storedEvents(const QString &database, HistoryEvent::Kind kind)
{
    HistoryReader reader;
    QVector<HistoryEvent> all;
    QVector<HistoryEvent> wanted;
    if (!reader.open(database) || !reader.events(-lastTime, lastTime, &all)) {
        qWarning() << "reading failed:" << reader.errorText();
    }
    for (const HistoryEvent &event : qAsConst(all)) {
        if (event.kind == kind) {
            wanted << event;
        }
    }
    return wanted;
}

} // namespace HistorySupport

#endif
