// SPDX-License-Identifier: MIT
// A publisher's description: as its owner gave it, as it is parsed, and as clients fetch it.
#ifndef PUBLISHEDDESCRIPTION_H
#define PUBLISHEDDESCRIPTION_H

#include "ProcessDataDescription.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

/// For messages: which instance of what.
QString label(const SourceName &source);

/// Threads: a value type.
class PublishedDescription
{
public:
    /// Checks a document that has no buffer and no offsets yet.
    ///
    /// @param error  receives one sentence that names the source and what is wrong
    static std::optional<PublishedDescription>
    fromTemplate(const SourceName &source, const QJsonObject &document, QString &error);

    /// The same for a document's text, UTF-8: whole numbers keep every digit.
    static std::optional<PublishedDescription> fromTemplate(const SourceName &source,
                                                            const QByteArray &json, QString &error);

    /// What PublishedBuffer::create() fills in.
    ProcessDataDescription &parsed() { return description; }
    const ProcessDataDescription &parsed() const { return description; }

    /// Position of a leaf; -1 for an unknown path.
    int indexOf(const QString &path) const { return description.positions.value(path, -1); }

    /// Whether both lay out to the same buffer: the same leaves in the same order, with the same
    /// type, capacity and readOnly.
    ///
    /// @param difference  receives the first difference as a sentence
    bool hasLayoutOf(const PublishedDescription &other, QString &difference) const;

    /// Takes buffer, session and offsets over from a description of the same layout.
    void takeLayoutFrom(const PublishedDescription &other);

    /// The text as clients fetch it, once buffer, session and offsets are there.
    QByteArray served() const;

    /// Selector types of the leaves, each once, in document order.
    QStringList selectorTypes() const;

private:
    static std::optional<PublishedDescription> fromScanned(const SourceName &source,
                                                           const JsonTextPointer &scanned,
                                                           QString reason, QString &error);

    JsonTextPointer text; // as its owner gave it, with the names of its source
    ProcessDataDescription description;
};

#endif
