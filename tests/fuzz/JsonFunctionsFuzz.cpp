// SPDX-License-Identifier: MIT
// Fuzzes the free JSON functions: the first line is a key, the rest JSON text.
#include "FuzzInput.h"

#include "JsonFunctions.h"

#include <QJsonDocument>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzText(data, size);
    const int end = text.indexOf(QChar('\n'));
    const QString key = text.left(end);
    const QString json = end < 0 ? text : text.mid(end + 1);

    const QJsonArray elements = createJsonArrayFromJsonString(json);
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8());
    FUZZ_REQUIRE(elements == document.array());
    const QJsonObject object
        = document.isObject() ? document.object() : elements.first().toObject();

    QJsonValue value;
    const bool found = readJsonValue(key, object, value);
    FUZZ_REQUIRE(found == object.contains(key));
    FUZZ_REQUIRE(!found || value == object.value(key));

    QJsonArray array;
    const bool holdsArray = readJsonArrayFromJson(key, object, array);
    if (!key.contains('/')) {
        FUZZ_REQUIRE(holdsArray == object.value(key).isArray());
    }
    FUZZ_REQUIRE(!holdsArray || !object.isEmpty());
    return 0;
}
