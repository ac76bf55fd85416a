// SPDX-License-Identifier: MIT
// Renders values and times.
#include "ValueText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <cmath>

namespace {

constexpr qlonglong safeInteger = 9007199254740991; // 2^53 - 1
constexpr int digitsForPeople = 10;
constexpr qint64 nanosecondsPerMillisecond = 1000000;

QString floatText(float number)
{
    for (int digits = 6; digits < 9; ++digits) {
        QString text = QString::number(static_cast<double>(number), 'g', digits);
        if (text.toFloat() == number) {
            return text;
        }
    }
    return QString::number(static_cast<double>(number), 'g', 9);
}

bool isNegativeZero(double number)
{
    return number == 0 && std::signbit(number);
}

QString numberText(const QVariant &value)
{
    const double number = value.toDouble();
    if (std::isnan(number)) {
        return QStringLiteral("NaN");
    }
    if (std::isinf(number)) {
        return number > 0 ? QStringLiteral("Infinity") : QStringLiteral("-Infinity");
    }
    if (isNegativeZero(number)) {
        return QStringLiteral("-0"); // Qt would drop the sign
    }
    if (static_cast<QMetaType::Type>(value.type()) == QMetaType::Float) {
        return floatText(value.toFloat());
    }
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

} // namespace

QString valueToText(const QVariant &value)
{
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Float:
    case QMetaType::Double:
        return numberText(value);
    case QMetaType::QByteArray:
        return QStringLiteral("0x") + QString::fromLatin1(value.toByteArray().toHex());
    default:
        return value.toString();
    }
}

QString propertyToText(const QJsonValue &value)
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

QString valueToShortText(const QVariant &value)
{
    QString exact = valueToText(value);
    if (static_cast<QMetaType::Type>(value.type()) != QMetaType::Double
        || !std::isfinite(value.toDouble())) {
        return exact;
    }
    const QString rounded = QString::number(value.toDouble(), 'g', digitsForPeople);
    return rounded.size() < exact.size() ? rounded : exact;
}

QJsonValue valueToJson(const QVariant &value)
{
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong: {
        const qlonglong number = value.toLongLong();
        return number <= safeInteger && number >= -safeInteger ? QJsonValue(number)
                                                               : QJsonValue(valueToText(value));
    }
    case QMetaType::ULongLong: {
        const qulonglong number = value.toULongLong();
        return number <= static_cast<qulonglong>(safeInteger)
            ? QJsonValue(static_cast<qint64>(number))
            : QJsonValue(valueToText(value));
    }
    case QMetaType::Float:
    case QMetaType::Double: {
        const QString text = valueToText(value);
        const bool isHeld = std::isfinite(value.toDouble()) && !isNegativeZero(value.toDouble());
        return isHeld ? QJsonValue(text.toDouble()) : QJsonValue(text);
    }
    default:
        return valueToText(value);
    }
}

QString timeToIsoText(qint64 timestamp)
{
    if (timestamp == 0) {
        return {};
    }
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(timestamp / nanosecondsPerMillisecond);
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

QString timeToText(qint64 timestamp)
{
    if (timestamp == 0) {
        return {};
    }
    return QDateTime::fromMSecsSinceEpoch(timestamp / nanosecondsPerMillisecond)
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
}
