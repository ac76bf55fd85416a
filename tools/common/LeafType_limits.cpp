// SPDX-License-Identifier: MIT
// Judges values by the limits of their leaves.
#include "LeafType.h"

#include "ValueText.h"

#include <cmath>

namespace {

// In the leaf's own type, as the platform compares; invalid without a limit that fits.
QVariant limitOf(const LeafType &type, const QJsonValue &json)
{
    QVariant limit;
    QString ignored;
    if (json.isString()) { // a number that JSON would round
        valueFromText(type, json.toString(), limit, ignored);
    } else {
        valueFromJson(type, json, limit, ignored);
    }
    return limit;
}

} // namespace

bool checkLimits(const LeafType &type, const QJsonObject &properties, const QVariant &value,
                 QString &error)
{
    if (!type.isNumber()) {
        const int size = type.kind == ValueKind::Bytes ? value.toByteArray().size()
                                                       : value.toString().toUtf8().size();
        const QJsonValue capacity = properties.value(QLatin1String("capacity"));
        if (type.kind != ValueKind::Bool && capacity.isDouble() && size > capacity.toDouble()) {
            error = QStringLiteral("has %1 bytes, more than the capacity %2")
                        .arg(size)
                        .arg(capacity.toVariant().toString());
            return false;
        }
        return true;
    }
    const QVariant minimum = limitOf(type, properties.value(QLatin1String("minimum")));
    const QVariant maximum = limitOf(type, properties.value(QLatin1String("maximum")));
    const bool isLimited = minimum.isValid() || maximum.isValid();
    if (isLimited && type.kind == ValueKind::Float && std::isnan(value.toDouble())) {
        error = QStringLiteral("has no place between limits");
        return false;
    }
    if (minimum.isValid() && isLess(type.type, value, minimum)) {
        error = QStringLiteral("is below the minimum %1").arg(valueToText(minimum));
        return false;
    }
    if (maximum.isValid() && isLess(type.type, maximum, value)) {
        error = QStringLiteral("is above the maximum %1").arg(valueToText(maximum));
        return false;
    }
    return true;
}
