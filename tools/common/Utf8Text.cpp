// SPDX-License-Identifier: MIT
// Reads UTF-8 without losing or replacing anything.
#include "Utf8Text.h"

#include <QTextCodec>

namespace {

constexpr int mibOfUtf8 = 106;

} // namespace

std::optional<QString> textFromUtf8(const QByteArray &bytes)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text
        = QTextCodec::codecForMib(mibOfUtf8)->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) {
        return std::nullopt;
    }
    return text;
}

std::optional<QString> fileTextFromUtf8(const QByteArray &bytes, QString &error)
{
    static const QByteArray mark("\xef\xbb\xbf");
    const QByteArray content = bytes.startsWith(mark) ? bytes.mid(mark.size()) : bytes;
    auto text = textFromUtf8(content);
    if (text) {
        return text;
    }
    int number = 1;
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray &line : lines) {
        if (!textFromUtf8(line)) {
            break;
        }
        ++number;
    }
    error = QStringLiteral("line %1 is not UTF-8 text; convert the file").arg(number);
    return std::nullopt;
}
