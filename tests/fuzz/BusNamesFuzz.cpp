// SPDX-License-Identifier: MIT
// Fuzzes the escaping of names on the bus and in shared memory: allowed, reversible, distinct.
#include "FuzzInput.h"

#include "BufferName.h"
#include "BusNames.h"

#include <climits>

namespace {

bool isAsciiLetter(QChar c)
{
    return (c >= QChar('a') && c <= QChar('z')) || (c >= QChar('A') && c <= QChar('Z'));
}

bool isDigit(QChar c)
{
    return c >= QChar('0') && c <= QChar('9');
}

bool isElement(const QString &text, bool mayBeginWithDigit)
{
    bool allowed = !text.isEmpty() && (mayBeginWithDigit || !isDigit(text.at(0)));
    for (const QChar c : text) {
        allowed = allowed && (isAsciiLetter(c) || isDigit(c) || c == QChar('_'));
    }
    return allowed;
}

void requireEscape(const QString &text, BusNames::Element element)
{
    const QString escaped = BusNames::escape(text, element);
    FUZZ_REQUIRE(isElement(escaped, element == BusNames::Element::ObjectPath));
    if (text.isValidUtf16()) {
        const auto back = BusNames::unescape(escaped);
        FUZZ_REQUIRE(back && *back == text);
    }
}

void requireBufferName(const QString &first, const QString &second)
{
    const QByteArray prefix = bufferNamePrefix({first, second, first});
    const QByteArray longest = prefix + QByteArray::number(maximumGeneration);
    FUZZ_REQUIRE(longest.size() <= NAME_MAX && !longest.contains('/') && !longest.contains('\0'));
    FUZZ_REQUIRE(generationOfFile(longest, prefix) == maximumGeneration);
    FUZZ_REQUIRE(!sharedMemoryPath('/' + QString::fromUtf8(longest)).isEmpty());
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzText(data, size);
    requireEscape(text, BusNames::Element::ServiceName);
    requireEscape(text, BusNames::Element::ObjectPath);
    const auto original = BusNames::unescape(text);
    if (original) {
        FUZZ_REQUIRE(BusNames::escape(*original, BusNames::Element::ObjectPath) == text
                     || BusNames::escape(*original, BusNames::Element::ServiceName) == text);
    }
    const QString service = BusNames::serviceOfModule(text);
    FUZZ_REQUIRE(service.size() <= 255);
    FUZZ_REQUIRE(isElement(service.mid(int(qstrlen("com.orvalis.ProcessData."))), false));

    // Two names in one input: they share a name only when they are one.
    const int middle = text.indexOf(QChar('\n'));
    const QString first = text.left(middle);
    const QString second = middle < 0 ? QString() : text.mid(middle + 1);
    requireBufferName(first, second);
    if (first.isValidUtf16() && second.isValidUtf16() && first != second) {
        FUZZ_REQUIRE(BusNames::pathOfObject(first) != BusNames::pathOfObject(second));
        FUZZ_REQUIRE(BusNames::serviceOfModule(first) != BusNames::serviceOfModule(second));
        FUZZ_REQUIRE(bufferNamePrefix({first, second, second})
                     != bufferNamePrefix({second, first, second}));
    }
    sharedMemoryPath(text);
    return 0;
}
