// SPDX-License-Identifier: MIT
// Reads selector lists line by line.
#include "ListFile.h"

#include "InputFile.h"

#include <QRegularExpression>

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
                {number, text.left(gap.capturedStart()), text.mid(gap.capturedEnd()), true});
        } else {
            lines.append({number, text, QString(), false});
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
    lines = readListLines(stream);
    if (lines.isEmpty()) {
        error = QStringLiteral("%1: no selector in it").arg(name);
        return false;
    }
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
