// SPDX-License-Identifier: MIT
// Paths of names with "*" in them, and which modules, sources and leaves they mean.
#ifndef SELECTORPATTERN_H
#define SELECTORPATTERN_H

#include "SourceName.h"

#include <QStringList>
#include <QVector>

/// A name in which "*" stands for any characters, also for none.
class NamePattern
{
public:
    NamePattern() = default;

    /// @param pieces  decoded texts between the stars; one: a name without a star
    explicit NamePattern(const QStringList &pieces)
        : pieces(pieces)
    {
    }

    bool isName() const { return pieces.size() == 1; }
    bool matches(const QString &name) const;

    /// How many characters must be put in, taken out or replaced until a name matches. Capitals
    /// count as small letters.
    int distanceTo(const QString &name) const;

    /// Characters without the stars.
    int size() const { return toString().size() - pieces.size() + 1; }

    /// The name, or the pattern with its stars, for people.
    QString toString() const { return pieces.join(QLatin1Char('*')); }

private:
    QStringList pieces;
};

/// MODULE/OBJECT/INSTANCE/GROUP/…/LEAF, or less: what names a module, an object, a source or a group
/// means all leaves below. "*" stands for any characters within one part, "**" as the last part
/// for everything below.
///
/// Threads: a value type.
struct SelectorPattern
{
    /// How far down the pattern's own parts go.
    enum Level { System, Module, Object, Source };

    Level level = System;
    NamePattern module;
    NamePattern object;
    NamePattern instance;
    QVector<NamePattern> path; ///< of a group or a leaf; empty: all of the source
    bool below = false; ///< whether it ends in "**": a leaf of its path does not match

    /// Parts are percent-encoded as those of selector URLs; %2A is a star that stands for itself.
    /// The instance may be empty: MODULE/OBJECT/ names the one without a name.
    ///
    /// @param text   with or without processdata:// in front
    /// @param error  receives one sentence; left alone on success
    static bool parse(const QString &text, SelectorPattern &pattern, QString &error);

    /// Whether any part has a star.
    bool hasStars() const;

    /// Whether it takes a list of modules, or of a module's objects, to know what it means: the name
    /// is not spelt out.
    bool needsModules() const { return level < Module || !module.isName(); }
    bool needsObjects() const { return needsModules() || level < Object || !object.isName(); }

    bool matchesModule(const QString &name) const;
    bool matchesObject(const QString &moduleName, const QString &objectName) const;
    bool matchesSource(const SourceName &name) const;

    /// Whether a leaf of a matching source is meant.
    ///
    /// @param leafPath  names joined by "/"
    bool matchesLeaf(const QString &leafPath) const;

    /// Whether leaves of a group may be meant.
    bool leadsTo(const QString &groupPath) const;

    /// The pattern's path as it reads decoded: "drive/sp*"; for people.
    QString pathText() const;
};

/// Whether a name is longer than anybody would read in a hint.
bool isTooLongToSuggest(const QString &name);

/// Names near to a wanted one, the nearest first, at most three, none too long to suggest.
QStringList nearMisses(const NamePattern &wanted, const QStringList &names);

#endif
