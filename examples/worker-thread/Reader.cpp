// SPDX-License-Identifier: MIT
// Reads selectors in the thread that it lives in, and notifies other threads by signals.
#include "Reader.h"

#include <SelectorHandlerProcessValue.h>

#include <utility>

namespace {

constexpr int period = 100; // milliseconds
}

Reader::Reader(QVector<QString> urls)
    : urls(std::move(urls))
    , timer(this) // a child, so that it follows into the other thread
{
    QObject::connect(&timer, &QTimer::timeout, this, &Reader::readAll);
}

Reader::~Reader() = default;

// The handler belongs to the thread that makes it: announcements arrive through that thread's event
// loop. Attaching asks each service over the bus, and a user interface does not wait for it here.
void Reader::start()
{
    handler = std::make_unique<SelectorHandlerProcessValue>(nullptr);
    const auto tell = [this](const QVector<int> &indices) { Q_EMIT selectorsChanged(indices); };
    QObject::connect(
        handler.get(),
        qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged), this,
        tell);
    QObject::connect(handler.get(),
                     qOverload<QVector<int>>(&SelectorHandlerProcessValue::propertyChanged), this,
                     tell);
    handler->setSelectorUrls(urls);
    timer.start(period);
}

void Reader::readAll()
{
    Q_EMIT valuesRead(handler->getValues());
}
