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

} // namespace

bool collectSelectors(const CommandLine &line, LineForm form, QVector<ListLine> &selectors,
                      QString &error)
{
    const bool withValues = form == LineForm::UrlAndValue;
    const int step = withValues ? 2 : 1;
    if (line.arguments.size() % step != 0) {
        error = QStringLiteral("No value for %1.").arg(line.arguments.constLast());
        return false;
    }
    for (int i = 0; i < line.arguments.size(); i += step) {
        const QString &typed = line.arguments.at(i);
        selectors.append(withValues ? listLine(0, typed, line.arguments.at(i + 1))
                                    : listLine(0, typed));
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
