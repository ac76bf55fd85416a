// SPDX-License-Identifier: MIT
// Escapes text and reads it back.
#include "EscapedText.h"

#include "UnseenCharacters.h"

#include <QVector>

namespace {

constexpr int hexadecimal = 16;
constexpr uint firstOfTwoBytes = 0x80; // what a shell's printf would take \x for
const QLatin1String emptyText("\\c"); // for which a shell's printf prints nothing, too
const QLatin1String shortNames("nrt\\");
const QLatin1String shortMeanings("\n\r\t\\");

// QString::fromUcs4 would drop a byte-order mark.
QString asText(uint character)
{
    return QChar::requiresSurrogates(character)
        ? QString(QChar(QChar::highSurrogate(character))) + QChar(QChar::lowSurrogate(character))
        : QString(QChar(static_cast<ushort>(character)));
}

QString escaped(uint character)
{
    for (int i = 0; i < shortMeanings.size(); ++i) {
        if (character == uchar(shortMeanings.at(i).toLatin1())) {
            return QLatin1Char('\\') + QString(shortNames.at(i));
        }
    }
    return hexadecimalEscape(character, firstOfTwoBytes);
}

int digitsAfter(QChar name)
{
    switch (name.unicode()) {
    case 'x':
        return 2;
    case 'u':
        return 4;
    case 'U':
        return 8;
    default:
        return 0;
    }
}

// The character that an escape means; nothing when it is none. Moves to the escape's last character.
bool takeEscape(const QString &spelled, int &at, uint &character)
{
    const QChar name = at + 1 < spelled.size() ? spelled.at(++at) : QChar();
    for (int i = 0; i < shortNames.size(); ++i) {
        if (name == shortNames.at(i)) {
            character = uchar(shortMeanings.at(i).toLatin1());
            return true;
        }
    }
    const int count = digitsAfter(name);
    bool ok = count > 0 && spelled.size() - at > count;
    for (int i = 1; ok && i <= count; ++i) {
        ok = QByteArray("0123456789abcdefABCDEF").contains(spelled.at(at + i).toLatin1())
            && spelled.at(at + i).unicode() != 0;
    }
    character = ok ? spelled.midRef(at + 1, count).toUInt(&ok, hexadecimal) : 0;
    at += count;
    return ok && character <= QChar::LastValidCodePoint && !QChar::isSurrogate(character);
}

} // namespace

QString escapedText(const QString &text)
{
    if (text.isEmpty()) {
        return emptyText;
    }
    QString result;
    const QVector<uint> characters = text.toUcs4();
    for (int i = 0; i < characters.size(); ++i) {
        const uint character = characters.at(i);
        const bool isEnd = i == 0 || i == characters.size() - 1;
        result += isSeen(character) && character != '\\' && !(isEnd && character == ' ')
            ? asText(character)
            : escaped(character);
    }
    return result;
}

bool textFromEscapes(const QString &spelled, QString &text, QString &error)
{
    QString result;
    if (spelled == emptyText) {
        text = result;
        return true;
    }
    for (int i = 0; i < spelled.size(); ++i) {
        if (spelled.at(i) != QLatin1Char('\\')) {
            result += spelled.at(i);
            continue;
        }
        const int begin = i;
        uint character = 0;
        if (!takeEscape(spelled, i, character)) {
            error = QStringLiteral("has a backslash at character %1 that begins no escape; "
                                   "\\\\ \\n \\r \\t \\xHH \\uHHHH \\UHHHHHHHH are known")
                        .arg(begin + 1);
            return false;
        }
        result += asText(character);
    }
    text = result;
    return true;
}
