// SPDX-License-Identifier: MIT
// Looks leaves up in the running system.
#include "LiveLeaves.h"

#include "ExactJson.h"
#include "MessageLog.h"
#include "SelectorUrlBuilder.h"

QJsonObject propertiesOf(SelectorHandlerProcessValue &handler, int position)
{
    return exactObject(handler.getPropertyAsJsonString(position).toUtf8());
}

bool hasLeaf(SelectorHandlerProcessValue &handler, int position)
{
    // What stands for no leaf, an empty object or null, names no property.
    return handler.getPropertyAsJsonString(position).contains(QLatin1Char('"'));
}

QVector<LeafValue> valuesOf(const SourceName &source, const QVector<DescribedLeaf> &leaves)
{
    QVector<QString> urls;
    for (const DescribedLeaf &leaf : leaves) {
        urls.append(selectorUrl(source.module, source.object, source.instance, leaf.path));
    }
    const QVector<ProcessValue> values = SelectorHandlerProcessValue(urls, nullptr).getValues();
    return {values.begin(), values.end()};
}

Finding refusedByMemory()
{
    const QStringList warnings = MessageLog::takeWarnings();
    return {Finding::ValueRefused,
            warnings.isEmpty()
                ? QStringLiteral("the write was refused: no permission, the publisher "
                                 "is gone or another writer holds the lock")
                : warnings.constLast()};
}

LiveLeaves::LiveLeaves(const QVector<ListLine> &lines)
    : urls(urlsOf(lines))
    , values(urls, nullptr)
{
}

FoundLeaf LiveLeaves::find(int position)
{
    const QJsonObject properties = propertiesOf(values, position);
    if (!properties.isEmpty()) {
        return {{}, properties};
    }
    const Finding finding = examiner.explain(urls.at(position));
    if (!finding.isNone()) {
        return {finding, {}};
    }
    return {{Finding::NotReadable, QStringLiteral("the leaf has only just appeared, try again")},
            {}};
}

Finding LiveLeaves::write(int position, const QVariant &value)
{
    MessageLog::takeWarnings();
    if (values.setValue(ProcessDataAccess::makeValue(value), position)) {
        return {};
    }
    const Finding refused = refusedByMemory();
    const Finding finding = examiner.explainRefusal(urls.at(position));
    return finding.isNone() ? refused : finding;
}
