// SPDX-License-Identifier: MIT
// Calls that wait for their answers, and how much of our answers callers have not read yet.
#include "AnswerQueue.h"

#include <algorithm>

bool AnswerQueue::add(const ServedCall &call, qint64 bytes)
{
    if (waitingCalls >= mostOfAll || waitingBytes + bytes > mostWaitingBytes) {
        return false;
    }
    Caller &caller = callers[call.sender()];
    if (caller.calls.size() >= mostOfOneCaller) {
        return false;
    }
    caller.calls.push_back({call, bytes});
    ++waitingCalls;
    waitingBytes += bytes;
    return true;
}

std::optional<ServedCall> AnswerQueue::takeNext(const SizeOf &sizeOf)
{
    Caller *next = nullptr;
    for (Caller &caller : callers) {
        if (caller.calls.empty() || (next != nullptr && next->lastServed <= caller.lastServed)) {
            continue;
        }
        const qint64 size = sizeOf(caller.calls.front().call);
        const bool fits = (caller.unread == 0 || caller.unread + size <= mostUnreadOfOne)
            && (unread == 0 || unread + size <= mostUnread);
        if (fits) {
            next = &caller;
        }
    }
    if (next == nullptr) {
        return std::nullopt;
    }
    const Waiting taken = next->calls.front();
    next->calls.pop_front();
    next->lastServed = ++served;
    next->refused = 0;
    --waitingCalls;
    waitingBytes -= taken.bytes;
    return taken.call;
}

void AnswerQueue::sent(const QString &caller, qint64 bytes)
{
    callers[caller].unread += bytes;
    unread += bytes;
    forgetOldCallers();
}

bool AnswerQueue::mayRefuse(const QString &caller)
{
    constexpr qint64 sizeOfError = 512;
    Caller &refused = callers[caller];
    if (refused.refused >= mostRefusedBytes) {
        return false;
    }
    refused.refused += sizeOfError;
    sent(caller, sizeOfError);
    return true;
}

QStringList AnswerQueue::takeCallersToAsk()
{
    QStringList result;
    for (auto it = callers.begin(); it != callers.end() && asked < mostAsked; ++it) {
        if (!it->asked && it->unread >= askFrom) {
            it->asked = true;
            it->unreadWhenAsked = it->unread;
            ++asked;
            result += it.key();
        }
    }
    return result;
}

void AnswerQueue::answered(const QString &caller)
{
    const auto found = callers.find(caller);
    if (found == callers.end() || !found->asked) {
        return;
    }
    found->asked = false;
    --asked;
    found->unread -= found->unreadWhenAsked;
    unread -= found->unreadWhenAsked;
    found->refused = 0;
}

void AnswerQueue::gone(const QString &caller)
{
    const auto found = callers.find(caller);
    if (found == callers.end()) {
        return;
    }
    for (const Waiting &each : found->calls) {
        --waitingCalls;
        waitingBytes -= each.bytes;
    }
    asked -= found->asked ? 1 : 0;
    unread -= found->unread;
    callers.erase(found);
}

void AnswerQueue::clear()
{
    *this = AnswerQueue();
}

// A caller that has ended without being asked is never heard of again; what it may have left unread
// is little.
void AnswerQueue::forgetOldCallers()
{
    constexpr int mostCallers = 512;
    while (callers.size() > mostCallers) {
        auto oldest = callers.end();
        for (auto it = callers.begin(); it != callers.end(); ++it) {
            if (it->calls.empty() && !it->asked
                && (oldest == callers.end() || it->lastServed < oldest->lastServed)) {
                oldest = it;
            }
        }
        if (oldest == callers.end()) {
            return;
        }
        unread -= oldest->unread;
        callers.erase(oldest);
    }
}
