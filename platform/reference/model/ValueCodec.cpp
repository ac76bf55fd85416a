// SPDX-License-Identifier: MIT
// Converts between QVariant and a leaf's payload bytes.
#include "ValueCodec.h"

#include "Utf8.h"
#include "ValueConversion.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {

template <typename Number> QByteArray bytesOf(Number number)
{
    return QByteArray(reinterpret_cast<const char *>(&number), sizeof(number));
}

template <typename Number, typename Stored = Number>
QVariant numberIn(const char *payload, quint32 length)
{
    if (length != sizeof(Number)) {
        return QVariant();
    }
    Number number;
    std::memcpy(&number, payload, sizeof(number));
    return QVariant::fromValue(static_cast<Stored>(number));
}

// Qt takes a negative length as "up to the next zero".
bool isTextLength(quint32 length)
{
    return length <= static_cast<quint32>(std::numeric_limits<int>::max());
}

QByteArray payloadOf(ValueType type, const QVariant &value)
{
    switch (type) {
    case ValueType::Bool:
        return bytesOf(static_cast<quint8>(value.toBool() ? 1 : 0));
    case ValueType::Int8:
        return bytesOf(static_cast<qint8>(value.toInt()));
    case ValueType::Int16:
        return bytesOf(static_cast<qint16>(value.toInt()));
    case ValueType::Int32:
        return bytesOf(static_cast<qint32>(value.toInt()));
    case ValueType::Int64:
        return bytesOf(static_cast<qint64>(value.toLongLong()));
    case ValueType::UInt8:
        return bytesOf(static_cast<quint8>(value.toUInt()));
    case ValueType::UInt16:
        return bytesOf(static_cast<quint16>(value.toUInt()));
    case ValueType::UInt32:
        return bytesOf(static_cast<quint32>(value.toUInt()));
    case ValueType::UInt64:
        return bytesOf(static_cast<quint64>(value.toULongLong()));
    case ValueType::Float32:
        return bytesOf(value.toFloat());
    case ValueType::Float64:
        return bytesOf(value.toDouble());
    case ValueType::String:
        return value.toString().toUtf8();
    case ValueType::Bytes:
        return value.toByteArray();
    }
    Q_UNREACHABLE();
}

bool hasPlaceInLeaf(const LeafDescription &leaf, const QVariant &value, QString &error)
{
    const bool limited = leaf.minimum.isValid() || leaf.maximum.isValid();
    if (limited && std::isnan(value.toDouble())) {
        error = QStringLiteral("value nan has no place between limits");
        return false;
    }
    if (leaf.minimum.isValid() && isLess(leaf.type, value, leaf.minimum)) {
        error = QStringLiteral("value %1 is below the minimum %2")
                    .arg(printable(value), printable(leaf.minimum));
        return false;
    }
    if (leaf.maximum.isValid() && isLess(leaf.type, leaf.maximum, value)) {
        error = QStringLiteral("value %1 is above the maximum %2")
                    .arg(printable(value), printable(leaf.maximum));
        return false;
    }
    return true;
}

} // namespace

bool encodeValue(const LeafDescription &leaf, const QVariant &value, QByteArray &payload,
                 QString &error)
{
    QString reason;
    const std::optional<QVariant> converted = convertToType(leaf.type, value, reason);
    if (!converted) {
        error = QStringLiteral("value %1 does not convert to %2: it %3")
                    .arg(printable(value), valueTypeName(leaf.type), reason);
        return false;
    }
    if (!hasPlaceInLeaf(leaf, *converted, error)) {
        return false;
    }
    const QByteArray bytes = payloadOf(leaf.type, *converted);
    const quint32 room = payloadSize(leaf.type, leaf.capacity);
    if (static_cast<quint32>(bytes.size()) > room) {
        error = QStringLiteral("value %1 takes %2 bytes, the leaf holds %3")
                    .arg(printable(value))
                    .arg(bytes.size())
                    .arg(room);
        return false;
    }
    payload = bytes;
    return true;
}

QVariant decodeValue(ValueType type, const char *payload, quint32 length)
{
    switch (type) {
    case ValueType::Bool:
        return length == 1 ? QVariant(*payload != 0) : QVariant();
    case ValueType::Int8:
        return numberIn<qint8, int>(payload, length);
    case ValueType::Int16:
        return numberIn<qint16, int>(payload, length);
    case ValueType::Int32:
        return numberIn<qint32, int>(payload, length);
    case ValueType::Int64:
        return numberIn<qint64, qlonglong>(payload, length);
    case ValueType::UInt8:
        return numberIn<quint8, uint>(payload, length);
    case ValueType::UInt16:
        return numberIn<quint16, uint>(payload, length);
    case ValueType::UInt32:
        return numberIn<quint32, uint>(payload, length);
    case ValueType::UInt64:
        return numberIn<quint64, qulonglong>(payload, length);
    case ValueType::Float32:
        return numberIn<float>(payload, length);
    case ValueType::Float64:
        return numberIn<double>(payload, length);
    case ValueType::String:
        return isTextLength(length) ? textFromUtf8(payload, static_cast<int>(length)) : QVariant();
    case ValueType::Bytes:
        return isTextLength(length) ? QByteArray(payload, static_cast<int>(length)) : QVariant();
    }
    Q_UNREACHABLE();
}
