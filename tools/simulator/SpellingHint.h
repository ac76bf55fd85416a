// SPDX-License-Identifier: MIT
// Ends of messages that say what somebody may have meant.
#ifndef SPELLINGHINT_H
#define SPELLINGHINT_H

#include "NearMiss.h"

/// A message about something unknown, and behind it the known that is like it, if any is.
inline QString withHint(const QString &message, const QString &typed, const QStringList &known)
{
    const QString question = didYouMean(typed, known);
    return question.isEmpty() ? message : message + QStringLiteral("; ") + question;
}

/// A message about a missing key, and behind it what was written in its place, if anything was.
inline QString withLookAlike(const QString &message, const QString &missing,
                             const QStringList &present)
{
    const QString alike = nearMisses(missing, present).value(0);
    return alike.isEmpty() ? message
                           : message + QStringLiteral("; \"%1\" looks like it").arg(alike);
}

#endif
