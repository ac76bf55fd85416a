// SPDX-License-Identifier: MIT
// Goes over a JSON text once and notes where its values stand: texts, numbers and words.
#include "JsonScanner.h"

#include <cstring>

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Bytes of the character that begins with this byte; 0 when none does.
int bytesOfCharacter(uchar first)
{
    if (first >= 0xc2 && first <= 0xdf) {
        return 2;
    }
    if (first >= 0xe0 && first <= 0xef) {
        return 3;
    }
    return first >= 0xf0 && first <= 0xf4 ? 4 : 0;
}

// The second byte tells overlong forms, surrogates and what lies past Unicode.
bool mayFollow(uchar first, uchar second)
{
    switch (first) {
    case 0xe0:
        return second >= 0xa0 && second <= 0xbf;
    case 0xed:
        return second >= 0x80 && second <= 0x9f;
    case 0xf0:
        return second >= 0x90 && second <= 0xbf;
    case 0xf4:
        return second >= 0x80 && second <= 0x8f;
    default:
        return second >= 0x80 && second <= 0xbf;
    }
}

// Whether a number may stay as it is spelled. A whole one may: Qt's writer would round it past 2^53.
// A fraction may where that writer would spell it just so: digits that a double holds exactly, at
// most one zero before the point, no zero at the end, no need of an exponent.
bool isPlainNumber(const char *begin, const char *point, const char *end)
{
    constexpr int exactDigits = 15;
    constexpr int zerosWithoutExponent = 3;
    const bool isNegative = *begin == '-';
    const char *const digits = begin + (isNegative ? 1 : 0);
    if (point == end) {
        return !isNegative || *digits != '0';
    }
    return end - digits <= exactDigits && *(end - 1) != '0'
        && (*digits != '0' || std::strncmp(point + 1, "000", zerosWithoutExponent) != 0);
}

} // namespace

JsonItem JsonScanner::itemFrom(const char *begin, JsonKind kind, bool plain) const
{
    return JsonItem{quint32(begin - json.constData()), quint32(next - begin) & maximumJsonItemSize,
                    kind, quint32(plain ? 1 : 0)};
}

bool JsonScanner::scanValue(JsonItem &item)
{
    switch (afterSpace()) {
    case '"':
        return scanText(item);
    case '{':
    case '[':
        return checkContainer(item);
    case 't':
    case 'f':
    case 'n':
        return scanWord(item);
    default:
        return scanNumber(item);
    }
}

bool JsonScanner::scanText(JsonItem &item)
{
    const char *const begin = ++next;
    bool isPlain = true;
    while (next != end && *next != '"') {
        const auto byte = uchar(*next);
        if (byte >= 0x80) {
            if (!scanManyBytes()) {
                return false;
            }
        } else if (byte == '\\') {
            isPlain = false;
            if (!scanEscape()) {
                return false;
            }
        } else if (byte < 0x20) {
            return false;
        } else {
            ++next;
        }
    }
    if (next == end) {
        return false;
    }
    // Read by itself, a text would lose a byte-order mark at its begin.
    constexpr auto firstOfByteOrderMark = char(0xef);
    item = itemFrom(begin, JsonKind::String, isPlain && *begin != firstOfByteOrderMark);
    ++next;
    return true;
}

bool JsonScanner::scanManyBytes()
{
    const auto first = uchar(*next);
    const int size = bytesOfCharacter(first);
    if (size == 0 || end - next < size || !mayFollow(first, uchar(next[1]))) {
        return false;
    }
    for (int i = 2; i < size; ++i) {
        if ((uchar(next[i]) & 0xc0U) != 0x80) {
            return false;
        }
    }
    next += size;
    return true;
}

bool JsonScanner::scanEscape()
{
    constexpr int hexDigits = 4;
    ++next;
    if (next == end) {
        return false;
    }
    const char escaped = *next++;
    if (escaped != 'u') {
        return escaped != '\0' && std::strchr("\"\\/bfnrt", escaped) != nullptr;
    }
    for (int i = 0; i < hexDigits; ++i, ++next) {
        if (next == end || !isHexDigit(*next)) {
            return false;
        }
    }
    return true;
}

bool JsonScanner::skipIf(char one, char other)
{
    const bool skips = next != end && (*next == one || *next == other);
    next += skips ? 1 : 0;
    return skips;
}

bool JsonScanner::skipDigits()
{
    const char *const first = next;
    while (next != end && isDigit(*next)) {
        ++next;
    }
    return next != first;
}

bool JsonScanner::scanNumber(JsonItem &item)
{
    const char *const begin = next;
    skipIf('-', '-');
    const char *const digits = next;
    if (!skipDigits() || (*digits == '0' && next - digits > 1)) {
        return false;
    }
    const char *const point = next;
    if (skipIf('.', '.') && !skipDigits()) {
        return false;
    }
    const char *const mantissaEnd = next;
    if (skipIf('e', 'E')) {
        skipIf('-', '+');
        if (!skipDigits()) {
            return false;
        }
    }
    constexpr int digitsWithinRange = 300; // of a double
    const bool isPlain = next == mantissaEnd && isPlainNumber(begin, point, mantissaEnd);
    item = itemFrom(begin, JsonKind::Number, isPlain);
    bool good = isPlain && next - begin <= digitsWithinRange;
    if (!good) {
        QByteArray(begin, int(next - begin)).toDouble(&good);
    }
    return good;
}

bool JsonScanner::scanWord(JsonItem &item)
{
    const char *const begin = next;
    for (const char *const word : {"true", "false", "null"}) {
        const size_t size = std::strlen(word);
        if (size_t(end - begin) >= size && std::memcmp(begin, word, size) == 0) {
            next += size;
            item = itemFrom(begin, *word == 'n' ? JsonKind::Null : JsonKind::Bool, true);
            return true;
        }
    }
    return false;
}
