// SPDX-License-Identifier: MIT
// What a scripted leaf answers.
#ifndef SCRIPTEDLEAF_H
#define SCRIPTEDLEAF_H

#include "ProcessDataDefinitions.h"
#include "ProcessDataPlatformExport.h"
#include "ProcessValue.h"

#include <QByteArray>
#include <QSharedPointer>
#include <QString>
#include <QVariant>
#include <QVector>

class LeafScript;

/// The script of one leaf: its value, its properties, how it takes writes.
///
/// What is said of values and of reading and writing shows at the next call. Properties, absence
/// and rendering belong to the source's description: clients see a change of theirs when the source
/// announces it (ScriptedSource::changeDescription, changeProperties).
///
/// A handle: copies speak of the same leaf. Threads: any; clients may read and write meanwhile.
class PROCESSDATAPLATFORM_EXPORT ScriptedLeaf
{
public:
    ScriptedLeaf();

    /// What reading gives from now on.
    ///
    /// @param value      in the leaf's unit; given to clients as it is, nothing is converted
    /// @param errorType  how far the value can be trusted, as the publisher would say
    /// @param timestamp  nanoseconds since 1970-01-01 00:00 UTC
    ScriptedLeaf &holds(const QVariant &value,
                        ProcessDataDefinitions::ErrorTypes errorType
                        = ProcessDataDefinitions::NoError,
                        qint64 timestamp = 0);
    /// Reading fails: clients get the error value (error type NoValue).
    ScriptedLeaf &refusesReads(bool on = true);
    /// Writing fails, as when a value lies outside the leaf's range: clients get false.
    ScriptedLeaf &refusesWrites(bool on = true);

    /// Gives the leaf a property, such as "unit".
    ScriptedLeaf &property(const QString &name, const QVariant &value);
    /// The description calls the leaf read-only: a handler whose list is set after that refuses
    /// writes by itself.
    ScriptedLeaf &readOnly(bool on = true);
    /// The description has no such leaf, or has it again.
    ScriptedLeaf &absent(bool on = true);
    /// The text of all properties, in place of a JSON object of name and properties.
    ScriptedLeaf &rendersAs(const QByteArray &bytes);
    /// What a client gets for a property that the leaf lacks; an invalid QVariant unless told.
    ScriptedLeaf &answersUnknownPropertiesWith(const QVariant &answer);

    /// What reading gives, a value that a client wrote included.
    ProcessValue value() const;
    /// All that was written through the library, in order; refused values are not among it.
    QVector<ProcessValue> written() const;

private:
    friend class LeafScript;
    QSharedPointer<LeafScript> d;
};

#endif
