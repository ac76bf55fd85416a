// SPDX-License-Identifier: MIT
// Parses and checks process-data descriptions.
#include "ProcessDataDescription.h"

#include "BufferReader.h"
#include "DescriptionKeys.h"
#include "DescriptionText.h"
#include "JsonReading.h"
#include "LeafReader.h"
#include "ValueConversion.h"

#include <limits>

namespace Keys = DescriptionKeys;

namespace {

const QLatin1String documentPlace("description");

class DescriptionReader
{
public:
    DescriptionReader(JsonTextPointer text, DescriptionForm form, QString &error)
        : text(std::move(text))
        , form(form)
        , error(error)
    {
    }

    std::optional<ProcessDataDescription> read()
    {
        const JsonNode document(*text, text->root);
        if (readFormat(document) && readSource(document) && readBufferKey(document)
            && readElements(document, QString(), 1)
            && (form == DescriptionForm::Template || slotsStandApart(description.leaves, error))) {
            return std::move(description);
        }
        return std::nullopt;
    }

private:
    bool readFormat(const JsonNode &document)
    {
        const auto format = readText(document, Keys::format, false, documentPlace, error);
        if (format && *format != Keys::formatVersion1) {
            error = QStringLiteral("%1: format %2 is not \"%3\"")
                        .arg(documentPlace, printable(*format), Keys::formatVersion1);
            return false;
        }
        return format.has_value();
    }

    bool readPartOfKey(const JsonNode &document, const JsonKey &key, QString &name)
    {
        const auto text
            = readText(document, key, form == DescriptionForm::Template, documentPlace, error);
        if (!text) {
            return false;
        }
        const bool missing = form == DescriptionForm::Template && !document.contains(key);
        if (!missing && (!isPartOfKey(*text) || !isNameText(*text))) {
            error = QStringLiteral(
                        "%1: \"%2\" is %3, which is empty or holds \"_\" or a control character")
                        .arg(documentPlace, key.name, printable(*text));
            return false;
        }
        name = *text;
        return true;
    }

    bool readSource(const JsonNode &document)
    {
        if (!readPartOfKey(document, Keys::module, description.source.module)
            || !readPartOfKey(document, Keys::object, description.source.object)) {
            return false;
        }
        const auto instance = readText(document, Keys::instance, form == DescriptionForm::Template,
                                       documentPlace, error);
        if (!instance) {
            return false;
        }
        if (!isNameText(*instance)) {
            error = QStringLiteral("%1: \"%2\" holds a control character")
                        .arg(documentPlace, Keys::instance.name);
            return false;
        }
        description.source.instance = *instance;
        if (!document.contains(Keys::session)) {
            return true;
        }
        const auto session = readWholeNumber(
            document, Keys::session, 0, std::numeric_limits<qint64>::max(), documentPlace, error);
        description.session = session.value_or(0);
        return session.has_value();
    }

    bool readBufferKey(const JsonNode &document)
    {
        if (form == DescriptionForm::Published) {
            description.buffer = readBuffer(document, error);
            return description.buffer.has_value();
        }
        if (document.contains(Keys::buffer)) {
            error = QStringLiteral("%1: \"%2\" is the publisher's to add")
                        .arg(documentPlace, Keys::buffer.name);
            return false;
        }
        return true;
    }

    bool readElements(const JsonNode &parent, const QString &path, int level)
    {
        const QString place
            = path.isEmpty() ? QString(documentPlace) : QStringLiteral("group \"%1\"").arg(path);
        const JsonNode elements = parent.value(Keys::elements);
        if (elements.kind() != JsonKind::Array) {
            error = QStringLiteral("%1: \"%2\" must be an array, but is %3")
                        .arg(place, Keys::elements.name, jsonTypeName(elements.kind()));
            return false;
        }
        if (level > Keys::maximumLevels) {
            error = QStringLiteral("%1: more than %2 levels").arg(place).arg(Keys::maximumLevels);
            return false;
        }
        if (level == 1) {
            description.leaves.reserve(elements.size());
            description.positions.reserve(elements.size());
        }
        for (int i = 0; i < elements.size(); ++i) {
            if (elements.at(i).kind() != JsonKind::Object) {
                error = QStringLiteral("%1: an element must be an object, but is %2")
                            .arg(place, jsonTypeName(elements.at(i).kind()));
                return false;
            }
            if (!readElement(elements.at(i), path, place, level)) {
                return false;
            }
        }
        return true;
    }

    bool readElement(const JsonNode &element, const QString &parentPath, const QString &parentPlace,
                     int level)
    {
        const auto name = readText(element, Keys::name, false,
                                   {QLatin1String("an element of "), parentPlace}, error);
        if (!name) {
            return false;
        }
        if (name->isEmpty() || name->contains(QLatin1Char('/')) || !isNameText(*name)) {
            error = QStringLiteral(
                        "%1: element name %2 is empty or holds \"/\" or a control character")
                        .arg(parentPlace, printable(*name));
            return false;
        }
        if (!countPath(parentPath.size() + 1 + name->size(), parentPlace, *name)) {
            return false;
        }
        const QString path = parentPath.isEmpty() ? *name : parentPath + QLatin1Char('/') + *name;
        const bool isGroup = element.contains(Keys::elements);
        const int pathCount = description.positions.size();
        description.positions.insert(path, isGroup ? -1 : description.leaves.size());
        if (description.positions.size() == pathCount) {
            error = QStringLiteral("%1: path \"%2\" is given twice").arg(parentPlace, path);
            return false;
        }

        if (isGroup == element.contains(Keys::type)) {
            error = QStringLiteral("element \"%1\" must have either \"%2\" or \"%3\"")
                        .arg(path, Keys::type.name, Keys::elements.name);
            return false;
        }
        return isGroup ? readElements(element, path, level + 1) : appendLeaf(element, path);
    }

    // Paths repeat the names of their groups: without these limits a small text could ask for more
    // memory than there is.
    bool countPath(int length, const QString &parentPlace, const QString &name)
    {
        if (length > Keys::maximumPathLength) {
            error = QStringLiteral("%1: element %2 has a path of more than %3 characters")
                        .arg(parentPlace, printable(name))
                        .arg(Keys::maximumPathLength);
            return false;
        }
        pathText += length;
        if (pathText > Keys::maximumPathText) {
            error = QStringLiteral("%1: all paths together have more than %2 characters")
                        .arg(documentPlace)
                        .arg(Keys::maximumPathText);
            return false;
        }
        return true;
    }

    bool appendLeaf(const JsonNode &element, const QString &path)
    {
        if (description.leaves.size() == Keys::maximumLeaves) {
            error = QStringLiteral("%1: more than %2 leaves")
                        .arg(documentPlace)
                        .arg(Keys::maximumLeaves);
            return false;
        }
        const quint64 bufferSize = description.buffer ? description.buffer->size : 0;
        LeafDescription leaf;
        if (!readLeaf(element, path, form, bufferSize, leaf, error)) {
            return false;
        }
        leaf.properties = LeafProperties(text, element.place());
        description.leaves.append(std::move(leaf));
        return true;
    }

    const JsonTextPointer text;
    const DescriptionForm form;
    QString &error;
    ProcessDataDescription description;
    qint64 pathText = 0; // characters in all paths
};

} // namespace

std::optional<ProcessDataDescription> parseDescription(const QByteArray &json, DescriptionForm form,
                                                       QString &error)
{
    const JsonTextPointer text = scanDescription(json, error);
    return text ? DescriptionReader(text, form, error).read() : std::nullopt;
}

std::optional<ProcessDataDescription> parseDescription(const QJsonObject &document,
                                                       DescriptionForm form, QString &error)
{
    const JsonTextPointer text = scanDescription(document, error);
    return text ? DescriptionReader(text, form, error).read() : std::nullopt;
}

std::optional<ProcessDataDescription> parseDescription(const JsonTextPointer &text,
                                                       DescriptionForm form, QString &error)
{
    return DescriptionReader(text, form, error).read();
}
