// SPDX-License-Identifier: MIT
// Records live values into a history.
#ifndef HISTORYRECORDER_H
#define HISTORYRECORDER_H

#include "SamplingPolicy.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>

class HistoryWriter;

/// One selector and when its values become samples. Times are nanoseconds.
struct RecordedSelector
{
    QString url;
    qint64 every = 1'000'000'000; ///< least time between two samples, at least 1 ms
    /// A number that differs from the last sample by this much or less is not worth another. 0: any
    /// change is worth one.
    double deadband = 0;
    /// The deadband is percent of what the leaf's description gives as minimum and maximum, 0 to
    /// 100; any change of a leaf without them is worth a sample.
    bool deadbandIsPercent = false;
    qint64 atLeastEvery = 0; ///< a sample is due after this time even without a change; 0: never
};

/// Looks at all its selectors once a cycle and appends what became a sample.
///
/// A sample has the time that its publisher gave it, so a value that is not published again is
/// stored once, however often it was due. One that was never published has the time at which it was
/// read.
///
/// A source that cannot be read is an event, SourceLost, and another one when it is back; while no
/// leaf is found nothing else is stored. Of a source whose other leaves are read, a selector is an
/// event's subject by itself. A selector without a leaf is recorded as soon as there is one. When a
/// description changes, that is an event too, and a new series begins where type, unit or text of
/// the leaf changed.
///
/// Threads: the one that made it, which runs an event loop.
class HistoryRecorder : public QObject
{
    Q_OBJECT

public:
    /// Blocks for one D-Bus call for each source.
    ///
    /// @param writer  open; outlives the recorder
    /// @param clock   the present time; empty: the system's clock
    HistoryRecorder(const QVector<RecordedSelector> &selectors, HistoryWriter &writer,
                    std::function<qint64()> clock = {}, QObject *parent = nullptr);
    ~HistoryRecorder() override;

    /// Looks now, and from then on as often as the shortest @c every of the selectors.
    void start();

    /// One cycle; start() calls it.
    void look();

    /// What became of a selector so far.
    struct Outcome
    {
        qint64 samples = 0; ///< handed to the writer
        qint64 refused = 0; ///< the writer took none of: texts and bytes beyond its limit
        bool isLost = false; ///< when it was last looked at
    };
    Outcome outcome(int index) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

#endif
