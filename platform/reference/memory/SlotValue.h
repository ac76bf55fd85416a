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

/// Fills a process value from a number's copy, as decodeValue would, but without a call or a
/// variant that is thrown away: this is what is read most.
///
/// @param size  of the type; with bytes of another length, or none, the value is invalid
inline void setFromNumber(ProcessValue &value, ValueType type, quint32 size, const NumberCopy &copy,
                          ProcessDataDefinitions::ErrorTypes errorType)
{
    const qint64 timestamp = copy.head.timestamp;
    if (Q_UNLIKELY(copy.head.length != size)) {
        return value.set(QVariant(), errorType, timestamp);
    }
    switch (type) {
    case ValueType::Float64:
        return value.setNumber(numberIn<double>(copy), errorType, timestamp);
    case ValueType::Float32:
        return value.setNumber(numberIn<float>(copy), errorType, timestamp);
    case ValueType::Bool:
        return value.setNumber(numberIn<quint8>(copy) != 0, errorType, timestamp);
    case ValueType::Int8:
        return value.setNumber(int(numberIn<qint8>(copy)), errorType, timestamp);
    case ValueType::Int16:
        return value.setNumber(int(numberIn<qint16>(copy)), errorType, timestamp);
    case ValueType::Int32:
        return value.setNumber(int(numberIn<qint32>(copy)), errorType, timestamp);
    case ValueType::Int64:
        return value.setNumber(numberIn<qint64>(copy), errorType, timestamp);
    case ValueType::UInt8:
        return value.setNumber(uint(numberIn<quint8>(copy)), errorType, timestamp);
    case ValueType::UInt16:
        return value.setNumber(uint(numberIn<quint16>(copy)), errorType, timestamp);
    case ValueType::UInt32:
        return value.setNumber(uint(numberIn<quint32>(copy)), errorType, timestamp);
    case ValueType::UInt64:
        return value.setNumber(numberIn<quint64>(copy), errorType, timestamp);
    case ValueType::String:
    case ValueType::Bytes:
        break;
    }
    value.set(QVariant(), errorType, timestamp);
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
