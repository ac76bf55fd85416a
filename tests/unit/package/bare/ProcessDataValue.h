// SPDX-License-Identifier: MIT
// A leaf.
#ifndef PROCESSDATAVALUE_H
#define PROCESSDATAVALUE_H

#include "ConfigurationAndProcessDataBase.h"

class ProcessValue;

class ProcessDataValue : public ConfigurationAndProcessDataBase
{
public:
    ~ProcessDataValue() override;
    bool getValue(ProcessValue &value, bool flag) const;
    bool setValue(const ProcessValue &value);

private:
    friend class ProcessDataManager;
    ProcessDataValue();
    QString key;
};

#endif
