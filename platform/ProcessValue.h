// SPDX-License-Identifier: MIT
// One process value with its error type and time: the unit of reading and writing.
#ifndef PROCESSVALUE_H
#define PROCESSVALUE_H

#include "ProcessDataDefinitions.h"
#include "ProcessDataPlatformExport.h"

#include <QVariant>
#include <QtGlobal>

#include <new>
#include <utility>

/// A value that was read from a leaf or is to be written to one.
///
/// Filled by ProcessDataValue::getValue, passed to ProcessDataValue::setValue and handed to and
/// from clients unchanged. There is no default constructor: a value without an error type means
/// nothing. Everything is inline, and all special members are declared: a vector of values then
/// moves instead of copying, and reading a value costs no call.
///
/// Threads: a value type; distinct objects may be used in distinct threads.
class PROCESSDATAPLATFORM_EXPORT ProcessValue
{
public:
    /// A value that holds nothing but an error type.
    ///
    /// The library makes each value with the error type whose number is 3 before it asks a leaf.
    ///
    /// @param errorType  why there is no value
    explicit ProcessValue(ProcessDataDefinitions::ErrorTypes errorType)
        : errorType(errorType)
    {
    }

    /// A value as a client writes it or a publisher publishes it.
    ///
    /// @param value      in the leaf's own unit
    /// @param errorType  how far the value can be trusted
    /// @param timestamp  nanoseconds since 1970-01-01 00:00 UTC; 0 lets the platform take the time
    ///                   at which the value is written
    explicit ProcessValue(QVariant value,
                          ProcessDataDefinitions::ErrorTypes errorType
                          = ProcessDataDefinitions::NoError,
                          qint64 timestamp = 0)
        : value(std::move(value))
        , timestamp(timestamp)
        , errorType(errorType)
    {
    }

    virtual ~ProcessValue() = default;
    /// The library fills a vector with copies of one that holds nothing: those cost no call, as a
    /// copy of a QVariant would.
    ProcessValue(const ProcessValue &other)
        : value(other.value.isValid() ? QVariant(other.value) : QVariant())
        , timestamp(other.timestamp)
        , errorType(other.errorType)
    {
    }
    ProcessValue(ProcessValue &&) = default;
    ProcessValue &operator=(const ProcessValue &) = default;
    ProcessValue &operator=(ProcessValue &&) = default;

    /// The value in the leaf's unit and type; invalid when none was obtained.
    const QVariant &getValue() const { return value; }

    /// How far the value can be trusted.
    ProcessDataDefinitions::ErrorTypes getErrorType() const { return errorType; }

    /// When the value was written: nanoseconds since 1970-01-01 00:00 UTC, 0 when never.
    qint64 getTimestamp() const { return timestamp; }

    /// Replaces all three at once, so that they always belong together.
    ///
    /// @param newValue      in the leaf's own unit
    /// @param newErrorType  how far it can be trusted
    /// @param newTimestamp  nanoseconds since 1970-01-01 00:00 UTC, 0 for never
    void set(QVariant newValue, ProcessDataDefinitions::ErrorTypes newErrorType,
             qint64 newTimestamp)
    {
        value = std::move(newValue);
        timestamp = newTimestamp;
        errorType = newErrorType;
    }

    /// The same for a number. A value that holds none yet, as the library hands it out, takes the
    /// number in its place: a variant made beside it and thrown away would cost more than the
    /// reading.
    ///
    /// @param number        of a type that QVariant holds
    /// @param newErrorType  as above
    /// @param newTimestamp  as above
    template <typename Number>
    void setNumber(Number number, ProcessDataDefinitions::ErrorTypes newErrorType,
                   qint64 newTimestamp)
    {
        timestamp = newTimestamp;
        errorType = newErrorType;
        if (Q_LIKELY(!value.isValid())) {
            new (&value) QVariant(number); // an invalid variant owns nothing that would be lost
        } else {
            replaceNumber(number);
        }
    }

private:
    // Apart, so that the way above saves no registers for it.
    template <typename Number> Q_NEVER_INLINE void replaceNumber(Number number)
    {
        value = QVariant(number);
    }

    QVariant value;
    qint64 timestamp = 0;
    ProcessDataDefinitions::ErrorTypes errorType;
};

#endif
