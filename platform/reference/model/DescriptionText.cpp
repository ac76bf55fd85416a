// SPDX-License-Identifier: MIT
// Gets at the values in a description's text.
#include "DescriptionText.h"

#include "CompactJson.h"
#include "DescriptionKeys.h"
#include "JsonScanner.h"

#include <QJsonDocument>

#include <optional>

namespace Keys = DescriptionKeys;

namespace {

const QLatin1String place("description");

QString tooLong(int size)
{
    return QStringLiteral("%1: %2 bytes of text, at most %3 are taken")
        .arg(place)
        .arg(size)
        .arg(Keys::maximumTextSize);
}

std::optional<QJsonObject> readByQt(const QByteArray &json, QString &error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("%1: no JSON: %2 at byte %3")
                    .arg(place, parseError.errorString())
                    .arg(parseError.offset);
        return std::nullopt;
    }
    if (!document.isObject()) {
        error = QStringLiteral("%1: must be a JSON object").arg(place);
        return std::nullopt;
    }
    return document.object();
}

} // namespace

// What the scanner does not take, Qt's reader refuses with a reason, or it is written anew.
JsonTextPointer scanDescription(const QByteArray &json, QString &error)
{
    if (json.size() > Keys::maximumTextSize) {
        error = tooLong(json.size());
        return {};
    }
    if (const JsonTextPointer text = JsonScanner::scan(json)) {
        return text;
    }
    const auto document = readByQt(json, error);
    return document ? scanDescription(*document, error) : JsonTextPointer();
}

// Spelled in the usual way there is nothing that the scanner does not take; but Qt's reader drops
// byte-order marks, and then two keys may have become one.
JsonTextPointer scanDescription(const QJsonObject &document, QString &error)
{
    const QByteArray json = compactJson(document);
    JsonTextPointer text = JsonScanner::scan(json);
    if (text) {
        return text;
    }
    const auto again = readByQt(json, error);
    if (again) {
        text = JsonScanner::scan(compactJson(*again));
        error = text ? error : tooLong(json.size());
    }
    return text;
}
