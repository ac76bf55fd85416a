// SPDX-License-Identifier: MIT
// What a description says of one leaf, key by key.
#include "LeafProperties.h"

#include "DescriptionKeys.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QVarLengthArray>

#include <algorithm>

namespace Keys = DescriptionKeys;

namespace {

using Text = QVarLengthArray<char, 512>; // on the stack for usual leaves

void append(Text &rendered, const QByteArray &bytes)
{
    rendered.append(bytes.constData(), bytes.size());
}

void append(Text &rendered, const JsonNode &value)
{
    if (!value.isPlain()) {
        const QByteArray array
            = QJsonDocument(QJsonArray{value.toJsonValue()}).toJson(QJsonDocument::Compact);
        rendered.append(array.constData() + 1, array.size() - 2); // without the array's brackets
        return;
    }
    const int quote = value.kind() == JsonKind::String ? 1 : 0;
    const QLatin1String spelled = value.bytes();
    rendered.append(spelled.data() - quote, spelled.size() + 2 * quote);
}

} // namespace

int LeafProperties::place(const QString &key) const
{
    if (!text) {
        return -1;
    }
    const auto isBefore = [this](quint32 number, const QString &name) {
        return isNameBefore(text->keys.at(int(number)).name, name);
    };
    const auto *const found
        = std::lower_bound(keys().constBegin(), keys().constEnd(), key, isBefore);
    return found != keys().constEnd() && text->keys.at(int(*found)).name == key
        ? int(found - keys().constBegin())
        : -1;
}

JsonNode LeafProperties::at(int place) const
{
    return {*text, text->items.at(int(object.begin) + place)};
}

QVariant LeafProperties::value(const QString &key) const
{
    const int found = place(key);
    if (found < 0) {
        return QVariant();
    }
    const JsonNode value = at(found);
    switch (value.kind()) {
    case JsonKind::Bool:
        return value.isTrue();
    case JsonKind::String:
        return value.toText();
    default:
        return value.toJsonValue().toVariant();
    }
}

QJsonObject LeafProperties::toObject() const
{
    QByteArray spelled("{");
    for (int i = 0; text && i < keys().size(); ++i) {
        const JsonNode value = at(i);
        const char *const quote = value.kind() == JsonKind::String ? "\"" : "";
        spelled += i == 0 ? "" : ",";
        spelled += text->keys.at(int(keys().at(i))).spelled + quote
            + QByteArray(value.bytes().data(), value.bytes().size()) + quote;
    }
    return QJsonDocument::fromJson(spelled + '}').object();
}

void LeafProperties::render(const QByteArray &session, QByteArray &bytes) const
{
    Text rendered;
    const auto begin = [&](quint32 number) {
        rendered.append(rendered.isEmpty() ? '{' : ',');
        append(rendered, text->keys.at(int(number)).spelled);
    };
    const int sessionPlace = text->shapes.at(int(object.size)).sessionPlace;
    const QVector<quint32> &numbers = keys();
    for (int i = 0; i <= numbers.size(); ++i) {
        if (i == sessionPlace) {
            begin(Keys::session.number);
            append(rendered, session);
        }
        const quint32 number = i < numbers.size() ? numbers.at(i) : Keys::session.number;
        if (number != Keys::offset.number && number != Keys::session.number) {
            begin(number);
            append(rendered, at(i));
        }
    }
    rendered.append('}');
    bytes.append(rendered.constData(), rendered.size());
}
