// SPDX-License-Identifier: MIT
// How answers to fetches go out: at once. The simulator has another body for this, so that it can
// lose, delay and spoil them.
#include "ProcessDescriptionObject.h"

BusAnswer ProcessDescriptionObject::answerFetch(const ServedCall &call)
{
    return describe(call);
}
