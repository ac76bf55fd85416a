// SPDX-License-Identifier: MIT
// Selectors from arguments and files.
#ifndef SELECTORLIST_H
#define SELECTORLIST_H

#include "CommandLine.h"
#include "ListFile.h"

/// What each selector is given with.
enum class LineForm {
    Url, ///< nothing; a value in a file is left out of account
    UrlAndValue,
};

/// Collects what the arguments name, then what the files (- for standard input) name, in their
/// order, each with its label and in full.
///
/// @param error  receives one sentence, also when there is no selector at all
bool collectSelectors(const CommandLine &line, LineForm form, QVector<ListLine> &selectors,
                      QString &error);

/// Where the value begins in SELECTOR=VALUE, as write takes it: behind the first "=" that follows a
/// "/". -1 when there is none. A "=" in a name is spelled %3D there.
int valueIn(const QString &argument);

#endif
