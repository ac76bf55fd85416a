// SPDX-License-Identifier: MIT
// Puts long whole numbers into quotes before they are read.
#include "ExactJson.h"

#include <QJsonDocument>

#include <cstring>

namespace {

constexpr int digitsThatMayBeTooMany = 16;

bool isWideWholeNumber(const QByteArray &token)
{
    const QByteArray digits = token.startsWith('-') ? token.mid(1) : token;
    return digits.size() >= digitsThatMayBeTooMany
        && std::strspn(digits.constData(), "0123456789") == size_t(digits.size())
        && (digits.size() > digitsThatMayBeTooMany || digits > QByteArray("9007199254740991"));
}

int endOfText(const QByteArray &json, int begin)
{
    int at = begin + 1;
    while (at < json.size() && json.at(at) != '"') {
        at += json.at(at) == '\\' ? 2 : 1;
    }
    return qMin(at + 1, json.size());
}

int endOfNumber(const QByteArray &json, int begin)
{
    int at = begin;
    while (at < json.size() && json.at(at) != '\0'
           && std::strchr("0123456789+-.eE", json.at(at)) != nullptr) {
        ++at;
    }
    return at;
}

// Names and texts of descriptions do not begin with a control character.
QByteArray mark()
{
    return QByteArrayLiteral("\\u0001");
}

QJsonObject readQuoted(const QByteArray &json, const QByteArray &beforeDigits)
{
    QByteArray quoted;
    quoted.reserve(json.size());
    int at = 0;
    while (at < json.size()) {
        int end = at + 1;
        if (json.at(at) == '"') {
            end = endOfText(json, at);
        } else if (json.at(at) == '-' || (json.at(at) >= '0' && json.at(at) <= '9')) {
            end = endOfNumber(json, at);
        }
        const QByteArray token = json.mid(at, end - at);
        quoted += isWideWholeNumber(token) ? '"' + beforeDigits + token + '"' : token;
        at = end;
    }
    return QJsonDocument::fromJson(quoted).object();
}

} // namespace

QJsonObject exactObject(const QByteArray &json)
{
    return readQuoted(json, QByteArray());
}

QJsonObject rewritableObject(const QByteArray &json)
{
    return readQuoted(json, mark());
}

QByteArray exactText(const QJsonObject &object)
{
    const QByteArray marked = QJsonDocument(object).toJson();
    QByteArray text;
    text.reserve(marked.size());
    int at = 0;
    while (at < marked.size()) {
        const int end = marked.at(at) == '"' ? endOfText(marked, at) : at + 1;
        const QByteArray token = marked.mid(at, end - at);
        const QByteArray digits = token.mid(1 + mark().size(), token.size() - mark().size() - 2);
        text += token.startsWith('"' + mark()) && isWideWholeNumber(digits) ? digits : token;
        at = end;
    }
    return text;
}
