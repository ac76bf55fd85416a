// SPDX-License-Identifier: MIT
// Asks a running simulator over its control interface.
#ifndef CONTROLCLIENT_H
#define CONTROLCLIENT_H

#include <QLatin1String>
#include <QSharedPointer>
#include <QString>

class ClientBus;

/// What a call came to.
struct ControlAnswer
{
    enum Kind {
        Done,
        Refused, ///< the simulator says why
        Gone, ///< the simulator ended before it answered
        TimedOut, ///< the simulator is there, but has not answered yet
        Denied, ///< the bus does not let this user send it
        NoSimulator, ///< none serves the interface on this bus
        NoBus, ///< the connection was lost
    };
    Kind kind = Done;
    QString text; ///< what was answered, or one sentence that says what went wrong
};

/// Threads: the main thread; runs no event loop.
class ControlClient
{
public:
    ~ControlClient();

    /// @param error  receives one sentence; left alone on success
    /// @returns whether the bus that the environment chooses is there
    bool open(QString &error);

    /// Calls a method with one text, and waits for its answer for as long as one call may take.
    ControlAnswer ask(QLatin1String method, const QString &argument) const;

private:
    bool isServed() const;

    QSharedPointer<ClientBus> bus;
};

#endif
