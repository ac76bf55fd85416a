// SPDX-License-Identifier: MIT
// Asynchronous fetches that wait for their turn, and how many may be under way at a time.
#ifndef FETCHQUEUE_H
#define FETCHQUEUE_H

#include "DescriptionReply.h"

#include <QDBusMessage>
#include <QHash>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QSharedPointer>
#include <QString>
#include <QVector>

#include <functional>

class ServiceListener;

/// One fetch of a description, from the request to its end.
///
/// Threads: any.
class DescriptionFetch
{
public:
    using Handler = std::function<void(const DescriptionReply &reply)>;

    /// @param timeLimit  milliseconds, from when it is sent
    /// @param receiver   in whose thread the handler is called; abandon() comes before its end
    /// @param asker      whom a service that hangs owes the answer
    DescriptionFetch(const QDBusMessage &call, int timeLimit, QObject *receiver, Handler handler,
                     const ServiceListener *asker = nullptr);

    /// Nobody waits for it any more: it is not sent if it has not been yet, and reports nothing.
    void abandon();
    bool isAbandoned() const;

    /// Hands the answer over, queued.
    void report(const DescriptionReply &reply);

    const QDBusMessage call;
    const int timeLimit;
    const ServiceListener *const asker; ///< may be gone: only to be compared
    const QString key; ///< the same for all fetches that ask for the same

private:
    const Handler handler;
    mutable QMutex mutex; // guards what follows
    QObject *receiver; // null once it was abandoned
};

/// Lets a service answer one fetch of an instance before it is asked for the same again: what was
/// replaced meanwhile is never sent, so a storm of announcements costs as many fetches as the
/// service answers in that time. Keeps below the number of answers that a bus daemon lets one
/// connection wait for, which is 128 by default; beyond it, it refuses calls.
///
/// Knows no bus and no threads; its user holds one lock around every call.
class FetchQueue
{
public:
    using Fetch = QSharedPointer<DescriptionFetch>;

    static constexpr int mostUnderWay = 64;
    static constexpr int mostOfOneService = 16; ///< a service that hangs leaves room for others

    void add(const Fetch &fetch) { waiting += fetch; }

    /// Takes all whose turn has come, in their order; they are under way now. Forgets those that
    /// were abandoned.
    QVector<Fetch> takeNext();

    /// A fetch that was under way has ended.
    void ended(const DescriptionFetch &fetch);

private:
    bool mayStart(const DescriptionFetch &fetch) const;

    QVector<Fetch> waiting;
    QSet<QString> underWay; // keys
    QHash<QString, int> underWayOfService;
};

#endif
