// SPDX-License-Identifier: MIT
// Names of the selector types that the system knows.
#ifndef SELECTORHANDERDEFINITIONS_H
#define SELECTORHANDERDEFINITIONS_H

#include "SelectorHandlerExport.h"

#include <QString>

/// Names of selector types, as modules list them and as
/// SelectorHandlerConvenienceFunctions::getModuleDataFromRegisteredProviderList takes them.
///
/// Each getter returns a reference to a string that lives for the whole process; no object is
/// needed.
///
/// Threads: any, also for the first call.
class SELECTORHANDLER_EXPORT SelectorHanderDefinitions
{
public:
    SelectorHanderDefinitions();
    virtual ~SelectorHanderDefinitions();

    /// Type of an analogue selector: "AnalogSelector".
    static const QString &getGlobalAnalogSelectorType();

    /// Type of a binary selector: "DigitalSelector". The accessor's name and its value differ on
    /// purpose.
    static const QString &getGlobalBinarylSelectorType();
};

#endif
