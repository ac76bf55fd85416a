// SPDX-License-Identifier: MIT
// The way from a selector's text to its value.
#ifndef STEP_H
#define STEP_H

#include <QString>

/// A source has the steps from Owner to Liveness.
enum class Step {
    Text,
    Scheme,
    Module,
    Bus,
    Owner,
    Object,
    Description,
    File,
    Permission,
    Layout,
    Liveness,
    Leaf,
    Property,
    Value,
    None, ///< behind the last
};

struct StepName
{
    const char *name; ///< for people
    const char *key; ///< for programs
};

/// In the order of Step.
constexpr StepName stepNames[]{
    {"text", "text"},
    {"scheme", "scheme"},
    {"module", "module"},
    {"bus", "bus"},
    {"service owner", "serviceOwner"},
    {"object", "object"},
    {"description", "description"},
    {"buffer file", "bufferFile"},
    {"permission", "permission"},
    {"layout", "layout"},
    {"liveness", "liveness"},
    {"leaf", "leaf"},
    {"property", "property"},
    {"value", "value"},
};

#endif
