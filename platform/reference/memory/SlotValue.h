// SPDX-License-Identifier: MIT
// Turns what a slot holds into a process value.
#ifndef SLOTVALUE_H
#define SLOTVALUE_H

#include "ProcessValue.h"
#include "Slot.h"
#include "ValueCodec.h"

#include <ctime>

/// Now, as slots hold it: nanoseconds since the epoch, UTC.
inline qint64 currentTimestamp()
{
    constexpr qint64 nanosecondsPerSecond = 1'000'000'000;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return qint64(now.tv_sec) * nanosecondsPerSecond + now.tv_nsec;
}

/// A slot's status as an error type; a number that none of them has means that no value was
/// obtained.
inline ProcessDataDefinitions::ErrorTypes errorTypeOf(quint32 status)
{
    return status <= quint32(ProcessDataDefinitions::OutOfRange)
        ? ProcessDataDefinitions::ErrorTypes(status)
        : ProcessDataDefinitions::NoValue;
}

template <typename Number> Number numberIn(const NumberCopy &copy)
{
    static_assert(sizeof(Number) <= sizeof(copy.payload));
    Number number;
    std::memcpy(&number, copy.payload, sizeof(number));
    return number;
}

/// decodeValue for a number, without a call: the type in which values are read most.
///
/// @returns an invalid QVariant when the slot holds none, or bytes of another type's length
inline QVariant decodeNumber(ValueType type, quint32 size, const NumberCopy &copy)
{
    if (Q_UNLIKELY(copy.head.length != size)) {
        return QVariant();
    }
    switch (type) {
    case ValueType::Float64:
        return QVariant(numberIn<double>(copy));
    case ValueType::Float32:
        return QVariant(numberIn<float>(copy));
    case ValueType::Bool:
        return QVariant(numberIn<quint8>(copy) != 0);
    case ValueType::Int8:
        return QVariant(int(numberIn<qint8>(copy)));
    case ValueType::Int16:
        return QVariant(int(numberIn<qint16>(copy)));
    case ValueType::Int32:
        return QVariant(int(numberIn<qint32>(copy)));
    case ValueType::Int64:
        return QVariant(numberIn<qint64>(copy));
    case ValueType::UInt8:
        return QVariant(uint(numberIn<quint8>(copy)));
    case ValueType::UInt16:
        return QVariant(uint(numberIn<quint16>(copy)));
    case ValueType::UInt32:
        return QVariant(uint(numberIn<quint32>(copy)));
    case ValueType::UInt64:
        return QVariant(numberIn<quint64>(copy));
    case ValueType::String:
    case ValueType::Bytes:
        break;
    }
    return QVariant();
}

/// Fills a process value from any slot's content.
inline void setFromSlot(ProcessValue &value, ValueType type, const SlotHead &head,
                        const QByteArray &payload)
{
    const bool holdsValue = head.length != slotWithoutValue;
    value.set(holdsValue ? decodeValue(type, payload.constData(), quint32(payload.size()))
                         : QVariant(),
              errorTypeOf(head.status), head.timestamp);
}

#endif
