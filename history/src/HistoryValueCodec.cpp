// SPDX-License-Identifier: MIT
// How values of each type are stored, without losing a bit.
#include "HistoryValueCodec.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

struct TypeEntry
{
    const char *name;
    int variantType;
};

// In the order of HistoryType.
constexpr std::array<TypeEntry, 13> types{{
    {"bool", QMetaType::Bool},
    {"int8", QMetaType::SChar},
    {"int16", QMetaType::Short},
    {"int32", QMetaType::Int},
    {"int64", QMetaType::LongLong},
    {"uint8", QMetaType::UChar},
    {"uint16", QMetaType::UShort},
    {"uint32", QMetaType::UInt},
    {"uint64", QMetaType::ULongLong},
    {"float32", QMetaType::Float},
    {"float64", QMetaType::Double},
    {"string", QMetaType::QString},
    {"bytes", QMetaType::QByteArray},
}};

template <typename To, typename From> To bitsOf(From from)
{
    static_assert(sizeof(To) == sizeof(From), "every bit has its place");
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

template <typename Float> QVariant encodeFloat(Float value)
{
    if (std::isnan(value) || (value == 0 && std::signbit(value))) {
        return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
    }
    return double(value);
}

template <typename Float> QVariant decodeFloat(const QVariant &stored)
{
    if (stored.userType() != QMetaType::QByteArray) {
        return QVariant::fromValue(Float(stored.toDouble()));
    }
    const QByteArray bytes = stored.toByteArray();
    if (bytes.size() != sizeof(Float)) {
        return {};
    }
    Float value;
    std::memcpy(&value, bytes.constData(), sizeof value);
    return QVariant::fromValue(value);
}

// Qt's own conversion takes leading marks for byte order marks and drops the first.
QString textOf(const QByteArray &utf8)
{
    static const QByteArray mark("\xEF\xBB\xBF");
    QString text(QLatin1String(""));
    int start = 0;
    while (utf8.mid(start, mark.size()) == mark) {
        text += QChar(0xFEFF);
        start += mark.size();
    }
    return text + QString::fromUtf8(utf8.constData() + start, utf8.size() - start);
}

// A zero-length text or byte array must not become NULL, which stands for an absent value.
QByteArray present(const QByteArray &bytes)
{
    return bytes.isNull() ? QByteArray("") : bytes;
}

template <typename Integer> QVariant integer(const QVariant &stored)
{
    return QVariant::fromValue(static_cast<Integer>(stored.toLongLong()));
}

// Ordered as the values are: of negative numbers the other bits count backwards.
qint64 rankOf(double value)
{
    const auto bits = bitsOf<qint64>(value);
    return bits < 0 ? bits ^ std::numeric_limits<qint64>::max() : bits;
}

double doubleOf(qint64 rank)
{
    return bitsOf<double>(rank < 0 ? rank ^ std::numeric_limits<qint64>::max() : rank);
}

} // namespace

QString HistoryValueCodec::typeName(HistoryType type)
{
    const auto index = size_t(type);
    return index < types.size() ? QString::fromLatin1(types.at(index).name) : QString();
}

bool HistoryValueCodec::typeOf(const QString &name, HistoryType *type)
{
    for (size_t i = 0; i < types.size(); ++i) {
        if (name == QLatin1String(types.at(i).name)) {
            *type = HistoryType(i);
            return true;
        }
    }
    return false;
}

bool HistoryValueCodec::fits(HistoryType type, const QVariant &value)
{
    return !value.isValid()
        || (size_t(type) < types.size() && value.userType() == types.at(size_t(type)).variantType);
}

QVariant HistoryValueCodec::encode(HistoryType type, const QVariant &value)
{
    if (!value.isValid()) {
        return {};
    }
    switch (type) {
    case HistoryType::Float32:
        return encodeFloat(value.toFloat());
    case HistoryType::Float64:
        return encodeFloat(value.toDouble());
    case HistoryType::UInt64:
        return qint64(value.toULongLong());
    case HistoryType::Text:
        return present(value.toString().toUtf8());
    case HistoryType::Bytes:
        return present(value.toByteArray());
    default:
        return value.toLongLong();
    }
}

QVariant HistoryValueCodec::decode(HistoryType type, const QVariant &stored)
{
    if (!stored.isValid()) {
        return {};
    }
    switch (type) {
    case HistoryType::Bool:
        return stored.toLongLong() != 0;
    case HistoryType::Int8:
        return integer<qint8>(stored);
    case HistoryType::Int16:
        return integer<qint16>(stored);
    case HistoryType::Int32:
        return integer<int>(stored);
    case HistoryType::Int64:
        return stored.toLongLong();
    case HistoryType::UInt8:
        return integer<quint8>(stored);
    case HistoryType::UInt16:
        return integer<quint16>(stored);
    case HistoryType::UInt32:
        return integer<uint>(stored);
    case HistoryType::UInt64:
        return integer<quint64>(stored);
    case HistoryType::Float32:
        return decodeFloat<float>(stored);
    case HistoryType::Float64:
        return decodeFloat<double>(stored);
    case HistoryType::Text:
        return textOf(stored.toByteArray());
    case HistoryType::Bytes:
        return present(stored.toByteArray());
    }
    return {};
}

bool HistoryValueCodec::rank(HistoryType type, const QVariant &value, qint64 *rank)
{
    if (!value.isValid() || type == HistoryType::Text || type == HistoryType::Bytes) {
        return false;
    }
    if (type == HistoryType::Float32 || type == HistoryType::Float64) {
        const double number = value.toDouble();
        *rank = rankOf(number);
        return !std::isnan(number);
    }
    *rank = type == HistoryType::UInt64 ? qint64(value.toULongLong() ^ (quint64(1) << 63U))
                                        : value.toLongLong();
    return true;
}

bool HistoryValueCodec::storedRank(HistoryType type, const QVariant &stored, qint64 *rank)
{
    // The most frequent ones, whose values are stored as they are.
    if (type == HistoryType::Float64 && stored.userType() == QMetaType::Double) {
        const double number = stored.toDouble();
        *rank = rankOf(number);
        return !std::isnan(number);
    }
    if (type == HistoryType::Int64 && stored.userType() == QMetaType::LongLong) {
        *rank = stored.toLongLong();
        return true;
    }
    return HistoryValueCodec::rank(type, decode(type, stored), rank);
}

QVariant HistoryValueCodec::ranked(HistoryType type, qint64 rank)
{
    switch (type) {
    case HistoryType::Float32:
        return QVariant::fromValue(float(doubleOf(rank)));
    case HistoryType::Float64:
        return doubleOf(rank);
    case HistoryType::UInt64:
        return quint64(rank) ^ (quint64(1) << 63U);
    default:
        return decode(type, rank);
    }
}

double HistoryValueCodec::number(HistoryType type, qint64 rank)
{
    switch (type) {
    case HistoryType::Float32:
    case HistoryType::Float64:
        return doubleOf(rank);
    case HistoryType::UInt64:
        return double(quint64(rank) ^ (quint64(1) << 63U));
    default:
        return double(rank);
    }
}
