// SPDX-License-Identifier: MIT
// Goes over a JSON text once and notes where its values stand.
#ifndef JSONSCANNER_H
#define JSONSCANNER_H

#include "JsonText.h"

#include <QVarLengthArray>

/// Scans the text of a description: opens the object itself, its "buffer", and all "elements" with
/// the objects in them; whatever else is an array or object is only checked.
///
/// What it takes, Qt's reader takes too and understands in the same way. It does not take
/// everything: who wants to know what is wrong with a text, or whether anything is, asks Qt.
class JsonScanner
{
public:
    /// @returns null when this is no object, or spelled in an unusual way: with a key twice, with
    ///          needless escapes in a key, with raw control characters
    static JsonTextPointer scan(const QByteArray &json);

private:
    explicit JsonScanner(const QByteArray &json);

    bool scanRoot(JsonItem &root);
    bool openObject(JsonItem &item, bool isRoot);
    bool openMember(bool isRoot, int keyPosition);
    bool closeObject(JsonItem &item, int firstPending, int firstKey);
    bool openElements(JsonItem &item);
    bool scanKey(int position, quint32 &number);
    bool checkContainer(JsonItem &item);
    bool checkMembers(char close);
    bool scanValue(JsonItem &item);
    bool scanText(JsonItem &item);
    bool scanEscape();
    bool scanManyBytes();
    bool scanNumber(JsonItem &item);
    bool scanWord(JsonItem &item);
    bool skip(char expected);
    bool skipIf(char one, char other);
    bool skipDigits();
    char afterSpace();
    JsonItem itemFrom(const char *begin, JsonKind kind, bool plain) const;

    const QByteArray json;
    const char *next;
    const char *const end;
    int level = 0;
    JsonKeyNumbers keyNumbers;
    JsonShapeNumbers shapeNumbers;
    QVector<JsonItem> items;
    QVarLengthArray<JsonItem, 256> pending; // of arrays and objects that are still open
    QVarLengthArray<quint32, 256> pendingKeys;
    quint32 lastShape = 0; // of the object that was closed last, which the next one often repeats
};

#endif
