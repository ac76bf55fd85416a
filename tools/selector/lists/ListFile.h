// SPDX-License-Identifier: MIT
// Selector lists, line by line.
#ifndef LISTFILE_H
#define LISTFILE_H

#include <QString>
#include <QTextStream>
#include <QVector>

/// A selector as it was given: on a line of a file, with blanks and a value (the rest of the line)
/// where it is to be written, or as an argument.
struct ListLine
{
    int number = 0; ///< 1-based, empty lines and comments counted; 0: not of a file
    QString url; ///< in full, also of a short path
    QString value;
    bool hasValue = false;
    QString label = {}; ///< of NAME=SELECTOR; empty without
};

/// A selector as it is typed, and perhaps a value.
///
/// @param number  of its line; 0: not of a file
ListLine listLine(int number, const QString &typed);
ListLine listLine(int number, const QString &typed, const QString &value);

/// Which values are spelled with escapes, as EscapedText.h has them.
enum class Escapes {
    Marked, ///< those of lines that begin with -e and a blank
    All,
};

/// Adds the lines of a list; empty ones and those that begin with # are left out.
///
/// @param error  receives the number of the first line whose value is not spelled as it should be
bool readListLines(QTextStream &stream, Escapes escapes, QVector<ListLine> &lines, QString &error);

/// The line that reads back as this one: label, URL and value, with -e before them where the value
/// could not stand as it is.
QString listText(const ListLine &line);

/// Adds the lines of a file.
///
/// @param name   of a file; - is standard input
/// @param error  receives one sentence, also for a file without lines
bool readListFile(const QString &name, QVector<ListLine> &lines, QString &error);

/// Whether each line has a value.
///
/// @param error  receives the first that has none
bool haveValues(const QVector<ListLine> &lines, QString &error);

/// The URLs alone.
QVector<QString> urlsOf(const QVector<ListLine> &lines);

#endif
