// SPDX-License-Identifier: MIT
// Reads lists of selectors.
#include "SelectorList.h"

#include "EscapedText.h"
#include "InputFile.h"

#include <QRegularExpression>

bool readSelectorLines(QTextStream &stream, bool withValues, QVector<SelectorInput> &selectors,
                       QString &error)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    int number = 0;
    while (!stream.atEnd()) {
        const QString line = withoutBlanks(stream.readLine());
        ++number;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        if (!withValues) {
            selectors.append({line, QString()});
            continue;
        }
        const QRegularExpressionMatch gap = blanks.match(line);
        if (!gap.hasMatch()) {
            error = QStringLiteral("line %1: no value for %2").arg(number).arg(line);
            return false;
        }
        selectors.append({line.left(gap.capturedStart()), line.mid(gap.capturedEnd())});
    }
    return true;
}

namespace {

bool readSelectorFile(const QString &name, bool withValues, QVector<SelectorInput> &selectors,
                      QString &error)
{
    QString text;
    if (!readTextFile(name, text, error)) {
        return false;
    }
    QTextStream stream(&text);
    QString problem;
    if (!readSelectorLines(stream, withValues, selectors, problem)) {
        error = QStringLiteral("%1: %2").arg(
            isStandardInput(name) ? QStringLiteral("standard input") : name, problem);
        return false;
    }
    return true;
}

bool readEscapes(QVector<SelectorInput> &selectors, QString &error)
{
    for (SelectorInput &selector : selectors) {
        QString problem;
        if (!textFromEscapes(selector.value, selector.value, problem)) {
            error = QStringLiteral("The value \"%1\" of %2 %3.")
                        .arg(selector.value, selector.url, problem);
            return false;
        }
    }
    return true;
}

} // namespace

bool collectSelectors(const CommandLine &line, bool withValues, QVector<SelectorInput> &selectors,
                      QString &error)
{
    const int step = withValues ? 2 : 1;
    if (line.arguments.size() % step != 0) {
        error = QStringLiteral("No value for %1.").arg(line.arguments.constLast());
        return false;
    }
    for (int i = 0; i < line.arguments.size(); i += step) {
        selectors.append({line.arguments.at(i), withValues ? line.arguments.at(i + 1) : QString()});
    }
    if (line.has("file") && !readSelectorFile(line.text("file"), withValues, selectors, error)) {
        return false;
    }
    if (line.has("escapes") && !readEscapes(selectors, error)) {
        return false;
    }
    if (selectors.isEmpty()) {
        error = QStringLiteral("No selector given.");
        return false;
    }
    return true;
}

QVector<QString> urlsOf(const QVector<SelectorInput> &selectors)
{
    QVector<QString> urls;
    urls.reserve(selectors.size());
    for (const SelectorInput &selector : selectors) {
        urls.append(selector.url);
    }
    return urls;
}
