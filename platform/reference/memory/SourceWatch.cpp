// SPDX-License-Identifier: MIT
// Lets whoever reads a lost or outdated source have its service asked what was missed.
#include "SourceWatch.h"

#include "ProcessDataDescription.h"

#include <utility>

namespace {

std::atomic<SourceWatch::Handler> handlerOfAll{nullptr};

}

void SourceWatch::setHandler(Handler handler)
{
    handlerOfAll = handler;
}

SourceWatch::SourceWatch(const ProcessDataDescription &description, QString token)
    : name(description.source)
    , bufferName(description.buffer ? description.buffer->name : QString())
    , token(std::move(token))
{
}

void SourceWatch::noteLostRead()
{
    State before = state.load(std::memory_order_relaxed);
    if (before == Watched) {
        // When it fails, another thread has read it, or the watch has just ended: a later read will.
        state.compare_exchange_strong(before, Read);
        return;
    }
    const Handler handler = handlerOfAll.load(std::memory_order_acquire);
    if (before == Unwatched && handler != nullptr && state.compare_exchange_strong(before, Read)) {
        handler(sharedFromThis());
    }
}

bool SourceWatch::takeRead()
{
    State before = Read;
    if (state.compare_exchange_strong(before, Watched)) {
        return true;
    }
    before = Watched;
    // Read, when another thread was quicker.
    return !state.compare_exchange_strong(before, Unwatched) && before == Read && takeRead();
}
