// SPDX-License-Identifier: MIT
// Splits a selector URL into its decoded parts.
#include "SelectorUrlParser.h"

#include <QByteArray>
#include <QStringRef>
#include <QTextCodec>
#include <QVarLengthArray>

#include <algorithm>

namespace {

bool isScheme(const QStringRef &text)
{
    const auto isAsciiLetter = [](QChar c) {
        return (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
            || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
    };
    const auto isSchemeCharacter = [&isAsciiLetter](QChar c) {
        return isAsciiLetter(c) || (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            || c == QLatin1Char('+') || c == QLatin1Char('-') || c == QLatin1Char('.');
    };
    return !text.isEmpty() && isAsciiLetter(text.at(0))
        && std::all_of(text.begin(), text.end(), isSchemeCharacter);
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool decodePercent(const QByteArray &encoded, QByteArray &decoded)
{
    decoded.reserve(encoded.size());
    for (int i = 0; i < encoded.size(); ++i) {
        if (encoded.at(i) != '%') {
            decoded.append(encoded.at(i));
            continue;
        }
        const int high = i + 2 < encoded.size() ? hexDigit(encoded.at(i + 1)) : -1;
        const int low = i + 2 < encoded.size() ? hexDigit(encoded.at(i + 2)) : -1;
        if (high < 0 || low < 0) {
            return false;
        }
        decoded.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return true;
}

bool decodePart(const QStringRef &part, QString &decoded)
{
    if (!part.contains(QLatin1Char('%'))) {
        if (hasControlCharacter(part)) {
            return false;
        }
        decoded = part.toString();
        return true;
    }
    QByteArray bytes;
    if (!decodePercent(part.toUtf8(), bytes)) {
        return false;
    }
    static QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    decoded = utf8->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 && !hasControlCharacter(decoded);
}

// Most URLs of a list name the source of the one before: its names are stored once, which takes half
// the time and memory of a parsed URL.
struct NamesOfLastUrl
{
    QString scheme;
    SourceName source;
};

NamesOfLastUrl &namesOfLastUrl()
{
    static thread_local NamesOfLastUrl names;
    return names;
}

bool decodeName(const QStringRef &part, QString &last)
{
    if (!part.isEmpty() && part == last && !part.contains(QLatin1Char('%'))) {
        return true;
    }
    QString decoded;
    if (!decodePart(part, decoded)) {
        return false;
    }
    last = decoded;
    return true;
}

QString undecodable(const QStringRef &part)
{
    return QStringLiteral("\"%1\" holds a control character or is not percent-encoded UTF-8")
        .arg(part.toString());
}

using Segments = QVarLengthArray<QStringRef, 16>; // on the stack for all but very deep leaves

Segments split(const QStringRef &text)
{
    Segments segments;
    int begin = 0;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('/')) {
            segments.append(text.mid(begin, i - begin));
            begin = i + 1;
        }
    }
    segments.append(text.mid(begin));
    return segments;
}

QString decodePath(const Segments &segments, int first, QString &path)
{
    bool addressable = true;
    for (int i = first; i < segments.size(); ++i) {
        QString name;
        if (segments.at(i).isEmpty()) {
            return QStringLiteral("a group or the leaf has no name (\"//\" or \"/\" at the end)");
        }
        if (!decodePart(segments.at(i), name)) {
            return undecodable(segments.at(i));
        }
        addressable = addressable && !name.contains(QLatin1Char('/'));
        if (i > first) {
            path += QLatin1Char('/') + name;
        } else {
            path = name;
        }
    }
    if (!addressable) {
        path = QString();
    }
    return QString();
}

QString checkName(const char *what, const QString &name)
{
    if (isPartOfKey(name)) {
        return QString();
    }
    return name.isEmpty()
        ? QStringLiteral("the %1 is empty").arg(QLatin1String(what))
        : QStringLiteral("the %1 \"%2\" contains \"_\"").arg(QLatin1String(what), name);
}

QString parseParts(const QStringRef &text, SelectorUrlParts &parts)
{
    const QLatin1String separator("://");
    const int schemeEnd = text.indexOf(separator);
    if (schemeEnd < 0 || !isScheme(text.left(schemeEnd))) {
        return QStringLiteral("it does not begin with a scheme and \"://\"");
    }
    NamesOfLastUrl &last = namesOfLastUrl();
    if (text.left(schemeEnd) != last.scheme) {
        last.scheme = text.left(schemeEnd).toString();
    }
    parts.scheme = last.scheme;
    const Segments segments = split(text.mid(schemeEnd + separator.size()));
    constexpr int firstOfPath = 3;
    if (segments.size() <= firstOfPath) {
        return QStringLiteral("it has %1 of at least 4 parts (MODULE/OBJECT/INSTANCE/LEAF)")
            .arg(segments.size());
    }
    QString *const names[] = {&last.source.module, &last.source.object, &last.source.instance};
    for (int i = 0; i < firstOfPath; ++i) {
        if (!decodeName(segments.at(i), *names[i])) {
            return undecodable(segments.at(i));
        }
    }
    parts.source = last.source;
    QString problem = decodePath(segments, firstOfPath, parts.path);
    if (!problem.isEmpty()) {
        return problem;
    }
    problem = checkName("module", parts.source.module);
    if (problem.isEmpty()) {
        problem = checkName("object", parts.source.object);
    }
    parts.sourceNameRefused = !problem.isEmpty();
    return problem;
}

// What holds for the text as a whole.
QString checkText(const QString &text)
{
    if (text.contains(QLatin1Char('#'))) {
        return QStringLiteral("it has a fragment (\"#\")");
    }
    if (!text.isValidUtf16()) {
        return QStringLiteral("it is not valid Unicode");
    }
    if (text.size() <= selectorUrlSurelyShortEnough) {
        return QString();
    }
    const int size = text.toUtf8().size();
    return size > selectorUrlMaximumLength
        ? QStringLiteral("it has %1 bytes, more than %2").arg(size).arg(selectorUrlMaximumLength)
        : QString();
}

} // namespace

SelectorUrlParts parseSelectorUrl(const QString &text)
{
    const int query = text.indexOf(QLatin1Char('?'));
    const bool deactivated = query >= 0 && text.midRef(query) == QLatin1String("?deactivated");

    SelectorUrlParts parts;
    QString problem = query < 0 || deactivated
        ? checkText(text)
        : QStringLiteral("it has a query other than \"?deactivated\"");
    if (problem.isEmpty()) {
        problem = parseParts(text.leftRef(query), parts);
    }
    parts.valid = problem.isEmpty();
    if (!parts.valid) {
        const bool sourceNameRefused = parts.sourceNameRefused;
        parts = SelectorUrlParts();
        parts.problem = problem;
        parts.sourceNameRefused = sourceNameRefused;
    }
    parts.deactivated = deactivated;
    return parts;
}
