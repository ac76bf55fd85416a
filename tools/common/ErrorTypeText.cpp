// SPDX-License-Identifier: MIT
// The table of error types.
#include "ErrorTypeText.h"

#include <iterator>

namespace {

struct Texts
{
    const char *name;
    const char *explanation;
};

// In the order of ErrorType.
constexpr Texts known[]{
    {"NoError", ""},
    {"NotInitialized", "never published so far"},
    {"SourceLost", "the publisher is gone, this is its last value"},
    {"NoValue", "no value was obtained"},
    {"DeviceFault", "the publisher reports a fault of the device"},
    {"OutOfRange", "the publisher reports a value outside the device's range"},
};

const Texts *textsOf(ProcessDataAccess::ErrorType errorType)
{
    const auto index = size_t(errorType);
    return index < std::size(known) ? &known[index] : nullptr;
}

} // namespace

QString errorTypeName(ProcessDataAccess::ErrorType errorType)
{
    const Texts *texts = textsOf(errorType);
    return texts != nullptr ? QString::fromLatin1(texts->name)
                            : QStringLiteral("ErrorType%1").arg(int(errorType));
}

QString explainErrorType(ProcessDataAccess::ErrorType errorType)
{
    const Texts *texts = textsOf(errorType);
    return texts != nullptr ? QString::fromLatin1(texts->explanation)
                            : QStringLiteral("an error type that this tool does not know");
}
