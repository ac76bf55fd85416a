// SPDX-License-Identifier: MIT
// Splits a selector URL into its decoded parts.
#ifndef SELECTORURLPARSER_H
#define SELECTORURLPARSER_H

#include "ProcessDataPlatformExport.h"
#include "SourceName.h"

/// What a selector URL says. Parts are decoded, and empty when the URL is invalid.
struct SelectorUrlParts
{
    QString scheme;
    SourceName source;
    QString path; ///< names from the top joined by "/"; null when a name itself holds "/": no leaf
        ///< has it
    QString problem; ///< of an invalid URL: the rule that it breaks, for people
    bool valid = false;
    bool deactivated = false; ///< told also of an invalid URL
    bool sourceNameRefused = false; ///< the text is well formed, but module or object is no name
};

/// Longest URL, in bytes of UTF-8.
constexpr int selectorUrlMaximumLength = 4096;

/// A text of so many UTF-16 units keeps that length: each has at most 3 bytes of UTF-8, a pair 4.
constexpr int selectorUrlSurelyShortEnough = selectorUrlMaximumLength / 3;

/// Splits scheme://module/object/instance/group/…/leaf[?deactivated] and decodes the parts
/// (RFC 3986, section 2.1; their bytes are UTF-8).
///
/// Not QUrl: it lower-cases the first part, takes "127" for an address and joins a%2Fb with a/b.
/// Threads: any.
PROCESSDATAPLATFORM_EXPORT SelectorUrlParts parseSelectorUrl(const QString &text);

#endif
