// SPDX-License-Identifier: MIT
// A value without default constructor and without moving.
#ifndef PROCESSVALUE_H
#define PROCESSVALUE_H

#include "ProcessDataDefinitions.h"

#include <QVariant>

class ProcessValue
{
public:
    explicit ProcessValue(ProcessDataDefinitions::ErrorTypes errorType);
    virtual ~ProcessValue();
    ProcessValue(const ProcessValue &other);
    ProcessValue &operator=(const ProcessValue &other);

    // The device's own, beyond the contract.
    ProcessValue(const QVariant &content, ProcessDataDefinitions::ErrorTypes state, qint64 since);
    const QVariant &content() const { return value; }
    ProcessDataDefinitions::ErrorTypes state() const { return errorType; }
    qint64 since() const { return time; } ///< microseconds since 1970-01-01 00:00 UTC

    static int made; ///< by the constructor that takes an error type
    static int copied;

private:
    QVariant value;
    ProcessDataDefinitions::ErrorTypes errorType;
    qint64 time = 0;
};

#endif
