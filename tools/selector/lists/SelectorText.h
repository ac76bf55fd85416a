// SPDX-License-Identifier: MIT
// Selectors as people type them.
#ifndef SELECTORTEXT_H
#define SELECTORTEXT_H

#include <QString>

/// A typed selector taken apart.
struct SelectorText
{
    QString label; ///< what the person calls it; empty without
    QString url; ///< in full
};

/// Takes NAME=SELECTOR apart. A NAME begins with a letter or "_"; letters, digits, "_", "." and "-"
/// follow. What stands behind it is a URL, or one without its scheme, which is put in front.
/// Nothing is judged: whatever does not look like that is a URL all the same.
SelectorText selectorText(const QString &typed);

/// Whether a part of a URL holds "*", which names spell %2A: it means many leaves, not one.
bool holdsPattern(const QString &url);

/// What a selector is called where nobody gave it a label: the last part of its URL, decoded.
QString lastPartOf(const QString &url);

#endif
