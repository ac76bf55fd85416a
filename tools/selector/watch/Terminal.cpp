// SPDX-License-Identifier: MIT
// Takes the terminal and gives it back. What signal handlers call is safe in one.
#include "Terminal.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int escapeDelay = 100; // milliseconds until Escape is a key of its own

const char *const enterOwn = "\x1b[?1049h\x1b[?25l\x1b[?7l";
const char *const leaveOwn = "\x1b[?7h\x1b[?25h\x1b[?1049l";
const char *const enterSame = "\x1b[?7l";
const char *const leaveSame = "\x1b[?7h";

// Signals that end the process, with what was there for them before.
struct Ending
{
    int number;
    struct sigaction before;
};

std::array<Ending, 8> endings{{{SIGINT, {}},
                               {SIGTERM, {}},
                               {SIGHUP, {}},
                               {SIGQUIT, {}},
                               {SIGPIPE, {}},
                               {SIGABRT, {}},
                               {SIGBUS, {}},
                               {SIGSEGV, {}}}};
struct termios modesBefore = {};
struct termios modesOfKeys = {};
volatile std::sig_atomic_t hasKeys = 0;
volatile std::sig_atomic_t ownScreen = 0;
volatile std::sig_atomic_t isAway = 0; // given back while the process is stopped
volatile std::sig_atomic_t goesOn = 0; // after a stop: the terminal must be taken again
volatile std::sig_atomic_t endAsked = 0;
volatile std::sig_atomic_t wasInFront = 0; // at the start
volatile std::sig_atomic_t writeEnd = -1;

void writeAll(const char *text)
{
    // Nothing can be done about a failure here, but the compiler wants the result looked at.
    if (::write(STDOUT_FILENO, text, std::strlen(text)) < 0) {
        return;
    }
}

bool isForeground(int terminal)
{
    return ::tcgetpgrp(terminal) == ::getpgrp();
}

// In the background it waits for its turn, as the system lets it wait that sets modes there.
void take()
{
    if (wasInFront != 0 && !isForeground(STDOUT_FILENO)) {
        static_cast<void>(::raise(SIGTTOU));
        if (!isForeground(STDOUT_FILENO)) {
            return;
        }
    }
    if (hasKeys != 0) {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &modesOfKeys);
    }
    writeAll(ownScreen != 0 ? enterOwn : enterSame);
    isAway = 0;
}

void giveBack()
{
    if (isAway != 0) {
        return;
    }
    writeAll(ownScreen != 0 ? leaveOwn : leaveSame);
    if (hasKeys != 0 && isForeground(STDIN_FILENO)) {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &modesBefore);
    }
    isAway = 1;
}

void install(int signalNumber, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = flags;
    ::sigaction(signalNumber, &action, nullptr);
}

void handleNote(int signalNumber)
{
    const int error = errno;
    goesOn = goesOn != 0 || signalNumber == SIGCONT ? 1 : 0;
    if (::write(writeEnd, "n", 1) < 0) {
        errno = error; // full: a note is waiting already
    }
    errno = error;
}

// Whoever ends a stopped process lets it go on, too; so the terminal is not taken here again, where
// that could stop it once more. Where no shell could let it go on, the system does not stop it at all
// and SIGCONT never comes: hence the note.
void handleStop(int signalNumber)
{
    const int error = errno;
    giveBack();
    install(signalNumber, SIG_DFL, 0);
    static_cast<void>(::raise(signalNumber));
    install(signalNumber, handleStop, SA_RESTART | SA_NODEFER);
    handleNote(SIGCONT);
    errno = error;
}

// The first SIGINT or SIGTERM ends the event loop, and so gives the terminal back.
void handleEnd(int signalNumber)
{
    const bool isFirst = endAsked == 0 && (signalNumber == SIGINT || signalNumber == SIGTERM);
    if (!isFirst) {
        giveBack();
    }
    for (const Ending &ending : endings) {
        if (ending.number != signalNumber) {
            continue;
        }
        if ((ending.before.sa_flags & SA_SIGINFO) != 0) { // wants to know more than is known here
            ::sigaction(signalNumber, &ending.before, nullptr);
            static_cast<void>(::raise(signalNumber));
            return;
        }
        const bool isHandled
            = ending.before.sa_handler != SIG_DFL && ending.before.sa_handler != SIG_IGN;
        if (isHandled && endAsked == 0) {
            endAsked = 1;
            ending.before.sa_handler(signalNumber);
            return;
        }
        install(signalNumber, SIG_DFL, 0);
        static_cast<void>(::raise(signalNumber));
    }
}

bool isIgnored(int signalNumber)
{
    struct sigaction action = {};
    return ::sigaction(signalNumber, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

bool takeModes()
{
    if (!isForeground(STDIN_FILENO) || ::tcgetattr(STDIN_FILENO, &modesBefore) != 0) {
        return false;
    }
    modesOfKeys = modesBefore;
    modesOfKeys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    modesOfKeys.c_cc[VMIN] = 1;
    modesOfKeys.c_cc[VTIME] = 0;
    return true;
}

} // namespace

Terminal::Terminal(Screen screen)
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
        readEnd = ends[0];
        writeEnd = ends[1];
        notes = std::make_unique<QSocketNotifier>(readEnd, QSocketNotifier::Read);
        connect(notes.get(), &QSocketNotifier::activated, this, &Terminal::readNotes);
    }
    endAsked = 0;
    goesOn = 0;
    hasKeys = takeModes() ? 1 : 0;
    wasInFront = isForeground(STDOUT_FILENO) ? 1 : 0;
    ownScreen = screen == Own ? 1 : 0;
    for (Ending &ending : endings) {
        ::sigaction(ending.number, nullptr, &ending.before);
        if (ending.before.sa_handler != SIG_IGN) {
            install(ending.number, handleEnd, SA_RESTART | SA_NODEFER);
        }
    }
    if (!isIgnored(SIGTSTP)) {
        install(SIGTSTP, handleStop, SA_RESTART | SA_NODEFER);
    }
    install(SIGCONT, handleNote, SA_RESTART);
    install(SIGWINCH, handleNote, SA_RESTART);
    take();
    escapeTimer.setSingleShot(true);
    escapeTimer.setInterval(escapeDelay);
    connect(&escapeTimer, &QTimer::timeout, this, [this] {
        const QStringList left = decoder.giveUp();
        for (const QString &key : left) {
            Q_EMIT typed(key);
        }
    });
    if (hasKeys != 0) {
        keys = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
        connect(keys.get(), &QSocketNotifier::activated, this, &Terminal::readKeys);
    }
}

Terminal::~Terminal()
{
    giveBack();
    hasKeys = 0;
    ownScreen = 0;
    if (!isIgnored(SIGTSTP)) {
        install(SIGTSTP, SIG_DFL, 0);
    }
    install(SIGCONT, SIG_DFL, 0);
    install(SIGWINCH, SIG_DFL, 0);
    for (const Ending &ending : endings) {
        ::sigaction(ending.number, &ending.before, nullptr);
    }
    notes.reset();
    if (readEnd >= 0) {
        const int other = writeEnd;
        writeEnd = -1;
        ::close(readEnd);
        ::close(other);
    }
}

bool Terminal::isOurs() const
{
    return isAway == 0;
}

void Terminal::readKeys()
{
    std::array<char, 256> bytes{};
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) {
        keys->setEnabled(false); // hung up
        return;
    }
    const QStringList complete
        = decoder.take(QByteArray(bytes.data(), count < 0 ? 0 : static_cast<int>(count)));
    if (decoder.isWaiting()) {
        escapeTimer.start();
    } else {
        escapeTimer.stop();
    }
    for (const QString &key : complete) {
        Q_EMIT typed(key);
    }
}

void Terminal::readNotes()
{
    std::array<char, 64> bytes{};
    while (::read(readEnd, bytes.data(), bytes.size()) > 0) { }
    if (endAsked != 0) {
        return;
    }
    if (goesOn != 0) {
        goesOn = 0;
        take();
    }
    if (isOurs()) {
        Q_EMIT disturbed();
    }
}
