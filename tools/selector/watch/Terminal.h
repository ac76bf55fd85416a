// SPDX-License-Identifier: MIT
// The terminal while a command draws on it.
#ifndef TERMINAL_H
#define TERMINAL_H

#include "KeyDecoder.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <memory>

/// Takes keys one by one, unseen, lets the terminal break no lines, and gives the terminal back as it was: at its end, on every signal
/// that ends the process, and while the process is stopped (Ctrl-Z). Ctrl-C and Ctrl-Z stay signals.
///
/// Where standard input is not a terminal, or that of another job, no keys come.
///
/// Threads: one object in each process, in the main thread. Make it after UnixSignals.
class Terminal : public QObject
{
    Q_OBJECT

public:
    enum Screen {
        Same, ///< draws below what is there
        Own, ///< a screen of its own, without cursor
    };

    explicit Terminal(Screen screen);
    ~Terminal() override;

    /// False after a stop, until the terminal is taken again: then nothing may be drawn.
    bool isOurs() const;

Q_SIGNALS:
    /// @param key  as KeyDecoder has it
    void typed(const QString &key);

    /// All must be drawn anew: the size is different, or the process goes on after a stop.
    void disturbed();

private:
    void readKeys();
    void readNotes();

    KeyDecoder decoder;
    QTimer escapeTimer; ///< runs while a key may go on
    std::unique_ptr<QSocketNotifier> keys;
    std::unique_ptr<QSocketNotifier> notes;
    int readEnd = -1;
};

#endif
