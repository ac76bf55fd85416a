// SPDX-License-Identifier: MIT
// The rule for the names that sources and leaves have.
#include "SourceName.h"

#include <algorithm>

namespace {

bool isControlCharacter(QChar c)
{
    return c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0);
}

} // namespace

bool hasControlCharacter(QStringView text)
{
    return std::any_of(text.begin(), text.end(), isControlCharacter);
}

bool isNameText(const QString &text)
{
    return text.isValidUtf16() && !hasControlCharacter(text);
}

bool isPartOfKey(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('_'));
}
