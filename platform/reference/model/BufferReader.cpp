// SPDX-License-Identifier: MIT
// Reads where a description's values stand.
#include "BufferReader.h"

#include "DescriptionKeys.h"
#include "JsonReading.h"
#include "SlotLayout.h"
#include "SourceName.h"
#include "ValueConversion.h"

#include <algorithm>
#include <limits>

namespace Keys = DescriptionKeys;

namespace {

bool isBufferName(const QString &name)
{
    return name.size() > 1 && name.startsWith(QLatin1Char('/'))
        && name.lastIndexOf(QLatin1Char('/')) == 0 && !hasControlCharacter(name)
        && name.toUtf8().size() <= Keys::maximumBufferNameLength;
}

} // namespace

std::optional<BufferDescription> readBuffer(const JsonNode &document, QString &error)
{
    const JsonNode object = document.value(Keys::buffer);
    if (object.kind() != JsonKind::Object) {
        error = QStringLiteral("description: \"%1\" must be an object, but is %2")
                    .arg(Keys::buffer.name, jsonTypeName(object.kind()));
        return std::nullopt;
    }
    constexpr quint64 highest = std::numeric_limits<qint64>::max();
    constexpr quint64 highest32 = std::numeric_limits<quint32>::max();
    const JsonPlace place(Keys::buffer.name);
    const auto name = readText(object, Keys::name, false, place, error);
    if (!name) {
        return std::nullopt;
    }
    if (!isBufferName(*name)) {
        error = QStringLiteral("buffer: %1 is not the name of a shared-memory object")
                    .arg(printable(*name));
        return std::nullopt;
    }
    const auto generation
        = readWholeNumber(object, Keys::bufferGeneration, 1, highest, place, error);
    if (!generation) {
        return std::nullopt;
    }
    const auto size
        = readWholeNumber(object, Keys::bufferSize, slotLayoutHeaderSize, highest, place, error);
    if (!size) {
        return std::nullopt;
    }
    const auto ownerUid = readWholeNumber(object, Keys::bufferOwnerUid, 0, highest32, place, error);
    if (!ownerUid) {
        return std::nullopt;
    }
    BufferDescription buffer{*name, *generation, *size, static_cast<quint32>(*ownerUid)};
    if (object.contains(Keys::bufferRevision)) {
        const auto revision
            = readWholeNumber(object, Keys::bufferRevision, 0, highest32, place, error);
        if (!revision) {
            return std::nullopt;
        }
        buffer.revision = static_cast<quint32>(*revision);
    }
    return buffer;
}

bool slotsStandApart(const QVector<LeafDescription> &leaves, QString &error)
{
    QVector<const LeafDescription *> byOffset;
    byOffset.reserve(leaves.size());
    for (const LeafDescription &leaf : leaves) {
        byOffset.append(&leaf);
    }
    // Stable, so that of two equal offsets the message blames the later leaf.
    std::stable_sort(byOffset.begin(), byOffset.end(),
                     [](const LeafDescription *left, const LeafDescription *right) {
                         return left->offset < right->offset;
                     });
    for (int i = 1; i < byOffset.size(); ++i) {
        const LeafDescription &before = *byOffset.at(i - 1);
        const LeafDescription &leaf = *byOffset.at(i);
        if (leaf.offset - before.offset < slotSize(before.type, before.capacity)) {
            error
                = QStringLiteral("leaf \"%1\": its slot at offset %2 overlaps that of leaf \"%3\"")
                      .arg(leaf.path)
                      .arg(leaf.offset)
                      .arg(before.path);
            return false;
        }
    }
    return true;
}
