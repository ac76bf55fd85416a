// SPDX-License-Identifier: MIT
// Takes the simulator's keys out of a description's text.
#include "PublishedText.h"

#include "DescriptionKeys.h"
#include "DescriptionText.h"
#include "JsonEdits.h"

#include <cstring>

namespace Keys = DescriptionKeys;

namespace {

bool isSpaceOrColon(char character)
{
    return std::strchr(" \n\t\r:", character) != nullptr;
}

// A member with the comma that is too many without it.
JsonEdit removal(const QByteArray &json, const JsonNode &value)
{
    const int quote = value.kind() == JsonKind::String ? 1 : 0;
    const auto valueBegin = int(value.place().begin) - quote;
    int end = valueBegin + int(value.place().size) + 2 * quote;
    int begin
        = json.lastIndexOf('"' + QByteArray(Keys::simulate.name.data()) + '"', valueBegin - 1);
    int before = begin - 1;
    while (before > 0 && isSpaceOrColon(json.at(before))) {
        --before;
    }
    if (json.at(before) == ',') {
        begin = before;
    } else {
        while (isSpaceOrColon(json.at(end))) {
            ++end;
        }
        end += json.at(end) == ',' ? 1 : 0;
    }
    return {begin, end - begin, {}};
}

void collectRemovals(const JsonText &text, const JsonNode &group, QVector<JsonEdit> &edits)
{
    const JsonNode elements = group.value(Keys::elements);
    if (elements.kind() != JsonKind::Array) {
        return;
    }
    for (int i = 0; i < elements.size(); ++i) {
        const JsonNode element = elements.at(i);
        if (element.kind() != JsonKind::Object) {
            continue;
        }
        if (element.contains(Keys::simulate)) {
            edits.append(removal(text.text, element.value(Keys::simulate)));
        }
        collectRemovals(text, element, edits);
    }
}

} // namespace

QByteArray withoutSimulationKeys(const QByteArray &content)
{
    QString ignored;
    const JsonTextPointer text = scanDescription(content, ignored);
    if (!text) {
        return content;
    }
    QVector<JsonEdit> edits;
    collectRemovals(*text, JsonNode(*text, text->root), edits);
    return editedJson(text->text, edits);
}
