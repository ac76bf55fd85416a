// SPDX-License-Identifier: MIT
// Names of watched selectors.
#ifndef WATCHTARGETS_H
#define WATCHTARGETS_H

#include "Finding.h"
#include "ListFile.h"

/// A selector and the name that an expression or a chart gives it.
struct WatchTarget
{
    QString name; ///< its label, or else the last segment of its URL, decoded
    QString url;
    QString label; ///< empty without
    Finding miss = {}; ///< why a pattern has no leaf; None for a selector
};

QVector<WatchTarget> watchTargets(const QVector<ListLine> &selectors);

/// The URLs alone.
QVector<QString> urlsOf(const QVector<WatchTarget> &targets);

#endif
