// SPDX-License-Identifier: MIT
// Work that no caller's thread is to be held up by.
#ifndef BACKGROUNDWORK_H
#define BACKGROUNDWORK_H

#include <functional>

/// One thread for the whole process, which runs only while there is something to do. It opens no
/// file and has no event loop.
namespace BackgroundWork {

/// Runs the work after all that came before; in the calling thread when there can be no other one,
/// or the process ends.
///
/// Threads: any, but not under a lock that the work takes.
void run(std::function<void()> work);

}

#endif
