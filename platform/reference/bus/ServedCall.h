// SPDX-License-Identifier: MIT
// A call to one of our services, and the object that answers it.
#ifndef SERVEDCALL_H
#define SERVEDCALL_H

#include "WireMessage.h"

#include <QString>

#include <functional>
#include <utility>

/// Threads: that of the connection it came by.
class ServedCall
{
public:
    using Send = std::function<void(const WireMessage &call, const BusAnswer &answer)>;

    /// @param send  sends an answer that was withheld first; may be called once, as long as one likes
    ServedCall(WireMessage message, Send send)
        : call(std::move(message))
        , sendLater(std::move(send))
    {
    }

    const WireMessage &message() const { return call; }
    QString sender() const; ///< unique name
    QString service() const; ///< that it was sent to: a well-known name, or the unique one
    QString path() const;
    QString interface() const; ///< empty when the caller named none
    QString member() const;
    QString signature() const;
    QString text(int position) const { return Wire::text(call, position); }
    bool wantsAnswer() const;

    /// Whether it is this method: with this interface or none.
    bool isFor(const QString &interfaceName, const char *memberName) const;

    /// For an object that withholds its answer now.
    std::function<void(const BusAnswer &)> later() const
    {
        return [call = call, send = sendLater](const BusAnswer &answer) { send(call, answer); };
    }

private:
    WireMessage call;
    Send sendLater;
};

/// An object at a path of a service.
///
/// Threads: that of the service.
class ServedObject
{
public:
    ServedObject() = default;
    virtual ~ServedObject() = default;
    ServedObject(const ServedObject &) = delete;
    ServedObject &operator=(const ServedObject &) = delete;

    /// Its interfaces, as introspection shows them.
    virtual QString introspection() const = 0;

    /// Answers one call. What it repeats of the call may be of any length: the connection cuts
    /// errors.
    virtual BusAnswer answer(const ServedCall &call) = 0;

    /// Bytes that the answer will take, about. Without side effects: asked before the call's turn
    /// has come, perhaps more than once.
    virtual qint64 answerSize(const ServedCall &call) const
    {
        Q_UNUSED(call)
        return 0;
    }
};

#endif
