// SPDX-License-Identifier: MIT
// What waits for the database: bounded, the oldest goes first, and what went is counted.
#ifndef HISTORYQUEUE_H
#define HISTORYQUEUE_H

#include "HistoryStore.h"

#include <deque>
#include <vector>

/// Not thread-safe: its owner locks.
class HistoryQueue
{
public:
    static constexpr size_t mostEvents = 10000;

    explicit HistoryQueue(qint64 limit);

    void add(QueuedSample sample);
    void add(const HistoryEvent &event);

    /// Hands out the oldest. They count as waiting until settle() or giveBack().
    void take(size_t most, std::vector<QueuedSample> *samples, std::vector<HistoryEvent> *events);
    void settle();
    /// The batch could not be written, and is the oldest again.
    void giveBack(std::vector<QueuedSample> *samples, std::vector<HistoryEvent> *events);

    bool isEmpty() const { return samples.empty() && events.empty(); }
    qint64 bytes() const { return waiting + taken; }

    /// Samples and events that went, and the range of their times.
    struct Loss
    {
        qint64 number = 0;
        qint64 from = 0;
        qint64 until = 0;
    };
    const Loss &loss() const { return lost; }
    qint64 droppedEver() const { return ever; }
    /// An event has recorded so much of the loss.
    void recorded(const Loss &loss);

private:
    void trim();
    void drop(qint64 time);

    std::deque<QueuedSample> samples;
    std::deque<HistoryEvent> events;
    qint64 limit;
    qint64 waiting = 0;
    qint64 taken = 0;
    Loss lost;
    qint64 ever = 0;
};

#endif
