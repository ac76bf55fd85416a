// SPDX-License-Identifier: MIT
// Escapes what nobody sees.
#include "PrintableText.h"

#include "UnseenCharacters.h"

namespace {

constexpr uint firstOfTwoBytes = 0x100;

QString escaped(uint character)
{
    if (character == '\n') {
        return QStringLiteral("\\n");
    }
    if (character == '\t') {
        return QStringLiteral("\\t");
    }
    return hexadecimalEscape(character, firstOfTwoBytes);
}

} // namespace

QString printable(const QString &text)
{
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const bool pair = text.at(i).isHighSurrogate() && i + 1 < text.size()
            && text.at(i + 1).isLowSurrogate();
        const uint character
            = pair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
        const int length = pair ? 2 : 1;
        result += isSeen(character) ? text.mid(i, length) : escaped(character);
        i += length - 1;
    }
    return result;
}
