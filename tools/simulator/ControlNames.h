// SPDX-License-Identifier: MIT
// What the control interface is called on the bus.
#ifndef CONTROLNAMES_H
#define CONTROLNAMES_H

#include <QLatin1String>

namespace ControlNames {

const QLatin1String service("com.orvalis.ProcessDataSimulator");
const QLatin1String path("/com/orvalis/ProcessDataSimulator");
const QLatin1String interface("com.orvalis.ProcessDataSimulator1");

const QLatin1String listSteps("ListSteps");
const QLatin1String getStep("GetStep");
const QLatin1String runStep("RunStep");
const QLatin1String checkInline("CheckInline");
const QLatin1String runInline("RunInline");

} // namespace ControlNames

#endif
