// SPDX-License-Identifier: MIT
// Keeps the parsed URLs of one list side by side in memory.
#ifndef SELECTORURLBLOCK_H
#define SELECTORURLBLOCK_H

#include "SelectorUrlHandler.h"

#include <QSharedPointer>
#include <QString>
#include <QVector>

#include <new>

/// Reading a list asks each of its URLs something. Strewn over the heap, a page each, long lists
/// would wait for the memory more than for anything else.
class SelectorUrlBlock
{
public:
    explicit SelectorUrlBlock(int capacity)
        : places(capacity)
        , next(places.data())
    {
    }

    /// Parses the next URL of the list; at most as many as the capacity. The memory lives until the
    /// last of its URLs is gone.
    QSharedPointer<SelectorUrlHandler> parse(const QString &selectorUrl)
    {
        auto *const url = new (next++) SelectorUrlHandler(selectorUrl);
        const auto destroy
            = [keep = places](SelectorUrlHandler *url) { url->~SelectorUrlHandler(); };
        return QSharedPointer<SelectorUrlHandler>(url, destroy);
    }

private:
    struct Place
    {
        alignas(SelectorUrlHandler) char bytes[sizeof(SelectorUrlHandler)];
    };

    QVector<Place> places; // shared with each URL's deleter, never written as a vector again
    Place *next;
};

#endif
