// SPDX-License-Identifier: MIT
// Makes report entries out of what was read, written or described.
#ifndef ENTRIES_H
#define ENTRIES_H

#include "Finding.h"
#include "LeafValue.h"
#include "ListFile.h"
#include "Report.h"

#include <QJsonObject>
#include <QString>
#include <QVariant>
#include <QVector>

/// A value as it was read.
struct ReadResult
{
    QString url;
    LeafValue value;
    QJsonObject properties; ///< of the leaf; empty without one
    Finding finding; ///< why there is no value
    QString label = {}; ///< what the person calls the selector; empty without
};

/// What is shown of it.
struct ReadRow
{
    Entry::State state = Entry::Good;
    Cell value{QString()}; ///< empty without a value, as are unit and time
    QString unit;
    QString error;
    qint64 timestamp = 0; ///< nanoseconds since the epoch; 0: none
    QString note;
};

QVector<Column> readColumns();
ReadRow readRow(const ReadResult &result);
Entry readEntry(const ReadResult &result);

/// An attempt to write.
struct WriteResult
{
    QString url;
    QVariant value; ///< as it was written; invalid when its text could not be converted
    QString text; ///< as it was given
    QJsonObject properties;
    Finding finding; ///< None when it was written
    QString label = {};
    QVariant before = {}; ///< what the leaf held; invalid: nothing good
    bool verified = false; ///< it was read back as well
};

QVector<Column> writeColumns();
Entry writeEntry(const WriteResult &result);

/// The properties of one selector.
struct PropertiesResult
{
    QString url;
    QVector<QPair<QString, QVariant>> properties; ///< an invalid value: the leaf has none
    Finding finding; ///< why there is no leaf
    QString label = {};
    QStringList known = {}; ///< names of all properties that the leaf has
};

QVector<Column> propertiesColumns();
Entry propertiesEntry(const PropertiesResult &result);

/// A leaf as its description has it.
QVector<Column> leafColumns();
Entry leafEntry(const QString &url, const QString &path, const QJsonObject &properties);

/// The state of an entry that has a finding.
Entry::State stateOf(const Finding &finding);

/// An entry with the state, the reason and the code of a finding, which has no rows yet.
Entry entryOf(const QString &subject, const Finding &finding);

/// The same about a line of a list, with a state of its own.
Entry lineEntry(const ListLine &line, const Finding &finding, Entry::State state);

/// People see the label of a selector that has one, programs the URL.
Cell selectorCell(const QString &url, const QString &label);

/// Adds a label to the JSON of an entry, where there is one.
void insertLabel(const QString &label, QJsonObject &json);

/// "ok", "skipped", "doubtful" or "failed".
QString stateName(Entry::State state);

#endif
