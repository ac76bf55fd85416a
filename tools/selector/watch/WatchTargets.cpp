// SPDX-License-Identifier: MIT
// Names selectors that are watched.
#include "WatchTargets.h"

#include "SelectorText.h"

QVector<WatchTarget> watchTargets(const QVector<ListLine> &selectors)
{
    QVector<WatchTarget> targets;
    targets.reserve(selectors.size());
    for (const ListLine &selector : selectors) {
        const QString name = selector.label.isEmpty() ? lastPartOf(selector.url) : selector.label;
        targets.append({name, selector.url, selector.label});
    }
    return targets;
}

QVector<QString> urlsOf(const QVector<WatchTarget> &targets)
{
    QVector<QString> urls;
    urls.reserve(targets.size());
    for (const WatchTarget &target : targets) {
        urls.append(target.url);
    }
    return urls;
}
