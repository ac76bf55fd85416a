// SPDX-License-Identifier: MIT
// A parsed process-data description and the limits that it must keep.
#ifndef PROCESSDATADESCRIPTION_H
#define PROCESSDATADESCRIPTION_H

#include "JsonText.h"
#include "LeafDescription.h"
#include "SourceName.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <optional>

/// Where a description's values stand.
struct BufferDescription
{
    QString name; ///< of the POSIX shared-memory object, with its leading slash
    quint64 generation = 0; ///< a new number for each new layout, never one that was used before
    quint64 size = 0; ///< bytes
    quint32 ownerUid = 0; ///< user id that the object must belong to
    std::optional<quint32> revision
        = std::nullopt; ///< of the description, as its buffer's publisher counts
};

/// One instance's description.
struct ProcessDataDescription
{
    SourceName source;
    quint64 session = 0; ///< one run of the publisher; 0 when the description names none
    std::optional<BufferDescription> buffer; ///< absent in files for publishers
    QVector<LeafDescription> leaves; ///< in document order
    QHash<QString, int> positions; ///< of the leaves by path; -1 for the path of a group
};

/// Whether a description must say where its values stand.
enum class DescriptionForm {
    Published, ///< as a service sends it: with buffer and offsets
    Template, ///< as a publisher takes it: without
};

/// Parses and checks a description.
///
/// @param json   UTF-8 text of one JSON document
/// @param error  receives one sentence that names what is wrong and where; left alone on success
/// @returns the description; nothing when any rule is broken: more than 64 MiB of text, 1,000,000
///          leaves or 64 levels, duplicate paths, unknown types, a slot outside the buffer or
///          misaligned, overlapping slots, a limit that its type cannot hold
/// Threads: any.
std::optional<ProcessDataDescription> parseDescription(const QByteArray &json, DescriptionForm form,
                                                       QString &error);

/// The same for a text that was gone over already.
///
/// @param text  not null
std::optional<ProcessDataDescription> parseDescription(const JsonTextPointer &text,
                                                       DescriptionForm form, QString &error);

/// The same for a document that is already parsed.
std::optional<ProcessDataDescription> parseDescription(const QJsonObject &document,
                                                       DescriptionForm form, QString &error);

#endif
