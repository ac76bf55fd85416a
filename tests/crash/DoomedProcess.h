// SPDX-License-Identifier: MIT
// A forked child that dies or stops at a chosen crash point of what it does.
#ifndef DOOMEDPROCESS_H
#define DOOMEDPROCESS_H

#include <QByteArray>

#include <functional>
#include <sys/types.h>

/// Prepares something, tells its parent of it, and then does what may kill it.
///
/// Ends for certain: in its destructor at the latest.
class DoomedProcess
{
public:
    /// Result of the first step: what the parent is told, and the second step, at whose crash
    /// points the process dies.
    struct Prepared
    {
        QByteArray news;
        std::function<void()> deed;
    };

    enum Fate { Dies, Stops };

    /// @param prepare  runs in the child, its crash points not counted
    /// @param point    the one to die or stop at, from 0
    DoomedProcess(const std::function<Prepared()> &prepare, int point, Fate fate = Dies);
    ~DoomedProcess();
    DoomedProcess(const DoomedProcess &) = delete;
    DoomedProcess &operator=(const DoomedProcess &) = delete;

    /// What the child told; waits for it.
    QByteArray news() const;

    /// Lets the child do its deed and waits for its end.
    ///
    /// @returns whether it died at the point; false when it came through: there is no such point
    bool diesAtItsPoint();

    /// Lets the child do its deed and waits until it stops; it stays so for as long as this lives.
    ///
    /// @returns false when it came through
    bool stopsAtItsPoint();

private:
    int letGo();

    pid_t child = -1;
    int fromChild = -1;
    int toChild = -1;
};

#endif
