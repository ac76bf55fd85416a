// SPDX-License-Identifier: MIT
// A key of JSON objects that is known beforehand.
#ifndef JSONKEY_H
#define JSONKEY_H

#include <QLatin1String>

#include <cstddef>

/// Found in a scanned text by its number: without looking at its letters.
struct JsonKey
{
    template <size_t size>
    constexpr JsonKey(const char (&name)[size], quint32 number)
        : name(name, int(size) - 1)
        , number(number)
    {
    }

    QLatin1String name;
    quint32 number;
};

#endif
