// SPDX-License-Identifier: MIT
// Takes patterns, groups and sources apart into leaves.
#include "Selection.h"

#include "CatalogFindings.h"
#include "Examination.h"
#include "SelectorText.h"
#include "SelectorUrlParser.h"
#include "Snapshot.h"

#include <utility>

namespace {

bool isDeactivated(const ListLine &line)
{
    return parseSelectorUrl(line.url).deactivated;
}

QString refusal()
{
    return QStringLiteral("a pattern may match more than you mean; name each leaf that is to be "
                          "written (%2A is a star in a name)");
}

CatalogMatch matchOf(const Snapshot &snapshot, const SelectorPattern &pattern)
{
    CatalogMatch match;
    for (auto source = snapshot.sources().begin(); source != snapshot.sources().end(); ++source) {
        if (pattern.matchesSource(source.key())) {
            for (const DescribedLeaf &leaf : source->leaves) {
                if (pattern.matchesLeaf(leaf.path)) {
                    match.leaves.append({source.key(), leaf.path});
                }
            }
        }
    }
    if (match.leaves.isEmpty()) {
        match.missing = CatalogMatch::Path;
        match.hint = QStringLiteral("the snapshot has nothing that matches");
    }
    return match;
}

} // namespace

PatternLookup lookupIn(Catalog &catalog)
{
    return [&catalog](const SelectorPattern &pattern, bool withHint) {
        return withHint ? catalog.match(pattern) : catalog.find(pattern);
    };
}

PatternLookup lookupIn(const Snapshot &snapshot)
{
    return [&snapshot](const SelectorPattern &pattern, bool /*withHint*/) {
        return matchOf(snapshot, pattern);
    };
}

Selection::Selection(const QVector<ListLine> &typed, PatternLookup lookup)
    : lookup(std::move(lookup))
{
    for (const ListLine &line : typed) {
        SelectorPattern pattern;
        QString error;
        if (!holdsPattern(line.url) || isDeactivated(line)) {
            append(line, {});
        } else if (line.hasValue) {
            append(line, {Finding::InvalidUrl, refusal()});
        } else if (!SelectorPattern::parse(line.url, pattern, error)) {
            // What is wrong without its stars too is said as ever.
            const bool isUrl = textFinding(parseSelectorUrl(line.url)).isNone();
            append(line, isUrl ? Finding(Finding::InvalidUrl, error) : Finding());
        } else {
            appendMatch(line, this->lookup(pattern, true));
        }
    }
}

bool Selection::expandGroups(const std::function<bool(int position)> &isLeaf)
{
    QMap<int, CatalogMatch> groups;
    for (int i = 0; i < selectors.size(); ++i) {
        const ListLine &line = selectors.at(i);
        SelectorPattern pattern;
        QString error;
        if (findings.at(i).isNone() && !line.hasValue && !isDeactivated(line) && !isLeaf(i)
            && SelectorPattern::parse(line.url, pattern, error) && !pattern.hasStars()) {
            const CatalogMatch match = lookup(pattern, false);
            if (!match.leaves.isEmpty()) {
                groups.insert(i, match);
            }
        }
    }
    if (groups.isEmpty()) {
        return false;
    }
    const QVector<ListLine> before = std::exchange(selectors, {});
    const QVector<Finding> why = std::exchange(findings, {});
    for (int i = 0; i < before.size(); ++i) {
        const auto group = groups.find(i);
        if (group == groups.end()) {
            append(before.at(i), why.at(i));
        } else {
            appendMatch(before.at(i), *group);
        }
    }
    return true;
}

void Selection::append(const ListLine &line, const Finding &finding)
{
    selectors.append(line);
    findings.append(finding);
}

void Selection::appendMatch(const ListLine &line, const CatalogMatch &match)
{
    for (const CatalogLeaf &leaf : match.leaves) {
        ListLine found = line;
        found.url = leaf.url();
        found.label = match.leaves.size() == 1 ? line.label : QString(); // a label is one leaf's
        append(found, {});
    }
    if (match.leaves.isEmpty() && (!match.hint.isEmpty() || match.failed.isEmpty())) {
        append(line, missOf(match));
        return;
    }
    for (const CatalogItem &item : match.failed) {
        Finding finding = findingOf(item.answer);
        const QString place = item.toString();
        finding.text
            = place.isEmpty() ? finding.text : QStringLiteral("%1: %2").arg(place, finding.text);
        append(line, finding);
    }
}

std::unique_ptr<LiveLeaves> findLeaves(Selection &selection)
{
    auto leaves = std::make_unique<LiveLeaves>(selection.lines());
    if (selection.expandGroups([&](int i) { return hasLeaf(leaves->handler(), i); })) {
        leaves = std::make_unique<LiveLeaves>(selection.lines());
    }
    return leaves;
}

bool haveNoPatterns(const QVector<ListLine> &lines, QString &error)
{
    for (const ListLine &line : lines) {
        if (holdsPattern(line.url) && !isDeactivated(line)) {
            error = line.url + QStringLiteral(": ") + refusal();
            return false;
        }
    }
    return true;
}
