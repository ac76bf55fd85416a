// SPDX-License-Identifier: MIT
// Captures messages and compares their places with the sources.
#ifndef WARNINGLOG_H
#define WARNINGLOG_H

#include "MessageLog.h"

/// Everything that is logged, in any thread, from its making on.
///
/// A message is in order when it is a warning of the default category whose file and line lead to
/// the statement in src/ that holds the text's literal.
class WarningLog
{
public:
    /// The texts in order. What is not in order about a message is appended in brackets.
    QStringList texts() const;
    /// The functions that logged, in order, without result type and arguments; whole, with all that
    /// the compiler says of it, where it was not a plain function.
    QStringList functions() const;
    /// The files that logged, in order.
    QStringList files() const;
    /// How many messages there were with this text.
    int count(const QString &text) const;
    void clear() { log.clear(); }

private:
    MessageLog log;
};

#endif
