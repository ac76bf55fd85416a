// SPDX-License-Identifier: MIT
// Lists leaves source by source, and draws them as a tree.
#include "BrowseTree.h"

#include "CatalogFindings.h"
#include "Entries.h"
#include "LiveLeaves.h"

namespace {

QString indented(int level, const QString &name)
{
    return QString(2 * level, QLatin1Char(' ')) + (name.isEmpty() ? QStringLiteral("\"\"") : name);
}

Entry treeEntry(int level, const QString &name)
{
    Entry entry;
    entry.rows.append(Row{indented(level, name)});
    return entry;
}

class Browser
{
public:
    Browser(Catalog &catalog, const SelectorPattern &pattern, const BrowseView &view)
        : catalog(catalog)
        , pattern(pattern)
        , view(view)
        , report{QStringLiteral("selector.browse/1"), leafColumns(), {}, 0, true}
    {
        if (view.tree) {
            report.columns.first().key = QStringLiteral("name");
        }
        if (view.values) {
            report.columns.last().place = Column::CsvAlone; // descriptions leave no room for values
            report.columns += columnsOf("value> error");
        }
    }

    Report run()
    {
        const QVector<CatalogItem> items = catalog.items(pattern);
        for (const CatalogItem &item : items) {
            add(item);
        }
        if (!hasLeaves && !hasFailures) {
            const Finding miss = missOf(catalog.match(pattern));
            report.entries.clear();
            report.entries.append(browseFailure(placeText(), miss, report.columns.size()));
        }
        return report;
    }

private:
    QString placeText() const
    {
        QStringList names{pattern.module.toString(), pattern.object.toString(),
                          pattern.instance.toString()};
        names = names.mid(0, pattern.level);
        names += pattern.path.isEmpty() ? QStringList() : QStringList(pattern.pathText());
        names += pattern.below ? QStringList(QStringLiteral("**")) : QStringList();
        return names.join(QLatin1Char('/'));
    }

    void add(const CatalogItem &item)
    {
        if (item.kind == CatalogItem::Source) {
            addSource(item.name);
            return;
        }
        if (!item.answer.isOk()) {
            fail(item, item.answer);
        } else if (view.tree) {
            report.entries.append(treeEntry(
                item.kind, item.kind == CatalogItem::Module ? item.name.module : item.name.object));
        }
    }

    void fail(const CatalogItem &item, const CatalogAnswer &answer)
    {
        hasFailures = true;
        Entry entry = browseFailure(item.toString(), findingOf(answer), report.columns.size());
        if (view.tree) {
            const QString name = item.toString().section(QLatin1Char('/'), -1);
            entry.rows = {Row{indented(item.kind, name), QStringLiteral("failed"), answer.text}};
        }
        report.entries.append(entry);
    }

    void addSource(const SourceName &name)
    {
        const CatalogSource &source = catalog.source(name);
        if (!source.answer.isOk()) {
            fail({CatalogItem::Source, name, {}}, source.answer);
            return;
        }
        const QHash<QString, QJsonObject> exact = exactProperties(source);
        QVector<DescribedLeaf> leaves;
        for (const DescribedLeaf &leaf : source.leaves) {
            if (pattern.matchesLeaf(leaf.path)) {
                leaves.append({leaf.path, exact.value(leaf.path)});
            }
        }
        hasLeaves = hasLeaves || !leaves.isEmpty();
        if (view.tree) {
            report.entries.append(treeEntry(CatalogItem::Source, name.instance));
        }
        addLeaves(name, leaves);
    }

    void addLeaves(const SourceName &name, const QVector<DescribedLeaf> &leaves)
    {
        const QVector<LeafValue> values
            = view.values ? valuesOf(name, leaves) : QVector<LeafValue>();
        QStringList groups; // of the leaf before
        for (int i = 0; i < leaves.size(); ++i) {
            const QString &path = leaves.at(i).path;
            const QStringList names = path.split(QLatin1Char('/'));
            const QStringList above = names.mid(0, names.size() - 1);
            if (view.tree && above != groups) {
                addGroups(groups, above);
            }
            groups = above;
            const QString url = CatalogLeaf{name, path}.url();
            Entry entry = leafEntry(url, path, leaves.at(i).properties);
            if (view.values) {
                addValue(url, leaves.at(i).properties, values.at(i), entry);
            }
            if (view.tree) {
                entry.rows.first().first()
                    = Cell(indented(CatalogItem::Source + names.size(), names.constLast()), url);
            }
            report.entries.append(entry);
        }
    }

    void addGroups(const QStringList &before, const QStringList &now)
    {
        int common = 0;
        while (common < before.size() && common < now.size()
               && before.at(common) == now.at(common)) {
            ++common;
        }
        for (int i = common; i < now.size(); ++i) {
            report.entries.append(treeEntry(CatalogItem::Source + 1 + i, now.at(i)));
        }
    }

    static void addValue(const QString &url, const QJsonObject &properties, const LeafValue &value,
                         Entry &entry)
    {
        ReadResult result;
        result.url = url;
        result.value = value;
        result.properties = properties;
        const ReadRow row = readRow(result);
        const QJsonObject json = readEntry(result).json;
        for (const char *key : {"value", "errorType", "time", "timestampNs"}) {
            if (json.contains(QLatin1String(key))) {
                entry.json.insert(QLatin1String(key), json.value(QLatin1String(key)));
            }
        }
        entry.rows.first() += Row{row.value, row.error};
    }

    Catalog &catalog;
    const SelectorPattern &pattern;
    const BrowseView view;
    Report report;
    bool hasLeaves = false;
    bool hasFailures = false;
};

} // namespace

Entry browseFailure(const QString &place, const Finding &finding, int columns)
{
    Entry entry = entryOf(place, finding);
    entry.json.insert(QStringLiteral("place"), place);
    Row row(columns, Cell(QString()));
    row.first() = place;
    row.last() = finding.text;
    entry.rows.append(row);
    return entry;
}

Report browseReport(Catalog &catalog, const SelectorPattern &pattern, const BrowseView &view)
{
    return Browser(catalog, pattern, view).run();
}
