// SPDX-License-Identifier: MIT
// Keys out of the bytes that a terminal sends.
#ifndef KEYDECODER_H
#define KEYDECODER_H

#include <QByteArray>
#include <QStringList>

constexpr char16_t escapeKey = 0x1b;
constexpr char16_t enterKey = '\n';
constexpr char16_t backspaceKey = '\b';

/// Each key is a text of one character. Arrow and function keys, which send several bytes that
/// begin like Escape, are left out.
class KeyDecoder
{
public:
    /// The keys that are complete with these bytes.
    QStringList take(const QByteArray &bytes);

    /// Whether the latest byte may be the beginning of a longer key.
    bool isWaiting() const { return !pending.isEmpty(); }

    /// The key that it is when nothing follows: Escape, or none.
    QStringList giveUp();

private:
    int lengthOfKey() const;
    QString keyOf(const QByteArray &bytes) const;

    QByteArray pending;
};

#endif
