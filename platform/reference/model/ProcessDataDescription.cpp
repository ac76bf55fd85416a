// SPDX-License-Identifier: MIT
// Parses and checks process-data descriptions.
#include "ProcessDataDescription.h"

#include "DescriptionKeys.h"
#include "JsonReading.h"
#include "LeafReader.h"
#include "SlotLayout.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>
#include <limits>

namespace Keys = DescriptionKeys;

namespace {

const QLatin1String documentPlace("description");

class DescriptionReader
{
public:
    DescriptionReader(DescriptionForm form, QString &error)
        : form(form)
        , error(error)
    {
    }

    std::optional<ProcessDataDescription> read(const QJsonObject &document)
    {
        if (readFormat(document) && readSource(document) && readBuffer(document)
            && readElements(document, QString(), 1) && checkOverlap()) {
            return description;
        }
        return std::nullopt;
    }

private:
    bool readFormat(const QJsonObject &document)
    {
        const auto format = readText(document, Keys::format, false, documentPlace, error);
        if (format && *format != Keys::formatVersion1) {
            error = QStringLiteral("%1: format \"%2\" is not \"%3\"")
                        .arg(documentPlace, *format, Keys::formatVersion1);
            return false;
        }
        return format.has_value();
    }

    bool readSourceName(const QJsonObject &document, QLatin1String key, QString &name)
    {
        const auto text
            = readText(document, key, form == DescriptionForm::Template, documentPlace, error);
        if (!text) {
            return false;
        }
        const bool missing = form == DescriptionForm::Template && !document.contains(key);
        if (!missing
            && (text->isEmpty() || text->contains(QLatin1Char('_'))
                || hasControlCharacter(*text))) {
            error
                = QStringLiteral(
                      "%1: \"%2\" is \"%3\", which is empty or holds \"_\" or a control character")
                      .arg(documentPlace, key, *text);
            return false;
        }
        name = *text;
        return true;
    }

    bool readSource(const QJsonObject &document)
    {
        if (!readSourceName(document, Keys::module, description.module)
            || !readSourceName(document, Keys::object, description.object)) {
            return false;
        }
        const auto instance = readText(document, Keys::instance, form == DescriptionForm::Template,
                                       documentPlace, error);
        if (!instance) {
            return false;
        }
        if (hasControlCharacter(*instance)) {
            error = QStringLiteral("%1: \"%2\" holds a control character")
                        .arg(documentPlace, Keys::instance);
            return false;
        }
        description.instance = *instance;
        if (!document.contains(Keys::session)) {
            return true;
        }
        const auto session = readWholeNumber(
            document, Keys::session, 0, std::numeric_limits<qint64>::max(), documentPlace, error);
        description.session = session.value_or(0);
        return session.has_value();
    }

    bool readBuffer(const QJsonObject &document)
    {
        const QJsonValue value = document.value(Keys::buffer);
        if (form == DescriptionForm::Template) {
            if (!value.isUndefined()) {
                error = QStringLiteral("%1: \"%2\" is the publisher's to add")
                            .arg(documentPlace, Keys::buffer);
            }
            return value.isUndefined();
        }
        if (!value.isObject()) {
            error = QStringLiteral("%1: \"%2\" must be an object, but is %3")
                        .arg(documentPlace, Keys::buffer, jsonTypeName(value));
            return false;
        }
        constexpr quint64 highest = std::numeric_limits<qint64>::max();
        constexpr quint64 highestUid = std::numeric_limits<quint32>::max();
        const QJsonObject object = value.toObject();
        const QString place = QStringLiteral("buffer");
        const auto name = readText(object, Keys::name, false, place, error);
        if (!name || !checkBufferName(*name)) {
            return false;
        }
        const auto generation
            = readWholeNumber(object, Keys::bufferGeneration, 1, highest, place, error);
        if (!generation) {
            return false;
        }
        const auto size = readWholeNumber(object, Keys::bufferSize, slotLayoutHeaderSize, highest,
                                          place, error);
        if (!size) {
            return false;
        }
        const auto ownerUid
            = readWholeNumber(object, Keys::bufferOwnerUid, 0, highestUid, place, error);
        if (!ownerUid) {
            return false;
        }
        description.buffer
            = BufferDescription{*name, *generation, *size, static_cast<quint32>(*ownerUid)};
        return true;
    }

    bool checkBufferName(const QString &name)
    {
        const bool good = name.size() > 1 && name.startsWith(QLatin1Char('/'))
            && name.lastIndexOf(QLatin1Char('/')) == 0 && !hasControlCharacter(name)
            && name.toUtf8().size() <= Keys::maximumBufferNameLength;
        if (!good) {
            error = QStringLiteral("buffer: \"%1\" is no name of a shared-memory object").arg(name);
        }
        return good;
    }

    bool readElements(const QJsonObject &parent, const QString &path, int level)
    {
        const QString place
            = path.isEmpty() ? QString(documentPlace) : QStringLiteral("group \"%1\"").arg(path);
        const QJsonValue value = parent.value(Keys::elements);
        if (!value.isArray()) {
            error = QStringLiteral("%1: \"%2\" must be an array, but is %3")
                        .arg(place, Keys::elements, jsonTypeName(value));
            return false;
        }
        if (level > Keys::maximumLevels) {
            error = QStringLiteral("%1: more than %2 levels").arg(place).arg(Keys::maximumLevels);
            return false;
        }
        const QJsonArray elements = value.toArray();
        for (const QJsonValue &element : elements) {
            if (!element.isObject()) {
                error = QStringLiteral("%1: an element must be an object, but is %2")
                            .arg(place, jsonTypeName(element));
                return false;
            }
            if (!readElement(element.toObject(), path, place, level)) {
                return false;
            }
        }
        return true;
    }

    bool readElement(const QJsonObject &element, const QString &parentPath,
                     const QString &parentPlace, int level)
    {
        const auto name = readText(element, Keys::name, false,
                                   QStringLiteral("an element of %1").arg(parentPlace), error);
        if (!name) {
            return false;
        }
        if (name->isEmpty() || name->contains(QLatin1Char('/')) || hasControlCharacter(*name)) {
            error = QStringLiteral(
                        "%1: element name \"%2\" is empty or holds \"/\" or a control character")
                        .arg(parentPlace, *name);
            return false;
        }
        const QString path = parentPath.isEmpty() ? *name : parentPath + QLatin1Char('/') + *name;
        if (paths.contains(path)) {
            error = QStringLiteral("%1: path \"%2\" is given twice").arg(parentPlace, path);
            return false;
        }
        paths.insert(path);

        const bool isGroup = element.contains(Keys::elements);
        if (isGroup == element.contains(Keys::type)) {
            error = QStringLiteral("element \"%1\" must have either \"%2\" or \"%3\"")
                        .arg(path, Keys::type, Keys::elements);
            return false;
        }
        return isGroup ? readElements(element, path, level + 1) : appendLeaf(element, path);
    }

    bool appendLeaf(const QJsonObject &element, const QString &path)
    {
        if (description.leaves.size() == Keys::maximumLeaves) {
            error = QStringLiteral("%1: more than %2 leaves")
                        .arg(documentPlace)
                        .arg(Keys::maximumLeaves);
            return false;
        }
        const quint64 bufferSize = description.buffer ? description.buffer->size : 0;
        auto leaf = readLeaf(element, path, form, bufferSize, error);
        if (leaf) {
            description.leaves.append(std::move(*leaf));
        }
        return leaf.has_value();
    }

    bool checkOverlap()
    {
        if (form == DescriptionForm::Template) {
            return true;
        }
        QVector<const LeafDescription *> byOffset;
        byOffset.reserve(description.leaves.size());
        for (const LeafDescription &leaf : qAsConst(description.leaves)) {
            byOffset.append(&leaf);
        }
        std::sort(byOffset.begin(), byOffset.end(),
                  [](const LeafDescription *left, const LeafDescription *right) {
                      return left->offset < right->offset;
                  });
        for (int i = 1; i < byOffset.size(); ++i) {
            const LeafDescription &before = *byOffset.at(i - 1);
            const LeafDescription &leaf = *byOffset.at(i);
            if (leaf.offset - before.offset < slotSize(before.type, before.capacity)) {
                error = QStringLiteral(
                            "leaf \"%1\": its slot at offset %2 overlaps that of leaf \"%3\"")
                            .arg(leaf.path)
                            .arg(leaf.offset)
                            .arg(before.path);
                return false;
            }
        }
        return true;
    }

    const DescriptionForm form;
    QString &error;
    ProcessDataDescription description;
    QSet<QString> paths;
};

} // namespace

std::optional<ProcessDataDescription> parseDescription(const QByteArray &json, DescriptionForm form,
                                                       QString &error)
{
    if (json.size() > Keys::maximumTextSize) {
        error = QStringLiteral("%1: %2 bytes of text, at most %3 are taken")
                    .arg(documentPlace)
                    .arg(json.size())
                    .arg(Keys::maximumTextSize);
        return std::nullopt;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("%1: no JSON: %2 at byte %3")
                    .arg(documentPlace, parseError.errorString())
                    .arg(parseError.offset);
        return std::nullopt;
    }
    if (!document.isObject()) {
        error = QStringLiteral("%1: must be a JSON object").arg(documentPlace);
        return std::nullopt;
    }
    return parseDescription(document.object(), form, error);
}

std::optional<ProcessDataDescription> parseDescription(const QJsonObject &document,
                                                       DescriptionForm form, QString &error)
{
    return DescriptionReader(form, error).read(document);
}
