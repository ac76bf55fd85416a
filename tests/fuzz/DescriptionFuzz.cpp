// SPDX-License-Identifier: MIT
// Fuzzes process-data descriptions, and uses the tree of those that are accepted.
#include "FuzzInput.h"

#include "ConfigurationAndProcessDataBase.h"
#include "ConfigurationAndProcessDataParser.h"
#include "ProcessDataDescription.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "ProcessValue.h"
#include "QtJsonOracle.h"
#include "SelectorUrlBuilder.h"
#include "SelectorUrlParser.h"
#include "SlotLayout.h"

namespace {

void requirePlaces(const ProcessDataDescription &description)
{
    for (const LeafDescription &leaf : description.leaves) {
        const quint64 size = slotSize(leaf.type, leaf.capacity);
        FUZZ_REQUIRE(leaf.offset >= slotLayoutHeaderSize && leaf.offset % slotAlignment == 0);
        FUZZ_REQUIRE(size <= description.buffer->size
                     && leaf.offset <= description.buffer->size - size);
    }
}

void useTree(const QByteArray &text, const ProcessDataDescription &description)
{
    ProcessDataManager manager;
    const auto root
        = manager.createProcessDataFromJson(text, "pdd", ProcessDataManager::InitTypeNone);
    FUZZ_REQUIRE(!root.isNull() && !manager.isBufferValid());
    for (const LeafDescription &described : description.leaves) {
        const QString url = selectorUrl(description.source.module, description.source.object,
                                        description.source.instance, described.path);
        const auto leaf = root->getLeafProcessDataValue(url);
        FUZZ_REQUIRE(!leaf.isNull() || url.toUtf8().size() > selectorUrlMaximumLength);
        if (leaf.isNull()) {
            continue;
        }
        ProcessValue value(ProcessDataDefinitions::NoValue);
        FUZZ_REQUIRE(!leaf->getValue(value, false) && !leaf->setValue(value));
        FUZZ_REQUIRE(leaf->hasLeafProperty("name"));
        leaf->readLeafProperty("minimum");
        QByteArray rendered;
        FUZZ_REQUIRE(ConfigurationAndProcessDataParser().frameToByteArray(leaf, rendered,
                                                                          QJsonDocument::Compact));
        FUZZ_REQUIRE(QJsonDocument::fromJson(rendered).isObject());
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    dropWarnings();
    const QByteArray text(reinterpret_cast<const char *>(data), int(size));
    FUZZ_REQUIRE(QtJsonOracle::difference(text, DescriptionForm::Published).isEmpty());
    FUZZ_REQUIRE(QtJsonOracle::difference(text, DescriptionForm::Template).isEmpty());
    QString error;
    const auto published = parseDescription(text, DescriptionForm::Published, error);
    FUZZ_REQUIRE(published.has_value() == error.isEmpty());
    if (published) {
        requirePlaces(*published);
        useTree(text, *published);
    }
    error.clear();
    const auto asTemplate = parseDescription(text, DescriptionForm::Template, error);
    FUZZ_REQUIRE(asTemplate.has_value() == error.isEmpty());
    FUZZ_REQUIRE(!asTemplate || !published); // one says where values stand, the other must not
    return 0;
}
