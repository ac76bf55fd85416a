// SPDX-License-Identifier: MIT
// Changes places of a JSON text and leaves the rest as it is spelled.
#ifndef JSONEDITS_H
#define JSONEDITS_H

#include <QByteArray>
#include <QVector>

/// Other bytes for some of a text.
struct JsonEdit
{
    int begin; ///< byte in the text, not within a string
    int size; ///< bytes that go; 0 to insert only
    QByteArray inserted;
};

/// A text with its edits made, and without the space between its values.
///
/// @param json   of well-formed JSON
/// @param edits  in any order; they must not overlap
QByteArray editedJson(const QByteArray &json, QVector<JsonEdit> edits);

#endif
