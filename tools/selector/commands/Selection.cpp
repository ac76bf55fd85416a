// SPDX-License-Identifier: MIT
// Takes patterns, groups and sources apart into leaves.
#include "Selection.h"

#include "CatalogFindings.h"
#include "Examination.h"
#include "SelectorText.h"
#include "SelectorUrlParser.h"
#include "Snapshot.h"

#include <algorithm>
#include <utility>

using ProcessDataAccess::Result;

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

// A leaf whose value cannot be had is found as itself.
bool isGroup(const CatalogMatch &match, const SelectorPattern &pattern)
{
    const bool isItself = match.leaves.size() == 1 && !pattern.path.isEmpty()
        && match.leaves.constFirst().path == pattern.pathText();
    return !match.leaves.isEmpty() && !isItself;
}

// Of a place above the groups nothing else says who gives no answer.
bool isUnanswered(const CatalogMatch &match, const ListLine &line)
{
    const auto isSilent = [](const CatalogItem &item) {
        return item.answer.result == Result::TimedOut || item.answer.result == Result::Denied;
    };
    return !parseSelectorUrl(line.url).valid
        && std::any_of(match.failed.begin(), match.failed.end(), isSilent);
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
            append(line, {}, Spelling::Typed);
        } else if (line.hasValue) {
            append(line, {Finding::InvalidUrl, refusal()}, Spelling::Typed);
        } else if (!SelectorPattern::parse(line.url, pattern, error)) {
            // What is wrong without its stars too is said as ever.
            const bool isUrl = textFinding(parseSelectorUrl(line.url)).isNone();
            append(line, isUrl ? Finding(Finding::InvalidUrl, error) : Finding(), Spelling::Typed);
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
        if (spellings.at(i) == Spelling::Typed && findings.at(i).isNone() && !line.hasValue
            && !isDeactivated(line) && !isLeaf(i)
            && SelectorPattern::parse(line.url, pattern, error) && !pattern.hasStars()) {
            const CatalogMatch match = lookup(pattern, false);
            if (isGroup(match, pattern) || isUnanswered(match, line)) {
                groups.insert(i, match);
            }
        }
    }
    if (groups.isEmpty()) {
        return false;
    }
    const QVector<ListLine> before = std::exchange(selectors, {});
    const QVector<Finding> why = std::exchange(findings, {});
    const QVector<Spelling> how = std::exchange(spellings, {});
    for (int i = 0; i < before.size(); ++i) {
        const auto group = groups.find(i);
        if (group == groups.end()) {
            append(before.at(i), why.at(i), how.at(i));
        } else {
            appendMatch(before.at(i), *group);
        }
    }
    return true;
}

void Selection::append(const ListLine &line, const Finding &finding, Spelling spelling)
{
    selectors.append(line);
    findings.append(finding);
    spellings.append(spelling);
}

void Selection::appendMatch(const ListLine &line, const CatalogMatch &match)
{
    for (const CatalogLeaf &leaf : match.leaves) {
        ListLine found = line;
        found.url = leaf.url();
        found.label = match.leaves.size() == 1 ? line.label : QString(); // a label is one leaf's
        append(found, {}, Spelling::Found);
    }
    if (match.leaves.isEmpty() && (!match.hint.isEmpty() || match.failed.isEmpty())) {
        append(line, missOf(match), Spelling::Found);
        return;
    }
    for (const CatalogItem &item : match.failed) {
        Finding finding = findingOf(item.answer);
        const QString place = item.toString();
        if (!finding.text.startsWith(place)) {
            finding.text = QStringLiteral("%1: %2").arg(place, finding.text);
        }
        append(line, finding, Spelling::Found);
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
