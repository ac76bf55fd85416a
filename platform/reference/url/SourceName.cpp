// SPDX-License-Identifier: MIT
// The name of a source, and the rule for the names that it is made of.
#include "SourceName.h"

#include <QHash>

#include <algorithm>
#include <tuple>

namespace {

auto parts(const SourceName &name)
{
    return std::tie(name.module, name.object, name.instance);
}

bool isControlCharacter(QChar c)
{
    return c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0);
}

} // namespace

QString SourceName::toString() const
{
    return QStringLiteral("%1/%2/%3").arg(module, object, instance);
}

bool operator==(const SourceName &left, const SourceName &right)
{
    return parts(left) == parts(right);
}

bool operator<(const SourceName &left, const SourceName &right)
{
    return parts(left) < parts(right);
}

uint qHash(const SourceName &name, uint seed)
{
    return qHash(name.module, seed) ^ 3 * qHash(name.object, seed) ^ 5 * qHash(name.instance, seed);
}

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
