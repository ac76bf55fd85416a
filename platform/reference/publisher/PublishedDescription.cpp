// SPDX-License-Identifier: MIT
// A publisher's description: as its owner gave it, as it is parsed, and as clients fetch it.
#include "PublishedDescription.h"

#include <QJsonArray>
#include <QJsonValue>

namespace {

const QLatin1String elementsKey("elements");

// A name that a document carries must be the publisher's own; one that it lacks is added.
bool setName(QJsonObject &document, QLatin1String key, const QString &name, QString &error)
{
    const QJsonValue present = document.value(key);
    if (!present.isUndefined() && (!present.isString() || present.toString() != name)) {
        error = QStringLiteral("its \"%1\" must be \"%2\"").arg(QString(key), name);
        return false;
    }
    document.insert(key, name);
    return true;
}

bool isPartOfUrl(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('_'));
}

bool checkSource(const PublishedSource &source, QString &error)
{
    if (!isPartOfUrl(source.module)) {
        error = QStringLiteral("a module's name must not be empty nor contain \"_\"");
        return false;
    }
    if (!isPartOfUrl(source.object)) {
        error = QStringLiteral("an object's name must not be empty nor contain \"_\"");
        return false;
    }
    for (const QString &name : {source.module, source.object, source.instance}) {
        for (const QChar character : name) {
            if (character.category() == QChar::Other_Control) {
                error = QStringLiteral("its names must not contain control characters");
                return false;
            }
        }
    }
    return true;
}

// Leaves come in the order in which the parser met them.
QJsonArray withOffsets(const QJsonArray &elements, const QVector<LeafDescription> &leaves,
                       int &next)
{
    QJsonArray result;
    for (const QJsonValue &value : elements) {
        QJsonObject element = value.toObject();
        if (element.contains(elementsKey)) {
            element.insert(elementsKey,
                           withOffsets(element.value(elementsKey).toArray(), leaves, next));
        } else {
            element.insert(QLatin1String("offset"), static_cast<double>(leaves.at(next).offset));
            ++next;
        }
        result += element;
    }
    return result;
}
}

QString PublishedSource::label() const
{
    return QStringLiteral("Module \"%1\", object \"%2\", instance \"%3\"")
        .arg(module, object, instance);
}

std::optional<PublishedDescription>
PublishedDescription::fromTemplate(const PublishedSource &source, const QJsonObject &document,
                                   QString &error)
{
    PublishedDescription result;
    result.document = document;
    QString reason;
    bool good = checkSource(source, reason)
        && setName(result.document, QLatin1String("module"), source.module, reason)
        && setName(result.document, QLatin1String("object"), source.object, reason)
        && setName(result.document, QLatin1String("instance"), source.instance, reason);
    if (good) {
        const auto parsed = parseDescription(result.document, DescriptionForm::Template, reason);
        good = parsed.has_value();
        if (good) {
            result.description = *parsed;
        }
    }
    if (!good) {
        error = QStringLiteral("%1: %2").arg(source.label(), reason);
        return std::nullopt;
    }
    result.indices.reserve(result.description.leaves.size());
    for (int i = 0; i < result.description.leaves.size(); ++i) {
        result.indices.insert(result.description.leaves.at(i).path, i);
    }
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
        difference = QStringLiteral("%1 leaves instead of %2").arg(mine.size()).arg(theirs.size());
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

QJsonObject PublishedDescription::served() const
{
    QJsonObject result = document;
    result.insert(QLatin1String("format"), QStringLiteral("process-data-description/1"));
    result.insert(QLatin1String("session"), static_cast<double>(description.session));
    if (description.buffer.has_value()) {
        const BufferDescription &buffer = *description.buffer;
        result.insert(
            QLatin1String("buffer"),
            QJsonObject{{QStringLiteral("name"), buffer.name},
                        {QStringLiteral("generation"), static_cast<double>(buffer.generation)},
                        {QStringLiteral("size"), static_cast<double>(buffer.size)},
                        {QStringLiteral("ownerUid"), static_cast<double>(buffer.ownerUid)}});
    }
    int next = 0;
    result.insert(elementsKey,
                  withOffsets(document.value(elementsKey).toArray(), description.leaves, next));
    return result;
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
