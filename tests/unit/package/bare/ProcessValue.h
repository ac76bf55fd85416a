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

    static int made; ///< by the constructor that takes an error type
    static int copied;

private:
    QVariant value;
    ProcessDataDefinitions::ErrorTypes errorType;
};

#endif
