// SPDX-License-Identifier: MIT
// The index lists that a signal carried.
#ifndef INDEXLISTS_H
#define INDEXLISTS_H

#include <QSignalSpy>
#include <QVector>

using IndexLists = QVector<QVector<int>>;

/// In the order of the signals.
inline IndexLists indexLists(const QSignalSpy &spy)
{
    IndexLists lists;
    for (const QVariantList &arguments : spy) {
        lists.append(arguments.at(0).value<QVector<int>>());
    }
    return lists;
}

#endif
