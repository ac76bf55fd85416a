// SPDX-License-Identifier: MIT
// Reads selector lists line by line.
#include "ListFile.h"

#include "EscapedText.h"
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

bool readListLines(QTextStream &stream, Escapes escapes, QVector<ListLine> &lines, QString &error)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    static const QRegularExpression mark(QStringLiteral("^-e\\s+"));
    for (int number = 1; !stream.atEnd(); ++number) {
        QString text = withoutBlanks(stream.readLine());
        if (text.isEmpty() || text.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const bool isMarked = text.contains(mark);
        text.remove(mark);
        const QRegularExpressionMatch gap = blanks.match(text);
        if (!gap.hasMatch()) {
            lines.append(listLine(number, text));
            continue;
        }
        ListLine line
            = listLine(number, text.left(gap.capturedStart()), text.mid(gap.capturedEnd()));
        QString problem;
        if ((isMarked || escapes == Escapes::All)
            && !textFromEscapes(line.value, line.value, problem)) {
            error = QStringLiteral("line %1: the value \"%2\" of %3 %4")
                        .arg(QString::number(number), line.value, line.url, problem);
            return false;
        }
        lines.append(line);
    }
    return true;
}

QString listText(const ListLine &line)
{
    QString url = line.url;
    url.replace(QLatin1Char(' '), QLatin1String("%20"));
    QString selector = line.label.isEmpty() ? url : line.label + QLatin1Char('=') + url;
    if (!line.hasValue) {
        return selector;
    }
    const QString escaped = escapedText(line.value);
    QString onlyBackslashes = line.value;
    onlyBackslashes.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    return escaped == onlyBackslashes ? QStringLiteral("%1 %2").arg(selector, line.value)
                                      : QStringLiteral("-e %1 %2").arg(selector, escaped);
}

bool readListFile(const QString &name, QVector<ListLine> &lines, QString &error)
{
    QString text;
    if (!readTextFile(name, text, error)) {
        return false;
    }
    QTextStream stream(&text);
    QVector<ListLine> found;
    QString problem;
    if (!readListLines(stream, Escapes::Marked, found, problem)) {
        error = QStringLiteral("%1: %2").arg(name, problem);
        return false;
    }
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
