// SPDX-License-Identifier: MIT
// What a history holds and what it answers: samples, events, series, pieces, gaps.
#ifndef HISTORYTYPES_H
#define HISTORYTYPES_H

#include "ProcessDataDefinitions.h"

#include <QString>
#include <QVariant>
#include <QVector>
#include <QtGlobal>

// All times are nanoseconds since 1970-01-01 00:00 UTC. All of these are value types.

/// The type of a series' values, and the type that their QVariant has.
enum class HistoryType {
    Bool, ///< bool
    Int8, ///< qint8
    Int16, ///< qint16
    Int32, ///< int
    Int64, ///< qint64
    UInt8, ///< quint8
    UInt16, ///< quint16
    UInt32, ///< uint
    UInt64, ///< quint64
    Float32, ///< float; every bit is kept, those of a NaN too
    Float64, ///< double; every bit is kept, those of a NaN too
    Text, ///< QString; may be empty, begin with U+FEFF and hold null characters
    Bytes, ///< QByteArray; may be empty
};

/// Values of one selector that belong together: when the type, the unit or the description of a
/// selector changes, a new series begins.
struct HistorySeries
{
    QString selector;
    HistoryType type = HistoryType::Float64;
    QString unit;
    QString description;
    qint64 since = 0; ///< when the series was begun; filled in by the writer
};

/// One value at one time.
struct HistorySample
{
    qint64 time = 0; ///< the value's own time, as its publisher gave it
    QVariant value; ///< in the series' unit and type; invalid when no value was obtained
    ProcessDataDefinitions::ErrorTypes errorType = ProcessDataDefinitions::NoError;
    /// Its series had a later sample when it was written: a clock was set back. Filled in by the
    /// writer.
    bool late = false;
};

/// Something that explains why values are missing, or not what they were.
struct HistoryEvent
{
    enum class Kind {
        SourceLost, ///< subject: the source; until it returns its values are not to be trusted
        SourceReturned, ///< subject: the source
        DescriptionChanged, ///< subject: the source
        RecorderStarted, ///< from: the newest time in the database before, until: the start
        RecorderEnded, ///< in an orderly way; one that was killed leaves no such event
        SamplesDropped, ///< number: how many; from, until: oldest and newest of their times
        ClockSetBack, ///< subject: one of the selectors; number: how many; from, until: the step
        DatabaseReplaced, ///< the file was removed or exchanged while it was being written
    };

    qint64 time = 0;
    Kind kind = Kind::SourceLost;
    /// What it concerns: every selector that is this text or goes on after it with "/". Empty: all.
    QString subject = {};
    qint64 from = 0;
    qint64 until = 0;
    qint64 number = 0;
    QString text = {}; ///< for people
};

/// The samples of one selector within [from, until).
struct HistoryPiece
{
    qint64 from = 0;
    qint64 until = 0;
    qint64 count = 0; ///< samples of any error type; 0: the fields below mean nothing
    HistorySample first;
    HistorySample last;
    /// Samples that least, greatest and mean are taken from: numbers, not NaN, with NoError.
    qint64 numbers = 0;
    QVariant least; ///< in the series' type; invalid when numbers is 0
    qint64 leastTime = 0;
    QVariant greatest;
    qint64 greatestTime = 0;
    double mean = 0; ///< of the samples, each counted once however long it held
};

/// A time in which the history does not know what happened to a selector.
struct HistoryGap
{
    qint64 from = 0;
    qint64 until = 0;
    HistoryEvent::Kind kind = HistoryEvent::Kind::SourceLost; ///< of the event that says so
    qint64 number = 0; ///< samples known to be missing; 0 when nobody counted
};

struct HistorySeriesInfo
{
    HistorySeries series;
    qint64 samples = 0;
    qint64 first = 0; ///< time of the oldest sample; 0 without samples
    qint64 last = 0;
};

/// What is in a database.
struct HistoryInfo
{
    int version = 0; ///< of the database's format
    qint64 bytes = 0; ///< on disk
    qint64 dropped = 0; ///< samples that never reached it, as far as its events still say
    QVector<HistorySeriesInfo> series;
};

#endif
