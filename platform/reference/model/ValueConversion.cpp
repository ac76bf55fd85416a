// SPDX-License-Identifier: MIT
// Brings a QVariant to a leaf's type without loss.
#include "ValueConversion.h"

#include "Utf8.h"

#include <QByteArray>

#include <cmath>
#include <limits>

namespace {

// A whole number of 65 bits: any int64 or uint64.
struct Whole
{
    bool negative = false;
    qint64 low = 0; // when negative
    quint64 high = 0; // when not
};

Whole wholeFrom(qint64 number)
{
    return number < 0 ? Whole{true, number, 0} : Whole{false, 0, static_cast<quint64>(number)};
}

std::optional<Whole> wholeFromDouble(double number, QString &reason)
{
    constexpr double lowest = -9223372036854775808.0;
    constexpr double pastHighest = 18446744073709551616.0;
    if (!std::isfinite(number)) {
        reason = QStringLiteral("is not finite");
        return std::nullopt;
    }
    if (number != std::trunc(number)) {
        reason = QStringLiteral("has a fraction");
        return std::nullopt;
    }
    if (number < lowest || number >= pastHighest) {
        reason = QStringLiteral("has more than 64 bits");
        return std::nullopt;
    }
    return number < 0 ? wholeFrom(static_cast<qint64>(number))
                      : Whole{false, 0, static_cast<quint64>(number)};
}

// Digits alone, as 64 bits hold them.
std::optional<Whole> wholeFromDigits(const QString &text)
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    if (ok) {
        return wholeFrom(number);
    }
    const quint64 high = text.toULongLong(&ok);
    return ok ? std::make_optional(Whole{false, 0, high}) : std::nullopt;
}

std::optional<Whole> wholeFromText(const QString &text, QString &reason)
{
    if (const auto whole = wholeFromDigits(text)) {
        return whole;
    }
    constexpr double firstInexact = 9007199254740992.0; // 2^53: the next number rounds to it, too
    bool ok = false;
    const double real = text.toDouble(&ok);
    if (!ok) {
        reason = QStringLiteral("is not a number");
        return std::nullopt;
    }
    if (std::isfinite(real) && std::fabs(real) >= firstInexact) {
        reason = QStringLiteral("is too large to be exact unless written in digits alone");
        return std::nullopt;
    }
    return wholeFromDouble(real, reason);
}

bool isTextOf(const QVariant &value)
{
    return value.userType() == QMetaType::QString || value.userType() == QMetaType::QByteArray;
}

enum class Kind { Bool, Signed, Unsigned, Real, Text, Other };

Kind kindOf(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return Kind::Bool;
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return Kind::Signed;
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return Kind::Unsigned;
    case QMetaType::Float:
    case QMetaType::Double:
        return Kind::Real;
    default:
        return isTextOf(value) ? Kind::Text : Kind::Other;
    }
}

QString wrongKind(const QVariant &value)
{
    return value.isValid() ? QStringLiteral("is of type %1").arg(QLatin1String(value.typeName()))
                           : QStringLiteral("is missing");
}

std::optional<Whole> wholeFromVariant(const QVariant &value, QString &reason)
{
    switch (kindOf(value)) {
    case Kind::Bool:
    case Kind::Signed:
        return wholeFrom(value.toLongLong());
    case Kind::Unsigned:
        return Whole{false, 0, value.toULongLong()};
    case Kind::Real:
        return wholeFromDouble(value.toDouble(), reason);
    case Kind::Text:
        return wholeFromText(value.toString(), reason);
    case Kind::Other:
        break;
    }
    reason = wrongKind(value);
    return std::nullopt;
}

// Stored: as decodeValue gives it, which is wider than Number for the small types.
template <typename Number, typename Stored>
std::optional<QVariant> toInteger(const QVariant &value, QString &reason)
{
    using Limits = std::numeric_limits<Number>;
    const std::optional<Whole> whole = wholeFromVariant(value, reason);
    if (!whole) {
        return std::nullopt;
    }
    const bool fits = whole->negative
        ? Limits::is_signed && whole->low >= static_cast<qint64>(Limits::min())
        : whole->high <= static_cast<quint64>(Limits::max());
    if (!fits) {
        reason = QStringLiteral("is outside %1 to %2").arg(Limits::min()).arg(Limits::max());
        return std::nullopt;
    }
    return QVariant::fromValue(static_cast<Stored>(
        whole->negative ? static_cast<Number>(whole->low) : static_cast<Number>(whole->high)));
}

std::optional<QVariant> toBool(const QVariant &value, QString &reason)
{
    if (isTextOf(value)) {
        const QString text = value.toString();
        if (text == QLatin1String("true") || text == QLatin1String("false")) {
            return QVariant(text == QLatin1String("true"));
        }
    }
    const std::optional<Whole> whole = wholeFromVariant(value, reason);
    if (whole && !whole->negative && whole->high <= 1) {
        return QVariant(whole->high == 1);
    }
    reason = QStringLiteral("is neither false nor true");
    return std::nullopt;
}

template <typename Real> Real nearest(double real)
{
    if constexpr (sizeof(Real) < sizeof(double)) {
        return nearestFloat(real);
    }
    return real;
}

template <typename Real> std::optional<QVariant> wholeToReal(const Whole &whole, QString &reason)
{
    const Real real = whole.negative ? static_cast<Real>(whole.low) : static_cast<Real>(whole.high);
    QString ignored;
    const std::optional<Whole> back = wholeFromDouble(static_cast<double>(real), ignored);
    if (!back || back->low != whole.low || back->high != whole.high) {
        reason = QStringLiteral("has more digits than the type holds");
        return std::nullopt;
    }
    return QVariant(real);
}

template <typename Real> std::optional<QVariant> toReal(const QVariant &value, QString &reason)
{
    const Kind kind = kindOf(value);
    if (kind == Kind::Bool || kind == Kind::Signed || kind == Kind::Unsigned) {
        return wholeToReal<Real>(*wholeFromVariant(value, reason), reason);
    }
    if (kind == Kind::Text) {
        const auto whole = wholeFromDigits(value.toString());
        if (whole && (whole->negative || whole->high != 0)) { // "-0" keeps its sign below
            return wholeToReal<Real>(*whole, reason);
        }
    }
    bool ok = kind == Kind::Real || kind == Kind::Text;
    const double real = ok ? value.toDouble(&ok) : 0;
    if (!ok) {
        reason = kind == Kind::Text ? QStringLiteral("is not a number") : wrongKind(value);
        return std::nullopt;
    }
    if (std::isfinite(real) && !std::isfinite(nearest<Real>(real))) {
        reason = QStringLiteral("is larger than the type holds");
        return std::nullopt;
    }
    return QVariant(nearest<Real>(real));
}

std::optional<QVariant> toText(const QVariant &value, QString &reason)
{
    if (kindOf(value) == Kind::Other) {
        reason = wrongKind(value);
        return std::nullopt;
    }
    const bool isBytes = value.userType() == QMetaType::QByteArray;
    const QByteArray bytes = isBytes ? value.toByteArray() : QByteArray();
    const QString text = isBytes ? textFromUtf8(bytes.constData(), bytes.size()) : value.toString();
    const bool lossless = isBytes ? text.toUtf8() == bytes : text.isValidUtf16();
    if (!lossless) {
        reason = QStringLiteral("is not valid Unicode text");
        return std::nullopt;
    }
    return QVariant(text);
}

std::optional<QVariant> toBytes(const QVariant &value, QString &reason)
{
    if (!isTextOf(value)) {
        reason = wrongKind(value);
        return std::nullopt;
    }
    return QVariant(value.toByteArray());
}

} // namespace

std::optional<QVariant> convertToType(ValueType type, const QVariant &value, QString &reason)
{
    switch (type) {
    case ValueType::Bool:
        return toBool(value, reason);
    case ValueType::Int8:
        return toInteger<qint8, int>(value, reason);
    case ValueType::Int16:
        return toInteger<qint16, int>(value, reason);
    case ValueType::Int32:
        return toInteger<qint32, int>(value, reason);
    case ValueType::Int64:
        return toInteger<qint64, qlonglong>(value, reason);
    case ValueType::UInt8:
        return toInteger<quint8, uint>(value, reason);
    case ValueType::UInt16:
        return toInteger<quint16, uint>(value, reason);
    case ValueType::UInt32:
        return toInteger<quint32, uint>(value, reason);
    case ValueType::UInt64:
        return toInteger<quint64, qulonglong>(value, reason);
    case ValueType::Float32:
        return toReal<float>(value, reason);
    case ValueType::Float64:
        return toReal<double>(value, reason);
    case ValueType::String:
        return toText(value, reason);
    case ValueType::Bytes:
        return toBytes(value, reason);
    }
    Q_UNREACHABLE();
}

QString printable(const QVariant &value)
{
    constexpr int longest = 60;
    const QString text = value.userType() == QMetaType::QByteArray
        ? QStringLiteral("0x") + QString::fromLatin1(value.toByteArray().left(longest).toHex())
        : value.toString();
    const QString shown = text.size() > longest ? text.left(longest) + QChar(0x2026) : text;
    return value.userType() == QMetaType::QString ? QLatin1Char('"') + shown + QLatin1Char('"')
                                                  : shown;
}
