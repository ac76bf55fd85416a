// SPDX-License-Identifier: MIT
// Tells differences that break clients from those that do not.
#include "LeafDifferences.h"

#include "ValueText.h"

#include <QStringList>

#include <optional>

namespace {

// In full: as a number that JSON would round, which is a string of its digits, or another.
std::optional<qlonglong> wholeSigned(const QJsonValue &value)
{
    bool ok = false;
    const qlonglong number = value.toVariant().toString().toLongLong(&ok);
    return ok ? std::make_optional(number) : std::nullopt;
}

std::optional<qulonglong> wholeUnsigned(const QJsonValue &value)
{
    bool ok = false;
    const qulonglong number = value.toVariant().toString().toULongLong(&ok);
    return ok ? std::make_optional(number) : std::nullopt;
}

bool isNumber(const QJsonValue &value)
{
    bool ok = false;
    value.toVariant().toDouble(&ok);
    return ok && (value.isDouble() || value.isString());
}

template <typename Number> bool narrows(const QString &name, Number before, Number after)
{
    return name == QLatin1String("minimum") ? after > before : after < before;
}

// No limit takes more than any limit.
bool takesLess(const QString &name, const QJsonValue &before, const QJsonValue &after)
{
    if (after.isUndefined()) {
        return false;
    }
    if (wholeSigned(before) && wholeSigned(after)) {
        return narrows(name, *wholeSigned(before), *wholeSigned(after));
    }
    if (wholeUnsigned(before) && wholeUnsigned(after)) {
        return narrows(name, *wholeUnsigned(before), *wholeUnsigned(after));
    }
    if (!isNumber(before) || !isNumber(after)) {
        return true;
    }
    return narrows(name, before.toVariant().toDouble(), after.toVariant().toDouble());
}

bool breaks(const QString &name, const QJsonValue &before, const QJsonValue &after)
{
    if (name == QLatin1String("type") || name == QLatin1String("unit")) {
        return true;
    }
    if (name == QLatin1String("readOnly")) {
        return after.toBool();
    }
    const QStringList limits{QStringLiteral("minimum"), QStringLiteral("maximum"),
                             QStringLiteral("capacity")};
    return limits.contains(name) && takesLess(name, before, after);
}

// An absent "readOnly" says the same as false.
bool same(const QString &name, const QJsonValue &before, const QJsonValue &after)
{
    return name == QLatin1String("readOnly") ? before.toBool() == after.toBool() : before == after;
}

} // namespace

QVector<LeafDifference> leafDifferences(const QJsonObject &before, const QJsonObject &after)
{
    const QString nothing = QStringLiteral("nothing");
    if (before.isEmpty() || after.isEmpty()) {
        if (before.isEmpty() && after.isEmpty()) {
            return {};
        }
        const QString type
            = propertyToText((before.isEmpty() ? after : before).value(QLatin1String("type")));
        return {{QStringLiteral("leaf"), before.isEmpty() ? nothing : type,
                 after.isEmpty() ? nothing : type, after.isEmpty()}};
    }
    QStringList names = before.keys() + after.keys();
    names.sort();
    names.removeDuplicates();
    QVector<LeafDifference> differences;
    for (const QString &name : qAsConst(names)) {
        const QJsonValue left = before.value(name);
        const QJsonValue right = after.value(name);
        if (!same(name, left, right)) {
            differences.append(
                {name, propertyToText(left), propertyToText(right), breaks(name, left, right)});
        }
    }
    return differences;
}
