// SPDX-License-Identifier: MIT
// What a description says of one leaf, key by key.
#include "LeafProperties.h"

#include "CompactJson.h"
#include "DescriptionKeys.h"
#include "JsonReading.h"

#include <QJsonDocument>
#include <QVarLengthArray>

#include <algorithm>

namespace Keys = DescriptionKeys;

namespace {

// Members as they come. Those that follow one another in the text, too, just as Qt would write them,
// are taken in one piece.
class Rendering
{
public:
    void append(const JsonKeyText &key, const QByteArray &value)
    {
        takePiece();
        begin(key);
        append(value.constData(), value.size());
    }

    void append(const JsonKeyText &key, const JsonNode &value)
    {
        if (!value.isPlain()) {
            append(key, renderedJson(value.toJsonValue()));
            return;
        }
        const int quote = value.kind() == JsonKind::String ? 1 : 0;
        const QLatin1String spelled = value.bytes();
        const char *const first = spelled.data() - quote;
        // Nothing shorter than a comma and the key stands between two members, and when it is not
        // longer, then nothing else does.
        if (pieceEnd == nullptr || first - pieceEnd != 1 + key.spelled.size()) {
            takePiece();
            begin(key);
            pieceBegin = first;
        }
        pieceEnd = spelled.data() + spelled.size() + quote;
    }

    void finish(QByteArray &bytes)
    {
        takePiece();
        rendered.append('}');
        bytes.append(rendered.constData(), rendered.size());
    }

private:
    void begin(const JsonKeyText &key)
    {
        rendered.append(rendered.isEmpty() ? '{' : ',');
        append(key.spelled.constData(), key.spelled.size());
    }

    void takePiece()
    {
        if (pieceEnd != nullptr) {
            append(pieceBegin, int(pieceEnd - pieceBegin));
            pieceEnd = nullptr;
        }
    }

    void append(const char *bytes, int size) { rendered.append(bytes, size); }

    QVarLengthArray<char, 512> rendered; // on the stack for usual leaves
    const char *pieceBegin = nullptr; // of the text, not appended yet
    const char *pieceEnd = nullptr;
};

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
    case JsonKind::Number:
        return numberOf(value);
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
    Rendering rendering;
    const int sessionPlace = text->shapes.at(int(object.size)).sessionPlace;
    const QVector<quint32> &numbers = keys();
    for (int i = 0; i <= numbers.size(); ++i) {
        if (i == sessionPlace) {
            rendering.append(text->keys.at(int(Keys::session.number)), session);
        }
        const quint32 number = i < numbers.size() ? numbers.at(i) : Keys::session.number;
        if (number != Keys::offset.number && number != Keys::session.number) {
            rendering.append(text->keys.at(int(number)), at(i));
        }
    }
    rendering.finish(bytes);
}
