// SPDX-License-Identifier: MIT
// Fuzzes lists of registered providers: the first line is a selector type, the rest the list.
#include "FuzzInput.h"

#include "ProviderTable.h"
#include "SelectorHandlerConvenienceFunctions.h"

#include <QJsonArray>
#include <QJsonDocument>

using Functions = SelectorHandlerConvenienceFunctions;

namespace {

void requireMatches(const QString &list, const QString &type)
{
    const QVector<QJsonObject> modules = Functions::getJsonObjectModuleList(list);
    const auto data = Functions::getModuleDataFromRegisteredProviderList(list, type);
    FUZZ_REQUIRE(data.size() <= modules.size());
    for (const Functions::ModuleData &module : data) {
        FUZZ_REQUIRE(!module.selectorTypeList.isEmpty());
        for (const QString &entry : module.selectorTypeList) {
            FUZZ_REQUIRE(entry.section('/', -1) == type);
        }
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    dropWarnings();
    const QString text = fuzzText(data, size);
    const int end = text.indexOf(QChar('\n'));
    const QString type = text.left(end);
    const QString list = end < 0 ? text : text.mid(end + 1);
    requireMatches(list, type);

    // The same bytes as what a provider registers: the table's list stays one that clients can
    // read.
    ProviderTable table;
    QString error;
    const bool added = table.add(type, list, ":1.1", error) == ProviderTable::Change::Changed;
    FUZZ_REQUIRE(added != !error.isEmpty());
    FUZZ_REQUIRE(table.add("Other", "{}", ":1.2", error) != ProviderTable::Change::None);
    const QString json = table.toJson();
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8());
    FUZZ_REQUIRE(document.array().size() == (added && type != "Other" ? 2 : 1));
    requireMatches(json, type);
    return 0;
}
