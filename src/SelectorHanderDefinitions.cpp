// SPDX-License-Identifier: MIT
// Names of the selector types.
#include "SelectorHanderDefinitions.h"

SelectorHanderDefinitions::SelectorHanderDefinitions() = default;

SelectorHanderDefinitions::~SelectorHanderDefinitions() = default;

const QString &SelectorHanderDefinitions::getGlobalAnalogSelectorType()
{
    static const QString name = QStringLiteral("AnalogSelector");
    return name;
}

const QString &SelectorHanderDefinitions::getGlobalBinarylSelectorType()
{
    static const QString name = QStringLiteral("DigitalSelector");
    return name;
}
