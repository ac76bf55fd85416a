// SPDX-License-Identifier: MIT
// Selectors of reading commands, with leaves in the place of patterns, groups and sources.
#ifndef SELECTION_H
#define SELECTION_H

#include "Catalog.h"
#include "Finding.h"
#include "ListFile.h"
#include "LiveLeaves.h"

#include <functional>
#include <memory>

class Snapshot;

/// What a pattern means.
///
/// @param withHint  whether a pattern without a leaf is to be explained
using PatternLookup = std::function<CatalogMatch(const SelectorPattern &pattern, bool withHint)>;

/// In the running system. The catalog outlives the lookup.
PatternLookup lookupIn(Catalog &catalog);

/// In a snapshot, which outlives the lookup.
PatternLookup lookupIn(const Snapshot &snapshot);

/// Lines that are to be written, deactivated ones and what is neither a pattern nor the name of a
/// place stay as they are.
///
/// Threads: one; blocks for calls.
class Selection
{
public:
    /// Puts leaves in the place of patterns. Asks nothing for lines without a star.
    Selection(const QVector<ListLine> &typed, PatternLookup lookup);

    /// Puts leaves in the place of names of groups and sources, which no leaf has.
    ///
    /// @param isLeaf  whether there is a leaf for the line at a position; asks nothing for those
    /// @returns whether lines() differ from before
    bool expandGroups(const std::function<bool(int position)> &isLeaf);

    const QVector<ListLine> &lines() const { return selectors; }

    /// Why a pattern has no leaf, or may lack some; None for a line that may have one.
    Finding finding(int position) const { return findings.at(position); }

private:
    enum class Spelling { Typed, Found }; // what the system gave is not looked up again

    void append(const ListLine &line, const Finding &finding, Spelling spelling);
    void appendMatch(const ListLine &line, const CatalogMatch &match);

    const PatternLookup lookup;
    QVector<ListLine> selectors;
    QVector<Finding> findings; // of each
    QVector<Spelling> spellings; // likewise
};

/// The leaves of a selection, with the groups in it expanded.
std::unique_ptr<LiveLeaves> findLeaves(Selection &selection);

/// Whether each line names one leaf, as those that are written must.
///
/// @param error  receives the first that has a star
bool haveNoPatterns(const QVector<ListLine> &lines, QString &error);

#endif
