// SPDX-License-Identifier: MIT
// Changes places of a JSON text and leaves the rest as it is spelled.
#include "JsonEdits.h"

#include <algorithm>

namespace {

bool isSpace(char character)
{
    return character == ' ' || character == '\n' || character == '\t' || character == '\r';
}

// Appends a part that begins and ends outside of strings.
void appendWithoutSpace(const QByteArray &json, int begin, int end, QByteArray &result)
{
    bool inString = false;
    for (int at = begin; at < end; ++at) {
        const char character = json.at(at);
        if (inString || !isSpace(character)) {
            result += character;
        }
        if (inString && character == '\\' && at + 1 < end) {
            result += json.at(++at);
        } else if (character == '"') {
            inString = !inString;
        }
    }
}

} // namespace

QByteArray editedJson(const QByteArray &json, QVector<JsonEdit> edits)
{
    std::stable_sort(edits.begin(), edits.end(), [](const JsonEdit &left, const JsonEdit &right) {
        return left.begin < right.begin;
    });
    QByteArray result;
    result.reserve(json.size());
    int next = 0;
    for (const JsonEdit &edit : qAsConst(edits)) {
        appendWithoutSpace(json, next, edit.begin, result);
        result += edit.inserted;
        next = edit.begin + edit.size;
    }
    appendWithoutSpace(json, next, json.size(), result);
    return result;
}
