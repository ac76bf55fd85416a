// SPDX-License-Identifier: MIT
// Takes the bytes of keys apart.
#include "KeyDecoder.h"

#include <algorithm>

namespace {

constexpr char escape = 0x1b;
constexpr char deletion = 0x7f; // what Backspace sends on most terminals

// Of a UTF-8 character by its first byte; 1 also for what begins none.
int lengthOfCharacter(uchar first)
{
    if (first < 0xc0 || first >= 0xf8) {
        return 1;
    }
    return first >= 0xf0 ? 4 : (first >= 0xe0 ? 3 : 2);
}

// Of an escape sequence; 0 when more must follow.
int lengthOfSequence(const QByteArray &bytes)
{
    if (bytes.size() < 2) {
        return 0;
    }
    if (bytes.at(1) == 'O') {
        return bytes.size() < 3 ? 0 : 3;
    }
    if (bytes.at(1) != '[') {
        return 1; // Escape, and a key of its own
    }
    for (int i = 2; i < bytes.size(); ++i) {
        if (bytes.at(i) >= '@' && bytes.at(i) <= '~') {
            return i + 1;
        }
    }
    return 0;
}

} // namespace

QStringList KeyDecoder::take(const QByteArray &bytes)
{
    QStringList keys;
    pending += bytes;
    for (int length = lengthOfKey(); length > 0; length = lengthOfKey()) {
        const QString key = keyOf(pending.left(length));
        pending.remove(0, length);
        if (!key.isEmpty()) {
            keys.append(key);
        }
    }
    return keys;
}

QStringList KeyDecoder::giveUp()
{
    const bool isEscape = pending.startsWith(escape);
    pending.clear();
    return isEscape ? QStringList(QString(QChar(escapeKey))) : QStringList();
}

// 0 when it is not complete, or there is none.
int KeyDecoder::lengthOfKey() const
{
    if (pending.isEmpty()) {
        return 0;
    }
    if (pending.at(0) == escape) {
        return lengthOfSequence(pending);
    }
    const int length = lengthOfCharacter(uchar(pending.at(0)));
    for (int i = 1; i < std::min(length, pending.size()); ++i) {
        if ((uchar(pending.at(i)) & 0xc0) != 0x80) {
            return 1; // not text
        }
    }
    return length <= pending.size() ? length : 0;
}

QString KeyDecoder::keyOf(const QByteArray &bytes) const
{
    const char first = bytes.at(0);
    if (first == escape) {
        return bytes.size() == 1 ? QString(QChar(escapeKey)) : QString();
    }
    if (first == '\r' || first == '\n') {
        return QString(QChar(enterKey));
    }
    if (first == deletion || first == '\b') {
        return QString(QChar(backspaceKey));
    }
    const QString key = QString::fromUtf8(bytes);
    return key.contains(QChar::ReplacementCharacter) ? QString() : key;
}
