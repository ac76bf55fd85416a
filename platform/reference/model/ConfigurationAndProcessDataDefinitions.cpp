// SPDX-License-Identifier: MIT
// Keys of process-data descriptions and the scheme of selector URLs.
#include "ConfigurationAndProcessDataDefinitions.h"

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly()
{
    static const QString key = QStringLiteral("readOnly");
    return key;
}

const QString &ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList()
{
    static const QString key = QStringLiteral("selectorTypeList");
    return key;
}

const QString &ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
{
    static const QString scheme = QStringLiteral("processdata");
    return scheme;
}
