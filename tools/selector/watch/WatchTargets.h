// SPDX-License-Identifier: MIT
// Names of watched selectors.
#ifndef WATCHTARGETS_H
#define WATCHTARGETS_H

#include <QString>
#include <QVector>

/// A selector and the name that an expression or a chart gives it.
struct WatchTarget
{
    QString name; ///< its label, or else the last segment of its URL, decoded
    QString url;
};

/// Takes NAME=URL apart. A NAME begins with a letter or "_"; letters, digits, "_", "." and "-"
/// follow. Whatever does not look like that is a URL.
WatchTarget watchTarget(const QString &text);

/// The same for a list.
QVector<WatchTarget> watchTargets(const QVector<QString> &texts);

/// The URLs alone.
QVector<QString> urlsOf(const QVector<WatchTarget> &targets);

#endif
