// SPDX-License-Identifier: MIT
// Selectors from arguments and files.
#ifndef SELECTORLIST_H
#define SELECTORLIST_H

#include "CommandLine.h"

#include <QString>
#include <QTextStream>
#include <QVector>

/// A selector and, for writing, the text of its value.
struct SelectorInput
{
    QString url;
    QString value;
};

/// Reads one URL a line; empty lines and lines that begin with # are left out.
///
/// @param withValues  whether each line holds a URL, blanks and a value (the rest of the line)
/// @param error       receives the line's number and what is wrong
bool readSelectorLines(QTextStream &stream, bool withValues, QVector<SelectorInput> &selectors,
                       QString &error);

/// Collects what the arguments name, then what the file (- for standard input) names.
///
/// @param error  receives one sentence, also when there is no selector at all
bool collectSelectors(const CommandLine &line, bool withValues, QVector<SelectorInput> &selectors,
                      QString &error);

/// The URLs alone.
QVector<QString> urlsOf(const QVector<SelectorInput> &selectors);

#endif
