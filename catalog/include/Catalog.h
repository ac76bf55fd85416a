// SPDX-License-Identifier: MIT
// What the system publishes: modules, objects, sources, groups and leaves.
#ifndef CATALOG_H
#define CATALOG_H

#include "DescriptionLeaves.h"
#include "ModuleList.h"
#include "ProcessDataAccess.h"
#include "SelectorPattern.h"

#include <QHash>
#include <QMap>

#include <functional>
#include <optional>

/// How a question about a part of the system ended.
struct CatalogAnswer
{
    ProcessDataAccess::Result result = ProcessDataAccess::Result::Ok;
    QString text; ///< why it is not Ok, for people

    bool isOk() const { return result == ProcessDataAccess::Result::Ok; }
};

inline bool operator==(const CatalogAnswer &left, const CatalogAnswer &right)
{
    return left.result == right.result && left.text == right.text;
}

/// A module, an object or a source.
struct CatalogItem
{
    enum Kind { Module, Object, Source };

    Kind kind = Module;
    SourceName name; ///< as far as its kind goes
    CatalogAnswer answer; ///< why the names below a module or an object are not known

    /// MODULE, MODULE/OBJECT or MODULE/OBJECT/INSTANCE, for people.
    QString toString() const;
};

/// What a source's description says.
struct CatalogSource
{
    CatalogAnswer answer; ///< why there is none
    QString description; ///< as the service sends it
    QVector<DescribedLeaf> leaves; ///< whole numbers beyond ±9007199254740991 are rounded
};

/// A leaf by its names.
struct CatalogLeaf
{
    SourceName source;
    QString path; ///< names joined by "/"

    QString url() const;
};

/// What a pattern means.
struct CatalogMatch
{
    enum Part { None, Module, Object, Instance, Path };

    QVector<CatalogLeaf> leaves; ///< by source, then in the order of the description
    QVector<CatalogItem> failed; ///< parts of the system that may have more, but did not answer

    /// The first part of the pattern that nothing has; set only when nothing matched, and everybody
    /// answered who would have to know.
    Part missing = None;
    QString hint; ///< for people: what is missing, and what comes near
};

/// Asks each thing once and remembers it until it is told to forget it.
///
/// A part of the system that gives no answer does not spoil the others. Only modules that a pattern
/// can match are asked; names that it spells out are not looked up.
///
/// Threads: one at a time. Blocks for calls, each at most for the platform's time limit; runs no
/// event loop.
class Catalog
{
public:
    /// Asks the registry for its modules, and where there is no registry, who runs.
    CatalogAnswer askModules();

    /// The modules, in the registry's order; one may have no readable name.
    const QVector<Module> &modules();

    /// The registry's list as it sent it; empty without one.
    const QString &providerList();

    /// For people: why the modules are those whose services run; empty: they are the registry's.
    const QString &note();

    /// @name Names, sorted
    /// None when there is no answer.
    /// @{
    QStringList moduleNames();
    const QStringList &objectNames(const QString &module) { return objectsOf(module).names; }
    const QStringList &instanceNames(const QString &module, const QString &object)
    {
        return instancesOf(module, object).names;
    }
    /// @}

    /// Modules, objects and sources that a pattern can match, each before what is in it, sorted by
    /// name.
    QVector<CatalogItem> items(const SelectorPattern &pattern);

    /// Fetches a source's description. Valid until it is forgotten.
    const CatalogSource &source(const SourceName &name);

    /// The leaves that a pattern means.
    CatalogMatch find(const SelectorPattern &pattern);

    /// The same with a hint when there are none.
    CatalogMatch match(const SelectorPattern &pattern);

    /// @name What may differ from now on is asked for again when it is needed.
    /// @{
    void forgetAll();
    void forgetModules() { list.reset(); }
    void forgetModule(const QString &module); ///< with its descriptions
    void forgetNames(const QString &module); ///< of its objects and instances
    void forgetAllNames();
    void forgetSource(const SourceName &name) { sources.remove(name); }
    /// @}

    /// Forgets all questions that did not end well.
    ///
    /// @returns whether there were any
    bool forgetFailures();

    /// Whether a source is among the instances of its object; where those were not asked for,
    /// whether it was described.
    bool knows(const SourceName &name) const;

    /// Whether a source may be among the instances of its object, which it asks for: false when they
    /// are told without it, or its service has no such object.
    bool mayHave(const SourceName &name);

    /// Is called before the instances of an object are asked for.
    using ObjectHook = std::function<void(const QString &module, const QString &object)>;
    void setObjectHook(const ObjectHook &hook) { objectHook = hook; }

private:
    struct Providers
    {
        CatalogAnswer answer;
        QString json;
        QString note;
        QVector<Module> modules;
    };

    struct Names
    {
        CatalogAnswer answer;
        QStringList names;
    };

    const Providers &providers();
    const Names &objectsOf(const QString &module);
    const Names &instancesOf(const QString &module, const QString &object);
    void addModule(const SelectorPattern &pattern, const QString &module, bool spelt,
                   QVector<CatalogItem> &found);
    void addObject(const SelectorPattern &pattern, const QString &module, const QString &object,
                   bool spelt, QVector<CatalogItem> &found);
    bool modulesFor(const SelectorPattern &pattern, QStringList &names);
    bool namesBelow(SelectorPattern pattern, SelectorPattern::Level level, QStringList &names);
    bool leafPathsOf(const SelectorPattern &pattern, QStringList &paths);
    void explainMiss(const SelectorPattern &pattern, CatalogMatch &found);

    std::optional<Providers> list;
    QHash<QString, Names> objects; // by module
    QMap<QPair<QString, QString>, Names> instances; // by module and object
    QMap<SourceName, CatalogSource> sources;
    ObjectHook objectHook;
};

#endif
