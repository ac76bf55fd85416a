// SPDX-License-Identifier: MIT
// Compares numbers with a deadband.
#include "Deadband.h"

#include <cmath>
#include <cstring>

namespace {

constexpr double wholeRange = 100; // percent

bool haveSameBits(double left, double right)
{
    quint64 leftBits = 0;
    quint64 rightBits = 0;
    std::memcpy(&leftBits, &left, sizeof left);
    std::memcpy(&rightBits, &right, sizeof right);
    return leftBits == rightBits;
}

// Differences of 64-bit integers are formed without a sign: those of doubles would lose bits.
bool integersDiffer(const QVariant &left, const QVariant &right, double deadband)
{
    quint64 difference = 0;
    if (left.userType() == QMetaType::ULongLong) {
        const quint64 a = left.toULongLong();
        const quint64 b = right.toULongLong();
        difference = a > b ? a - b : b - a;
    } else {
        const qint64 a = left.toLongLong();
        const qint64 b = right.toLongLong();
        difference = a > b ? quint64(a) - quint64(b) : quint64(b) - quint64(a);
    }
    return difference != 0 && double(difference) > deadband;
}

bool floatsDiffer(double left, double right, double deadband)
{
    if (std::isnan(left) || std::isnan(right) || deadband <= 0) {
        return !haveSameBits(left, right);
    }
    return left != right && !(std::abs(left - right) <= deadband);
}

bool isNumeric(const QJsonObject &properties)
{
    const QString type = properties.value(QLatin1String("type")).toString();
    return type.startsWith(QLatin1String("int")) || type.startsWith(QLatin1String("uint"))
        || type.startsWith(QLatin1String("float"));
}

// Limits beyond what JSON holds exactly are texts of digits.
double limitOf(const QJsonObject &properties, const char *name)
{
    return properties.value(QLatin1String(name)).toVariant().toDouble();
}

} // namespace

std::optional<Deadband> Deadband::fromText(const QString &text)
{
    Deadband deadband;
    deadband.isPercent = text.endsWith(QLatin1Char('%'));
    bool ok = false;
    deadband.amount = text.chopped(deadband.isPercent ? 1 : 0).toDouble(&ok);
    ok = ok && std::isfinite(deadband.amount) && deadband.amount >= 0
        && !(deadband.isPercent && deadband.amount > wholeRange);
    return ok ? std::optional<Deadband>(deadband) : std::nullopt;
}

std::optional<double> Deadband::of(const QJsonObject &properties) const
{
    if (!isPercent || !isNumeric(properties)) {
        return amount;
    }
    if (!properties.contains(QLatin1String("minimum"))
        || !properties.contains(QLatin1String("maximum"))) {
        return std::nullopt;
    }
    const double range = limitOf(properties, "maximum") - limitOf(properties, "minimum");
    return std::isfinite(range) && range > 0 ? range * amount / wholeRange : 0;
}

bool Deadband::isExceeded(const QVariant &before, const QVariant &after, double deadband)
{
    if (before.userType() != after.userType()) {
        return true;
    }
    switch (before.userType()) {
    case QMetaType::Float:
    case QMetaType::Double:
        return floatsDiffer(before.toDouble(), after.toDouble(), deadband);
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return integersDiffer(before, after, deadband);
    default:
        return before != after;
    }
}
