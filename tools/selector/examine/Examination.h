// SPDX-License-Identifier: MIT
// Examines the way to a source: owner, object, instance, description, buffer.
#ifndef EXAMINATION_H
#define EXAMINATION_H

#include "DescriptionEdits.h"
#include "Finding.h"
#include "PlatformDetails.h"
#include "SelectorUrlParser.h"
#include "Step.h"

#include <QMap>
#include <QSet>

/// What stands on the way to a source.
struct Examination
{
    SourceName source;
    Step end = Step::Owner; ///< the first step that failed; Leaf: none of a source's
    PlatformDetails::Owner owner;
    QString description; ///< as the service sends it; empty until it came
    PlatformDetails::Buffer buffer;
    Finding cause; ///< of the step that failed, in full
    Finding reason; ///< the same for a row about the source: shorter, and in the codes of rows
};

/// Asks bus, service and shared memory themselves, past everything that a client remembers. When
/// the buffer is not good and the service describes another one by now, that one counts: a
/// publisher may replace its buffer in between.
///
/// Threads: any; blocks for D-Bus calls. Runs no event loop.
Examination examine(const SourceName &source);

/// The same for an instance that its service has just listed: asks for its description alone.
///
/// @param found  has the source and its owner
/// @returns how the question ended; without a description nothing else is told
Answer examineListed(Examination &found);

/// What can be told from a selector's text alone.
Finding textFinding(const SelectorUrlParts &parts);

/// What is wrong with the bus, and what a bus that is all right is, for people.
Finding busFinding(const Answer &bus);
QString busText(const PlatformDetails::Services &services);

/// Names for people, at most eight.
QString quotedList(const QStringList &names);

/// Examines selectors, and each of their sources once.
///
/// Threads: one; blocks for D-Bus calls.
class SelectorExaminer
{
public:
    /// @returns the reason of the first step that fails; None when source and leaf are there
    Finding explain(const QString &url);

    /// Why a leaf that is there refused a value that fits it; None when that cannot be told.
    Finding explainRefusal(const QString &url);

private:
    struct Source
    {
        Examination found;
        QSet<QString> paths; ///< of its leaves; told where nothing of the source is in the way
    };

    const Source &sourceOf(const SourceName &name);

    QString leafHint(const Source &source, const QString &path);

    QMap<SourceName, Source> sources;
    int hints = 0; ///< given so far
};

#endif
