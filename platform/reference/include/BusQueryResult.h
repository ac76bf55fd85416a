// SPDX-License-Identifier: MIT
// How a blocking question to a service ended.
#ifndef BUSQUERYRESULT_H
#define BUSQUERYRESULT_H

/// How it ended. What is asked for is there with Ok alone.
enum class BusQueryResult {
    Ok, ///< the answer is there
    BusNotReachable, ///< no connection to the bus: the whole system is out of reach
    ServiceMissing, ///< the bus is there, but nobody owns the service's name
    ServiceFailed, ///< the service answered with an error, or with something else than promised
    TimedOut, ///< the service did not answer in time
    Denied, ///< the bus or the service does not permit the call
};

#endif
