// SPDX-License-Identifier: MIT
// What fuzz targets share: bytes as text, silent warnings, and a check that ends the process.
#ifndef FUZZINPUT_H
#define FUZZINPUT_H

#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What every target implements: one run on one input. Called by libFuzzer or by the replay.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/// Ends the process when a promise is broken, in every build type.
#define FUZZ_REQUIRE(condition)                                                                    \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: broken: %s\n", __FILE__, __LINE__, #condition);           \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

/// The input as text: UTF-8, or UTF-16 as it is (also with lone surrogates) after the bytes FF FE.
inline QString fuzzText(const uint8_t *data, size_t size)
{
    if (size >= 2 && data[0] == 0xff && data[1] == 0xfe) {
        QString text(int((size - 2) / 2), Qt::Uninitialized);
        for (int i = 0; i < text.size(); ++i) {
            text[i] = QChar(data[2 + 2 * i], data[3 + 2 * i]);
        }
        return text;
    }
    return QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
}

/// Warnings are composed, which reads what they name, and then dropped.
inline void dropWarnings()
{
    [[maybe_unused]] static const auto previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}

#endif
