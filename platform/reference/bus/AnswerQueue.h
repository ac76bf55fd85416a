// SPDX-License-Identifier: MIT
// Calls that wait for their answers, and how much of our answers callers have not read yet.
#ifndef ANSWERQUEUE_H
#define ANSWERQUEUE_H

#include "ServedCall.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>

/// Bounds what callers can make a service hold. A call waits here, where it is small, until the
/// answers before it were read; its answer, which may be large, is made when its turn has come. The
/// caller whose last answer is the longest ago comes first, so that one with many calls does not
/// keep others waiting.
///
/// A bus daemon stops reading from a connection whose messages fill its memory, because others do
/// not fetch them. So the bytes that each caller has not read yet are counted, and all together.
///
/// Knows no bus. Threads: one.
class AnswerQueue
{
public:
    static constexpr int mostOfOneCaller = 64; ///< calls that wait
    static constexpr int mostOfAll = 1024;
    static constexpr qint64 mostWaitingBytes = 4 << 20; ///< of the calls themselves
    static constexpr qint64 mostUnreadOfOne = 8 << 20; ///< or one answer of any size
    /// A system bus reads no more from a connection at 127 MiB by default.
    static constexpr qint64 mostUnread = 112 << 20;
    static constexpr qint64 askFrom = 1 << 20; ///< unread bytes at which a caller is asked
    static constexpr int mostAsked = 64; ///< callers at a time: a bus daemon allows 128 open calls
    static constexpr qint64 mostRefusedBytes = 64 << 10; ///< errors to a caller that reads nothing

    using SizeOf = std::function<qint64(const ServedCall &)>;

    /// @param bytes  what the call itself takes
    /// @returns whether it waits now; else it is to be refused
    bool add(const ServedCall &call, qint64 bytes);

    /// The next call whose answer may go out. It has left the queue.
    std::optional<ServedCall> takeNext(const SizeOf &sizeOf);

    void sent(const QString &caller, qint64 bytes);

    /// Whether a refused caller is to get an error; otherwise it gets nothing.
    bool mayRefuse(const QString &caller);

    /// Callers that are to be asked now whether they have read what they were sent. Each takes one
    /// answered() or gone().
    QStringList takeCallersToAsk();

    void answered(const QString &caller); ///< it has read what was sent before it was asked
    void gone(const QString &caller);
    void clear();

    int waiting() const { return waitingCalls; }

private:
    struct Waiting
    {
        ServedCall call;
        qint64 bytes;
    };
    struct Caller
    {
        std::deque<Waiting> calls;
        qint64 unread = 0;
        qint64 unreadWhenAsked = 0;
        qint64 refused = 0;
        quint64 lastServed = 0;
        bool asked = false;
    };

    void forgetOldCallers();

    QHash<QString, Caller> callers;
    int waitingCalls = 0;
    qint64 waitingBytes = 0;
    qint64 unread = 0;
    int asked = 0;
    quint64 served = 0;
};

#endif
