// SPDX-License-Identifier: MIT
// Selector lists with line numbers, as check, apply and diff read them.
#ifndef LISTFILE_H
#define LISTFILE_H

#include <QString>
#include <QTextStream>
#include <QVector>

/// One line: a URL and, where it is to be written, blanks and a value (the rest of the line).
struct ListLine
{
    int number = 0; ///< 1-based, empty lines and comments counted
    QString url;
    QString value;
    bool hasValue = false;
};

/// Empty lines and lines that begin with # are left out.
QVector<ListLine> readListLines(QTextStream &stream);

/// @param name   of a file; - is standard input
/// @param error  receives one sentence, also for a list without lines
bool readListFile(const QString &name, QVector<ListLine> &lines, QString &error);

#endif
