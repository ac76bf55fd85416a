// SPDX-License-Identifier: MIT
// Tells objects that were made before a fork from those of the process that uses them.
#ifndef FORKEDCHILD_H
#define FORKEDCHILD_H

/// Knows the process in which it was made.
///
/// A forked child has the memory of its parent but none of its threads: nobody would answer there.
/// Costs one load, no call. Threads: any.
class HomeProcess
{
public:
    HomeProcess();

    /// Whether this process was forked since.
    bool isForkedChild() const;

    /// The same, and says so once in each child.
    ///
    /// @param what  does nothing there: a noun, for people
    bool refusesChild(const char *what) const;

private:
    const unsigned forks;
};

#endif
