// SPDX-License-Identifier: MIT
// A publisher's description: as its owner gave it, as it is parsed, and as clients fetch it.
#include "PublishedDescription.h"

#include "CompactJson.h"
#include "DescriptionKeys.h"
#include "DescriptionText.h"
#include "JsonEdits.h"

#include <QJsonObject>

#include <utility>

namespace Keys = DescriptionKeys;

namespace {

// A name that a document carries must be the publisher's own; one that it lacks is added.
bool setName(const JsonNode &document, const JsonKey &key, const QString &name,
             QJsonObject &missing, QString &error)
{
    const JsonNode present = document.value(key);
    if (present.isUndefined()) {
        missing.insert(key.name, name);
        return true;
    }
    if (present.kind() != JsonKind::String || present.toText() != name) {
        error = QStringLiteral("its \"%1\" must be \"%2\"").arg(QString(key.name), name);
        return false;
    }
    return true;
}

// Members that an object begins with, which has others after them.
QByteArray leadingMembers(const QJsonObject &members)
{
    const QByteArray object = compactJson(members);
    return members.isEmpty() ? QByteArray() : object.mid(1, object.size() - 2) + ',';
}

int beginOfMembers(const JsonText &text)
{
    return text.text.indexOf('{') + 1;
}

bool checkSource(const SourceName &source, QString &error)
{
    if (!isPartOfKey(source.module)) {
        error = QStringLiteral("a module's name must not be empty nor contain \"_\"");
        return false;
    }
    if (!isPartOfKey(source.object)) {
        error = QStringLiteral("an object's name must not be empty nor contain \"_\"");
        return false;
    }
    for (const QString &name : {source.module, source.object, source.instance}) {
        if (hasControlCharacter(name)) {
            error = QStringLiteral("its names must not contain control characters");
            return false;
        }
    }
    return true;
}

// The text as it is to be parsed: with all three names.
JsonTextPointer withNames(const SourceName &source, const JsonTextPointer &text, QString &error)
{
    const JsonNode document(*text, text->root);
    QJsonObject missing;
    if (!setName(document, Keys::module, source.module, missing, error)
        || !setName(document, Keys::object, source.object, missing, error)
        || !setName(document, Keys::instance, source.instance, missing, error)) {
        return {};
    }
    if (missing.isEmpty() || text->shapes.at(int(text->root.size)).keys.isEmpty()) {
        return text;
    }
    return scanDescription(
        editedJson(text->text, {{beginOfMembers(*text), 0, leadingMembers(missing)}}), error);
}

// Leaves come in the order in which the parser met them. Each has a name, which the offset follows.
void addOffsets(const JsonNode &group, const QVector<LeafDescription> &leaves, int &next,
                QVector<JsonEdit> &edits)
{
    const JsonNode elements = group.value(Keys::elements);
    for (int i = 0; i < elements.size(); ++i) {
        const JsonNode element = elements.at(i);
        if (element.contains(Keys::elements)) {
            addOffsets(element, leaves, next, edits);
            continue;
        }
        const JsonItem name = element.value(Keys::name).place();
        edits.append({int(name.begin + name.size) + 1, 0,
                      ",\"offset\":" + QByteArray::number(leaves.at(next).offset)});
        ++next;
    }
}

QJsonObject bufferMember(const BufferDescription &buffer)
{
    return {{QStringLiteral("name"), buffer.name},
            {QStringLiteral("generation"), static_cast<double>(buffer.generation)},
            {QStringLiteral("size"), static_cast<double>(buffer.size)},
            {QStringLiteral("ownerUid"), static_cast<double>(buffer.ownerUid)},
            {QStringLiteral("revision"), static_cast<double>(buffer.revision.value_or(0))}};
}
}

QString label(const SourceName &source)
{
    return QStringLiteral("Module \"%1\", object \"%2\", instance \"%3\"")
        .arg(source.module, source.object, source.instance);
}

std::optional<PublishedDescription> PublishedDescription::fromTemplate(const SourceName &source,
                                                                       const QJsonObject &document,
                                                                       QString &error)
{
    QString reason;
    const JsonTextPointer scanned = scanDescription(document, reason);
    return fromScanned(source, scanned, reason, error);
}

std::optional<PublishedDescription>
PublishedDescription::fromTemplate(const SourceName &source, const QByteArray &json, QString &error)
{
    QString reason;
    const JsonTextPointer scanned = scanDescription(json, reason);
    return fromScanned(source, scanned, reason, error);
}

std::optional<PublishedDescription>
PublishedDescription::fromScanned(const SourceName &source, const JsonTextPointer &scanned,
                                  QString reason, QString &error)
{
    PublishedDescription result;
    if (checkSource(source, reason) && scanned) {
        result.text = withNames(source, scanned, reason);
    }
    auto parsed = result.text ? parseDescription(result.text, DescriptionForm::Template, reason)
                              : std::nullopt;
    if (!parsed) {
        error = QStringLiteral("%1: %2").arg(label(source), reason);
        return std::nullopt;
    }
    result.description = std::move(*parsed);
    return result;
}

bool PublishedDescription::hasLayoutOf(const PublishedDescription &other, QString &difference) const
{
    const QVector<LeafDescription> &mine = description.leaves;
    const QVector<LeafDescription> &theirs = other.description.leaves;
    for (int i = 0; i < qMin(mine.size(), theirs.size()); ++i) {
        const LeafDescription &leaf = mine.at(i);
        const LeafDescription &before = theirs.at(i);
        if (leaf.path != before.path) {
            difference
                = QStringLiteral("\"%1\" stands where \"%2\" was").arg(leaf.path, before.path);
            return false;
        }
        if (leaf.type != before.type || leaf.capacity != before.capacity
            || leaf.readOnly != before.readOnly) {
            difference
                = QStringLiteral("type, capacity or readOnly of \"%1\" differs").arg(leaf.path);
            return false;
        }
    }
    if (mine.size() != theirs.size()) {
        difference = QStringLiteral("%1 %2 instead of %3")
                         .arg(mine.size())
                         .arg(mine.size() == 1 ? QStringLiteral("leaf") : QStringLiteral("leaves"))
                         .arg(theirs.size());
        return false;
    }
    return true;
}

void PublishedDescription::takeLayoutFrom(const PublishedDescription &other)
{
    description.buffer = other.description.buffer;
    description.session = other.description.session;
    for (int i = 0; i < description.leaves.size(); ++i) {
        description.leaves[i].offset = other.description.leaves.at(i).offset;
    }
}

QByteArray PublishedDescription::served() const
{
    const JsonNode document(*text, text->root);
    QVector<JsonEdit> edits;
    edits.reserve(description.leaves.size() + 2);
    QJsonObject added;
    if (document.contains(Keys::session)) {
        const JsonItem given = document.value(Keys::session).place();
        edits.append({int(given.begin), int(given.size), QByteArray::number(description.session)});
    } else {
        added.insert(Keys::session.name, static_cast<double>(description.session));
    }
    if (description.buffer.has_value()) {
        added.insert(Keys::buffer.name, bufferMember(*description.buffer));
    }
    edits.append({beginOfMembers(*text), 0, leadingMembers(added)});
    int next = 0;
    addOffsets(document, description.leaves, next, edits);
    return editedJson(text->text, std::move(edits));
}

QStringList PublishedDescription::selectorTypes() const
{
    QStringList result;
    for (const LeafDescription &leaf : description.leaves) {
        const QString type = leaf.properties.value(QStringLiteral("selectorType")).toString();
        if (!type.isEmpty() && !result.contains(type)) {
            result += type;
        }
    }
    return result;
}
