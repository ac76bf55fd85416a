// SPDX-License-Identifier: MIT
// Reads selector lists line by line.
#include "ListFile.h"

#include "InputFile.h"
#include "SelectorText.h"

#include <QRegularExpression>

ListLine listLine(int number, const QString &typed)
{
    const SelectorText selector = selectorText(typed);
    return {number, selector.url, QString(), false, selector.label};
}

ListLine listLine(int number, const QString &typed, const QString &value)
{
    ListLine line = listLine(number, typed);
    line.value = value;
    line.hasValue = true;
    return line;
}

QVector<ListLine> readListLines(QTextStream &stream, LineForm form)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QVector<ListLine> lines;
    for (int number = 1; !stream.atEnd(); ++number) {
        const QString text = withoutBlanks(stream.readLine());
        if (text.isEmpty() || text.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const QRegularExpressionMatch gap = blanks.match(text);
        if (form == LineForm::UrlAndValue && gap.hasMatch()) {
            lines.append(
                listLine(number, text.left(gap.capturedStart()), text.mid(gap.capturedEnd())));
        } else {
            lines.append(listLine(number, text));
        }
    }
    return lines;
}

bool readListFile(const QString &name, QVector<ListLine> &lines, QString &error)
{
    QString text;
    if (!readTextFile(name, text, error)) {
        return false;
    }
    QTextStream stream(&text);
    const QVector<ListLine> found = readListLines(stream);
    if (found.isEmpty()) {
        error = QStringLiteral("%1: no selector in it").arg(name);
        return false;
    }
    lines += found;
    return true;
}

bool haveValues(const QVector<ListLine> &lines, QString &error)
{
    for (const ListLine &line : lines) {
        if (!line.hasValue) {
            error = QStringLiteral("line %1: no value for %2").arg(line.number).arg(line.url);
            return false;
        }
    }
    return true;
}

QVector<QString> urlsOf(const QVector<ListLine> &lines)
{
    QVector<QString> urls;
    urls.reserve(lines.size());
    for (const ListLine &line : lines) {
        urls.append(line.url);
    }
    return urls;
}
