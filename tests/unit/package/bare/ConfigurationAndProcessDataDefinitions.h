// SPDX-License-Identifier: MIT
// Keys.
#ifndef CONFIGURATIONANDPROCESSDATADEFINITIONS_H
#define CONFIGURATIONANDPROCESSDATADEFINITIONS_H

#include <QString>

struct ConfigurationAndProcessDataDefinitions
{
    static const QString &getKeyDataPropertyReadOnly();
    static const QString &getKeyDataPropertySelectorTypeList();
    static const QString &getSelectorUrlSchemeProcessData();
};

#endif
