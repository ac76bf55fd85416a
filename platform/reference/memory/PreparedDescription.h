// SPDX-License-Identifier: MIT
// A description's text, read and checked once for all who have the same text.
#ifndef PREPAREDDESCRIPTION_H
#define PREPAREDDESCRIPTION_H

#include "ProcessDataDescription.h"

#include <QSharedPointer>
#include <QString>

#include <optional>

/// Immutable. Lives for as long as somebody holds it: a tree that was built of it, or a connector
/// that expects one to be. A large one is destroyed in a thread of its own.
struct PreparedDescription
{
    QString text;
    QString token; ///< see descriptionToken()
    std::optional<ProcessDataDescription> content; ///< nothing when it was refused
    QString error; ///< why
};

using PreparedDescriptionPointer = QSharedPointer<const PreparedDescription>;

/// Reads a description as a service sends it, or finds what the same text was read to before.
///
/// Threads: any.
/// @returns never null
PreparedDescriptionPointer prepareDescription(const QString &text);

/// What says in a few characters which text is meant: equal for equal texts. Made for services that
/// are trusted with their own descriptions; no proof against somebody who looks for two alike.
///
/// @returns a text that no description is equal to
QString descriptionToken(const QString &text);

#endif
