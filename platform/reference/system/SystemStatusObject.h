// SPDX-License-Identifier: MIT
// The system status manager's object on the bus.
#ifndef SYSTEMSTATUSOBJECT_H
#define SYSTEMSTATUSOBJECT_H

#include "ServedCall.h"

/// Answers questions for the property Ready.
class SystemStatusObject : public ServedObject
{
public:
    QString introspection() const override;
    BusAnswer answer(const ServedCall &call) override;

    bool ready = false;
};

#endif
