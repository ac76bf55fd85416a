// SPDX-License-Identifier: MIT
// Fuzzes the parser of selector URLs, and sees that the parts of a valid URL make it again.
#include "FuzzInput.h"

#include "SelectorUrlBuilder.h"
#include "SelectorUrlHandler.h"
#include "SelectorUrlParser.h"

namespace {

bool isName(const QString &name)
{
    return !name.isEmpty() && !name.contains('_');
}

void requireSameParts(const SelectorUrlParts &parts)
{
    const QString again
        = selectorUrl(parts.source.module, parts.source.object, parts.source.instance, parts.path);
    if (again.toUtf8().size() > selectorUrlMaximumLength) {
        return; // encoding makes it longer
    }
    const SelectorUrlParts second = parseSelectorUrl(again);
    FUZZ_REQUIRE(second.valid && !second.deactivated);
    FUZZ_REQUIRE(second.source == parts.source);
    FUZZ_REQUIRE(second.path == parts.path);
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzText(data, size);
    const SelectorUrlHandler handler(text);
    FUZZ_REQUIRE(handler.getUrl() == text);
    const SelectorUrlParts parts = parseSelectorUrl(text);
    FUZZ_REQUIRE(handler.isValid() == parts.valid);
    FUZZ_REQUIRE(handler.isSelectorDeactivated() == parts.deactivated);
    if (!parts.valid) {
        FUZZ_REQUIRE(handler.getModuleName().isEmpty() && handler.getObjectName().isEmpty());
        return 0;
    }
    FUZZ_REQUIRE(text.toUtf8().size() <= selectorUrlMaximumLength);
    FUZZ_REQUIRE(isName(handler.getModuleName()) && isName(handler.getObjectName()));
    if (!parts.path.isNull()) {
        requireSameParts(parts);
    }
    return 0;
}
