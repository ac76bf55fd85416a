// SPDX-License-Identifier: MIT
// Collects selectors from arguments and files.
#include "SelectorList.h"

#include "EscapedText.h"
#include "InputFile.h"

namespace {

bool readSelectorFile(const QString &name, const CommandLine &line, bool withValues,
                      QVector<ListLine> &selectors, QString &error)
{
    QString text;
    if (!readTextFile(name, text, error)) {
        return false;
    }
    QTextStream stream(&text);
    QVector<ListLine> lines;
    QString problem;
    if (!readListLines(stream, line.has("escapes") ? Escapes::All : Escapes::Marked, lines, problem)
        || (withValues && !haveValues(lines, problem))) {
        error = QStringLiteral("%1: %2").arg(
            isStandardInput(name) ? QStringLiteral("standard input") : name, problem);
        return false;
    }
    selectors += lines;
    return true;
}

bool readEscapes(QVector<ListLine> &selectors, QString &error)
{
    for (ListLine &selector : selectors) {
        QString problem;
        if (!textFromEscapes(selector.value, selector.value, problem)) {
            error = QStringLiteral("The value \"%1\" of %2 %3.")
                        .arg(selector.value, selector.url, problem);
            return false;
        }
    }
    return true;
}

// SELECTOR VALUE or SELECTOR=VALUE, one after the other.
bool takePairs(const QStringList &arguments, QVector<ListLine> &selectors, QString &error)
{
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &typed = arguments.at(i);
        const int value = valueIn(typed);
        if (value >= 0) {
            selectors.append(listLine(0, typed.left(value - 1), typed.mid(value)));
        } else if (i + 1 < arguments.size()) {
            selectors.append(listLine(0, typed, arguments.at(++i)));
        } else {
            error = QStringLiteral("No value for %1.").arg(typed);
            return false;
        }
    }
    return true;
}

} // namespace

int valueIn(const QString &argument)
{
    const int slash = argument.indexOf(QLatin1Char('/'));
    const int equals = slash < 0 ? -1 : argument.indexOf(QLatin1Char('='), slash);
    return equals < 0 ? -1 : equals + 1;
}

bool collectSelectors(const CommandLine &line, LineForm form, QVector<ListLine> &selectors,
                      QString &error)
{
    const bool withValues = form == LineForm::UrlAndValue;
    if (withValues && !takePairs(line.arguments, selectors, error)) {
        return false;
    }
    for (int i = 0; i < line.arguments.size() && !withValues; ++i) {
        selectors.append(listLine(0, line.arguments.at(i)));
    }
    if (line.has("escapes") && !readEscapes(selectors, error)) {
        return false;
    }
    const QStringList files = line.texts("file");
    for (const QString &file : files) {
        if (!readSelectorFile(file, line, withValues, selectors, error)) {
            return false;
        }
    }
    if (selectors.isEmpty()) {
        error = QStringLiteral("No selector given.");
        return false;
    }
    return true;
}
