// SPDX-License-Identifier: MIT
// A scripted platform whose names are unlike those of any real one.
#ifndef UNLIKEPLATFORM_H
#define UNLIKEPLATFORM_H

#include "ScriptedPlatform.h"

/// Nobody can have spelt these names himself: scripted://module/object/instance/leaf[?off].
class UnlikePlatform : public ScriptedPlatform
{
public:
    UnlikePlatform()
        : ScriptedPlatform({QStringLiteral("scripted"), QStringLiteral("?off"),
                            QStringLiteral("is-read-only"), QStringLiteral("types-of-selectors"),
                            QStringLiteral("script"), QStringLiteral("name-of-module"),
                            QStringLiteral("more-data")})
    {
    }
};

#endif
