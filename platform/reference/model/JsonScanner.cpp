// SPDX-License-Identifier: MIT
// Goes over a JSON text once and notes where its values stand: arrays and objects.
#include "JsonScanner.h"

#include "DescriptionKeys.h"

#include <algorithm>
#include <cstring>

namespace Keys = DescriptionKeys;

namespace {

constexpr int maximumLevel = 1024; // what Qt's reader takes

} // namespace

JsonTextPointer JsonScanner::scan(const QByteArray &json)
{
    JsonScanner scanner(json);
    JsonItem root{};
    if (quint32(json.size()) > maximumJsonItemSize || !scanner.scanRoot(root)) {
        return {};
    }
    auto *const text = new JsonText;
    const JsonTextPointer result(text);
    text->text = json;
    scanner.items.squeeze();
    text->items = scanner.items;
    text->keys = scanner.keyNumbers.texts();
    text->shapes = scanner.shapeNumbers.shapes();
    text->root = root;
    return result;
}

JsonScanner::JsonScanner(const QByteArray &json)
    : json(json)
    , next(this->json.constData())
    , end(next + json.size())
{
}

bool JsonScanner::scanRoot(JsonItem &root)
{
    constexpr int usualBytesOfAnItem = 16;
    items.reserve(json.size() / usualBytesOfAnItem);
    return afterSpace() == '{' && openObject(root, true) && afterSpace() == '\0' && next == end;
}

// The next character that is no space, without taking it; zero at the end.
char JsonScanner::afterSpace()
{
    while (next != end && (*next == ' ' || *next == '\n' || *next == '\t' || *next == '\r')) {
        ++next;
    }
    return next != end ? *next : '\0';
}

bool JsonScanner::skip(char expected)
{
    if (afterSpace() != expected || next == end) {
        return false;
    }
    ++next;
    return true;
}

bool JsonScanner::openObject(JsonItem &item, bool isRoot)
{
    ++next;
    if (++level > maximumLevel) {
        return false;
    }
    const int firstPending = pending.size();
    const int firstKey = pendingKeys.size();
    if (!skip('}')) {
        do {
            if (!openMember(isRoot, pendingKeys.size() - firstKey)) {
                return false;
            }
        } while (skip(','));
        if (!skip('}')) {
            return false;
        }
    }
    --level;
    return closeObject(item, firstPending, firstKey);
}

bool JsonScanner::openMember(bool isRoot, int keyPosition)
{
    quint32 key = 0;
    if (!scanKey(keyPosition, key)) {
        return false;
    }
    pendingKeys.append(key);
    JsonItem value{};
    const char first = afterSpace();
    bool good = false;
    if (first == '[' && key == Keys::elements.number) {
        good = openElements(value);
    } else if (first == '{' && isRoot && key == Keys::buffer.number) {
        good = openObject(value, false);
    } else {
        good = scanValue(value);
    }
    pending.append(value);
    return good;
}

// Puts the values in the order of their names.
bool JsonScanner::closeObject(JsonItem &item, int firstPending, int firstKey)
{
    const int count = pendingKeys.size() - firstKey;
    const quint32 *const keys = pendingKeys.constData() + firstKey;
    const QVector<JsonShape> &shapes = shapeNumbers.shapes();
    if (int(lastShape) >= shapes.size() || shapes.at(int(lastShape)).keys.size() != count
        || !std::equal(keys, keys + count, shapes.at(int(lastShape)).keys.constData())) {
        const auto number = shapeNumbers.numberOf(keys, count, keyNumbers.texts());
        if (!number) {
            return false;
        }
        lastShape = *number;
    }
    const int first = items.size();
    const quint32 *const places = shapes.at(int(lastShape)).places.constData();
    items.resize(first + count);
    JsonItem *const values = items.data() + first;
    for (int i = 0; i < count; ++i) {
        values[places[i]] = pending.at(firstPending + i);
    }
    pending.resize(firstPending);
    pendingKeys.resize(firstKey);
    item = JsonItem{quint32(first), lastShape & maximumJsonItemSize, JsonKind::Object, 0};
    return true; // there are fewer shapes than bytes
}

bool JsonScanner::openElements(JsonItem &item)
{
    ++next;
    if (++level > maximumLevel) {
        return false;
    }
    const int firstPending = pending.size();
    if (!skip(']')) {
        do {
            JsonItem element{};
            if (!(afterSpace() == '{' ? openObject(element, false) : scanValue(element))) {
                return false;
            }
            pending.append(element);
        } while (skip(','));
        if (!skip(']')) {
            return false;
        }
    }
    --level;
    const int count = pending.size() - firstPending;
    const int first = items.size();
    items.resize(first + count);
    std::copy_n(pending.constData() + firstPending, count, items.data() + first);
    pending.resize(firstPending);
    item = JsonItem{quint32(first), quint32(count) & maximumJsonItemSize, JsonKind::Array, 0};
    return true; // there are fewer values than bytes
}

bool JsonScanner::scanKey(int position, quint32 &number)
{
    if (afterSpace() != '"') {
        return false;
    }
    const QVector<JsonShape> &shapes = shapeNumbers.shapes();
    if (int(lastShape) < shapes.size() && position < shapes.at(int(lastShape)).keys.size()) {
        number = shapes.at(int(lastShape)).keys.at(position);
        const QByteArray &likely = keyNumbers.texts().at(int(number)).spelled;
        if (end - next >= likely.size()
            && std::memcmp(next, likely.constData(), size_t(likely.size())) == 0) {
            next += likely.size();
            return true;
        }
    }
    JsonItem key{};
    if (!scanText(key)) {
        return false;
    }
    const QLatin1String spelled(json.constData() + key.begin, int(key.size));
    const auto found = keyNumbers.numberOf(spelled, key.plain != 0);
    number = found.value_or(0);
    return found && skip(':');
}

// An array or object that stays closed.
bool JsonScanner::checkContainer(JsonItem &item)
{
    const char *const begin = next;
    const bool isObject = *begin == '{';
    ++next;
    if (++level > maximumLevel || !checkMembers(isObject ? '}' : ']')) {
        return false;
    }
    --level;
    item = itemFrom(begin, isObject ? JsonKind::Object : JsonKind::Array, false);
    return true;
}

bool JsonScanner::checkMembers(char close)
{
    if (skip(close)) {
        return true;
    }
    do {
        JsonItem ignored{};
        if (close == '}' && !(afterSpace() == '"' && scanText(ignored) && skip(':'))) {
            return false;
        }
        if (!scanValue(ignored)) {
            return false;
        }
    } while (skip(','));
    return skip(close);
}
