// SPDX-License-Identifier: MIT
// Matches patterns with what was recorded: the system itself may be down.
#include "HistorySelection.h"

#include "SelectorPattern.h"
#include "SelectorUrlParser.h"

namespace {

QVector<ListLine> matches(const ListLine &line, const SelectorPattern &pattern,
                          const QStringList &recorded)
{
    QVector<ListLine> found;
    for (const QString &url : recorded) {
        const SelectorUrlParts parts = parseSelectorUrl(url);
        if (pattern.matchesSource(parts.source) && pattern.matchesLeaf(parts.path)) {
            ListLine one = line;
            one.url = url;
            found.append(one);
        }
    }
    if (found.size() > 1) {
        for (ListLine &one : found) {
            one.label.clear(); // a label is one leaf's
        }
    }
    return found;
}

} // namespace

QVector<ListLine> recordedLines(const QVector<ListLine> &typed, const QStringList &recorded)
{
    QVector<ListLine> lines;
    for (const ListLine &line : typed) {
        SelectorPattern pattern;
        QString error;
        const bool isPlain
            = recorded.contains(line.url) || !SelectorPattern::parse(line.url, pattern, error);
        const QVector<ListLine> found
            = isPlain ? QVector<ListLine>() : matches(line, pattern, recorded);
        lines += found.isEmpty() ? QVector<ListLine>{line} : found;
    }
    return lines;
}
