// SPDX-License-Identifier: MIT
// Turns SIGINT and SIGTERM into a Qt signal.
#ifndef UNIXSIGNALS_H
#define UNIXSIGNALS_H

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Reports the first SIGINT or SIGTERM from the event loop; a second one ends the process at once,
/// for people who cannot wait.
///
/// Threads: one object in each process, in the main thread.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

    /// Whether both signals are caught; false when the system had no descriptors left.
    bool isActive() const { return notifier != nullptr; }

Q_SIGNALS:
    void received(int signalNumber);

private:
    void readPipe();

    std::unique_ptr<QSocketNotifier> notifier;
    int readEnd = -1;
};

#endif
