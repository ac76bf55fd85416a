// SPDX-License-Identifier: MIT
// What waits for the database: bounded, the oldest goes first, and what went is counted.
#include "HistoryQueue.h"

#include <algorithm>

namespace {

qint64 size(const QueuedSample &sample)
{
    qint64 bytes = sizeof sample;
    if (sample.value.userType() == QMetaType::QByteArray) {
        bytes += 32 + sample.value.toByteArray().size();
    } else if (sample.value.userType() == QMetaType::QString) {
        bytes += 32 + 2 * qint64(sample.value.toString().size());
    }
    return bytes;
}

} // namespace

HistoryQueue::HistoryQueue(qint64 limit)
    : limit(limit)
{
}

void HistoryQueue::add(QueuedSample sample)
{
    waiting += size(sample);
    samples.push_back(std::move(sample));
    trim();
}

void HistoryQueue::add(const HistoryEvent &event)
{
    events.push_back(event);
    if (events.size() > mostEvents) {
        drop(events.front().time);
        events.pop_front();
    }
}

void HistoryQueue::take(size_t most, std::vector<QueuedSample> *someSamples,
                        std::vector<HistoryEvent> *someEvents)
{
    while (!samples.empty() && someSamples->size() < most) {
        const qint64 bytes = size(samples.front());
        waiting -= bytes;
        taken += bytes;
        someSamples->push_back(std::move(samples.front()));
        samples.pop_front();
    }
    someEvents->assign(events.begin(), events.end());
    events.clear();
}

void HistoryQueue::settle()
{
    taken = 0;
}

void HistoryQueue::giveBack(std::vector<QueuedSample> *someSamples,
                            std::vector<HistoryEvent> *someEvents)
{
    waiting += taken;
    taken = 0;
    samples.insert(samples.begin(), std::make_move_iterator(someSamples->begin()),
                   std::make_move_iterator(someSamples->end()));
    events.insert(events.begin(), someEvents->begin(), someEvents->end());
    someSamples->clear();
    someEvents->clear();
    while (events.size() > mostEvents) {
        drop(events.front().time);
        events.pop_front();
    }
    trim();
}

void HistoryQueue::recorded(const Loss &loss)
{
    lost.number -= loss.number;
    if (lost.number == 0) {
        lost = Loss();
    }
}

void HistoryQueue::trim()
{
    while (waiting + taken > limit && !samples.empty()) {
        waiting -= size(samples.front());
        drop(samples.front().time);
        samples.pop_front();
    }
}

void HistoryQueue::drop(qint64 time)
{
    lost.from = lost.number == 0 ? time : std::min(lost.from, time);
    lost.until = lost.number == 0 ? time : std::max(lost.until, time);
    ++lost.number;
    ++ever;
}
