// SPDX-License-Identifier: MIT
// Reads UTF-8 as it stands.
#ifndef UTF8_H
#define UTF8_H

#include <QString>

#include <cstring>

/// Unlike QString::fromUtf8, which drops a byte-order mark at the begin: in a value it is a
/// character like any other.
inline QString textFromUtf8(const char *bytes, int size)
{
    constexpr int markSize = 3;
    int marks = 0;
    while (size >= markSize && std::memcmp(bytes, "\xef\xbb\xbf", markSize) == 0) {
        bytes += markSize;
        size -= markSize;
        ++marks;
    }
    const QString text = QString::fromUtf8(bytes, size);
    return Q_LIKELY(marks == 0) ? text : QString(marks, QChar(QChar::ByteOrderMark)) + text;
}

#endif
