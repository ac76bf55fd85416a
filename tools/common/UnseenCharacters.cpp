// SPDX-License-Identifier: MIT
// Characters that are not seen, and their spelling.
#include "UnseenCharacters.h"

bool isSeen(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

QString hexadecimalEscape(uint character, uint firstLong)
{
    constexpr int hexadecimal = 16;
    constexpr uint firstPastFourDigits = 0x10000;
    const bool isShort = character < firstLong;
    const bool isLong = character >= firstPastFourDigits;
    const int digits = isShort ? 2 : (isLong ? 8 : 4);
    return QString(QLatin1Char('\\')) + QLatin1Char(isShort ? 'x' : (isLong ? 'U' : 'u'))
        + QString::number(character, hexadecimal).rightJustified(digits, QLatin1Char('0'));
}
