// SPDX-License-Identifier: MIT
// How the simulator's answers to fetches go out: as the faults in force say.
#include "FetchFaults.h"
#include "ProcessDescriptionObject.h"

#include <QTimer>

// Takes the place of the publisher's own body, which always answers at once.
BusAnswer ProcessDescriptionObject::answerFetch(const ServedCall &call)
{
    const FetchFault fault = FetchFaults::instance().take(source + QLatin1Char('/') + call.text(0));
    switch (fault.kind) {
    case FetchFault::Late:
        QTimer::singleShot(fault.delay, this,
                           [this, call, later = call.later()] { later(describe(call)); });
        return BusAnswer::withheld();
    case FetchFault::Never:
        return BusAnswer::withheld();
    case FetchFault::Error:
        return BusAnswer::error(fault.error, fault.text);
    case FetchFault::Text:
        return BusAnswer::values({fault.text});
    case FetchFault::None:
        break;
    }
    return describe(call);
}
