// SPDX-License-Identifier: MIT
// Self-pipe: the handler may only call what is safe in a signal, so it writes one byte.
#include "UnixSignals.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t writeEnd = -1;

void handleSignal(int signalNumber)
{
    const auto number = static_cast<unsigned char>(signalNumber);
    // Nothing can be done about a failure here, but the compiler wants the result looked at.
    if (::write(writeEnd, &number, 1) < 0) {
        return;
    }
}

void install(int signalNumber)
{
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

UnixSignals::UnixSignals(QObject *parent)
    : QObject(parent)
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    readEnd = ends[0];
    writeEnd = ends[1];
    notifier = std::make_unique<QSocketNotifier>(readEnd, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &UnixSignals::readPipe);
    install(SIGINT);
    install(SIGTERM);
}

UnixSignals::~UnixSignals()
{
    if (!notifier) {
        return;
    }
    static_cast<void>(std::signal(SIGINT, SIG_DFL));
    static_cast<void>(std::signal(SIGTERM, SIG_DFL));
    notifier.reset();
    ::close(readEnd);
    ::close(writeEnd);
    writeEnd = -1;
}

void UnixSignals::readPipe()
{
    unsigned char number = 0;
    if (::read(readEnd, &number, 1) == 1) {
        Q_EMIT received(number);
    }
}
