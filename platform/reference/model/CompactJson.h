// SPDX-License-Identifier: MIT
// Writes JSON objects as compact text.
#ifndef COMPACTJSON_H
#define COMPACTJSON_H

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QVarLengthArray>

/// Writes one object key by key, as the text that QJsonDocument::toJson(Compact) gives.
///
/// That function takes more than half of a list's set-up. What descriptions hold most, short texts
/// and whole numbers, is written here without its detours; everything else is left to it.
class CompactJsonObjectWriter
{
public:
    /// Keys must come in the order of QJsonObject, each once.
    void write(const QString &key, const QJsonValue &value);

    /// Ends the object and appends it. The writer is used up.
    void appendTo(QByteArray &bytes);

private:
    void writeText(const QString &content);
    void writeNumber(const QJsonValue &value);
    void writeValue(const QJsonValue &value);
    void writeByQt(const QJsonValue &value);

    QVarLengthArray<char, 512> text; // on the stack for usual leaves
};

#endif
