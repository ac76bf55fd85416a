// SPDX-License-Identifier: MIT
// Selector lists, line by line.
#ifndef LISTFILE_H
#define LISTFILE_H

#include <QString>
#include <QTextStream>
#include <QVector>

/// One line: a URL and, where it is to be written, blanks and a value (the rest of the line).
struct ListLine
{
    int number = 0; ///< 1-based, empty lines and comments counted; 0: not of a file
    QString url;
    QString value;
    bool hasValue = false;
};

/// What a line holds.
enum class LineForm {
    Url, ///< nothing else
    UrlAndValue, ///< perhaps blanks and a value
};

/// Empty lines and lines that begin with # are left out.
QVector<ListLine> readListLines(QTextStream &stream, LineForm form = LineForm::UrlAndValue);

/// @param name   of a file; - is standard input
/// @param error  receives one sentence, also for a list without lines
bool readListFile(const QString &name, QVector<ListLine> &lines, QString &error);

/// Whether each line has a value.
///
/// @param error  receives the first that has none
bool haveValues(const QVector<ListLine> &lines, QString &error);

/// The URLs alone.
QVector<QString> urlsOf(const QVector<ListLine> &lines);

#endif
