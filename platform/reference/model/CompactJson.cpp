// SPDX-License-Identifier: MIT
// Writes JSON objects as compact text.
#include "CompactJson.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <charconv>
#include <cmath>

namespace {

constexpr double highestExactWhole = 9007199254740992.0; // 2^53

// Ascii that is not escaped.
bool isPlain(QChar c)
{
    return c.unicode() >= 0x20 && c.unicode() < 0x80 && c != QLatin1Char('"')
        && c != QLatin1Char('\\');
}

} // namespace

void CompactJsonObjectWriter::write(const QString &key, const QJsonValue &value)
{
    text.append(text.isEmpty() ? '{' : ',');
    writeText(key);
    text.append(':');
    writeValue(value);
}

void CompactJsonObjectWriter::appendTo(QByteArray &bytes)
{
    if (text.isEmpty()) {
        text.append('{');
    }
    text.append('}');
    bytes.append(text.constData(), text.size());
}

void CompactJsonObjectWriter::writeValue(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String:
        writeText(value.toString());
        break;
    case QJsonValue::Double:
        writeNumber(value);
        break;
    case QJsonValue::Bool: {
        const QLatin1String word(value.toBool() ? "true" : "false");
        text.append(word.data(), word.size());
        break;
    }
    default:
        writeByQt(value);
    }
}

void CompactJsonObjectWriter::writeText(const QString &content)
{
    constexpr int quotes = 2;
    const int begin = text.size();
    text.resize(begin + content.size() + quotes);
    char *byte = text.data() + begin;
    *byte++ = '"';
    for (const QChar c : content) {
        if (!isPlain(c)) {
            text.resize(begin);
            writeByQt(content);
            return;
        }
        *byte++ = char(c.unicode());
    }
    *byte = '"';
}

void CompactJsonObjectWriter::writeNumber(const QJsonValue &value)
{
    const double number = value.toDouble();
    if (std::abs(number) >= highestExactWhole || std::trunc(number) != number) {
        writeByQt(value);
        return;
    }
    constexpr int mostDigits = 20;
    char digits[mostDigits];
    const auto result = std::to_chars(digits, digits + mostDigits, qint64(number));
    text.append(digits, int(result.ptr - digits));
}

void CompactJsonObjectWriter::writeByQt(const QJsonValue &value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    text.append(array.constData() + 1, array.size() - 2); // without the array's brackets
}
