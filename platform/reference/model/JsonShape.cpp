// SPDX-License-Identifier: MIT
// The keys of a JSON object, kept once for all objects that have the same ones.
#include "JsonShape.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

QVector<JsonKeyText> knownTexts()
{
    QVector<JsonKeyText> texts;
    for (const JsonKey &key : DescriptionKeys::all) {
        texts.append({key.name, '"' + QByteArray(key.name.data(), key.name.size()) + "\":"});
    }
    return texts;
}

QHash<QLatin1String, quint32> knownNumbers()
{
    QHash<QLatin1String, quint32> numbers;
    for (const JsonKey &key : DescriptionKeys::all) {
        numbers.insert(key.name, key.number);
    }
    return numbers;
}

} // namespace

bool isNameBefore(const QString &left, const QString &right)
{
    constexpr ushort firstSurrogate = 0xd800;
    const auto differing = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    if (differing.first == left.end() || differing.second == right.end()) {
        return differing.second != right.end();
    }
    const ushort one = differing.first->unicode();
    const ushort other = differing.second->unicode();
    return one < firstSurrogate || other < firstSurrogate ? one < other
                                                          : left.toUcs4() < right.toUcs4();
}

JsonKeyNumbers::JsonKeyNumbers()
{
    // Never destroyed: bus threads read descriptions to the last.
    static const auto &texts = *new QVector<JsonKeyText>(knownTexts());
    static const auto &known = *new QHash<QLatin1String, quint32>(knownNumbers());
    all = texts;
    numbers = known;
}

std::optional<quint32> JsonKeyNumbers::numberOf(QLatin1String spelled, bool isPlain)
{
    const auto found = numbers.constFind(spelled);
    if (found != numbers.constEnd()) {
        return *found;
    }
    const QByteArray quoted = '"' + QByteArray(spelled.data(), spelled.size()) + '"';
    QString name;
    if (isPlain) {
        name = QString::fromUtf8(spelled.data(), spelled.size());
    } else {
        const QJsonArray decoded = QJsonDocument::fromJson('[' + quoted + ']').array();
        if (QJsonDocument(decoded).toJson(QJsonDocument::Compact) != '[' + quoted + ']') {
            return std::nullopt;
        }
        name = decoded.first().toString();
    }
    const auto number = quint32(all.size());
    all.append({name, quoted + ':'});
    numbers.insert(spelled, number);
    return number;
}

std::optional<quint32> JsonShapeNumbers::numberOf(const quint32 *keys, int count,
                                                  const QVector<JsonKeyText> &texts)
{
    JsonShape shape;
    shape.keys.resize(count);
    std::copy_n(keys, count, shape.keys.begin());
    const auto found = numbers.constFind(shape.keys);
    if (found != numbers.constEnd()) {
        return *found;
    }
    const auto isBefore = [&texts](quint32 left, quint32 right) {
        return isNameBefore(texts.at(int(left)).name, texts.at(int(right)).name);
    };
    shape.sorted = shape.keys;
    std::sort(shape.sorted.begin(), shape.sorted.end(), isBefore);
    if (std::adjacent_find(shape.sorted.begin(), shape.sorted.end()) != shape.sorted.end()) {
        return std::nullopt;
    }
    shape.places.reserve(count);
    for (const quint32 key : qAsConst(shape.keys)) {
        const auto *const place
            = std::lower_bound(shape.sorted.constBegin(), shape.sorted.constEnd(), key, isBefore);
        shape.places.append(quint32(place - shape.sorted.constBegin()));
    }
    shape.placesOfKnown.fill(-1);
    for (int place = 0; place < count; ++place) {
        const quint32 key = shape.sorted.at(place);
        if (key < shape.placesOfKnown.size()) {
            shape.placesOfKnown[key] = place;
        }
    }
    const auto *const session = std::lower_bound(shape.sorted.constBegin(), shape.sorted.constEnd(),
                                                 DescriptionKeys::session.number, isBefore);
    shape.sessionPlace = int(session - shape.sorted.constBegin());
    const auto number = quint32(all.size());
    numbers.insert(shape.keys, number);
    all.append(shape);
    return number;
}
