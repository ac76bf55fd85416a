// SPDX-License-Identifier: MIT
// A client that stays up through everything, and what must hold of what it sees.
#ifndef SOAKCLIENT_H
#define SOAKCLIENT_H

#include "SelectorHandlerProcessValue.h"
#include "SoakWorld.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <atomic>
#include <thread>

/// One entry of the client's list.
struct SoakSelector
{
    int source; // -1: of the hostile service, or no selector at all
    QString leaf;
    QString url;
};

/// Reads in a thread of its own all the time; everything else in the thread that made it.
class SoakClient : public QObject
{
public:
    explicit SoakClient(const SoakWorld &world);
    ~SoakClient() override;

    /// Each leaf that a source may have, once; the URLs of the hostile service not.
    QVector<SoakSelector> fullList() const;
    SoakSelector selector(int source, const QString &leaf) const;

    void apply(const QVector<SoakSelector> &list);
    const QVector<SoakSelector> &list() const { return selectors; }

    /// Writes one leaf that the list names "setpoint".
    void write(double value);

    /// What must hold at any time: a value stands at the index of its own selector, and a
    /// publication that was seen is never followed by an older one. Empty when it holds.
    QString wrong();

    /// What must hold once all is quiet: the last values, the last properties, and a client that
    /// only looked at what was signalled knows all texts. Empty when it holds.
    QString unsettled();

    qint64 reads() const { return readCount; }
    qint64 signalsSeen() const { return signalCount; }

private:
    void noteChange(const QVector<int> &indices);
    void readOn();
    void noteOlder(const ProcessValue &value, qint64 *seen);
    QString unsettled(int index);

    const SoakWorld &world;
    SelectorHandlerProcessValue handler;
    QVector<SoakSelector> selectors;
    QVector<QString> texts; // as the signals told
    qint64 signalCount = 0;
    std::atomic<qint64> readCount{0};
    std::atomic<qint64> olderThanSeen{0}; // a value that went back, as the thread met it
    std::atomic<bool> stopped{false};
    std::thread thread;
};

#endif
