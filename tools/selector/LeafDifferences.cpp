// SPDX-License-Identifier: MIT
// Tells differences that break clients from those that do not.
#include "LeafDifferences.h"

#include "ValueText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

namespace {

QString shown(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Array:
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    case QJsonValue::Object:
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    case QJsonValue::Undefined:
        return QStringLiteral("nothing");
    default:
        return valueToText(value.toVariant());
    }
}

// No limit takes more than any limit.
bool takesLess(const QString &name, const QJsonValue &before, const QJsonValue &after)
{
    if (after.isUndefined()) {
        return false;
    }
    if (before.isUndefined() || !before.isDouble() || !after.isDouble()) {
        return true;
    }
    return name == QLatin1String("minimum") ? after.toDouble() > before.toDouble()
                                            : after.toDouble() < before.toDouble();
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
            = shown((before.isEmpty() ? after : before).value(QLatin1String("type")));
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
            differences.append({name, shown(left), shown(right), breaks(name, left, right)});
        }
    }
    return differences;
}
