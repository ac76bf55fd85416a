// SPDX-License-Identifier: MIT
// A node of a process-data tree.
#include "ConfigurationAndProcessDataBase.h"

ConfigurationAndProcessDataBase::ConfigurationAndProcessDataBase() = default;

ConfigurationAndProcessDataBase::~ConfigurationAndProcessDataBase() = default;
