// SPDX-License-Identifier: MIT
// Where Qt's messages go: standard error, and a short memory for reasons.
#ifndef MESSAGELOG_H
#define MESSAGELOG_H

#include <QString>
#include <QStringList>

/// Replaces Qt's own message output, which may end in the journal instead of at the user.
///
/// Threads: any; the messages of all threads are serialised.
class MessageLog
{
public:
    enum Level {
        OwnMessages, ///< print the program's own category; keep the libraries' warnings to oneself
        AllMessages, ///< print all, the libraries' with file, line and function
    };

    /// @param program   printed before each line
    /// @param category  of the program's own messages
    static void install(const QString &program, const QString &category, Level level);

    /// Warnings of the libraries since the last call, oldest first; at most the last hundred.
    static QStringList takeWarnings();
};

#endif
