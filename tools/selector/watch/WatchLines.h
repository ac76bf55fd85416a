// SPDX-License-Identifier: MIT
// Lines that selector watch prints: values and change signals.
#ifndef WATCHLINES_H
#define WATCHLINES_H

#include "Entries.h"
#include "Report.h"
#include "ScreenNames.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// What happened to one selector of a change signal.
struct SelectorChange
{
    enum What {
        Found, ///< the selector has a leaf now
        Lost, ///< the selector's leaf is gone
        Restarted, ///< the same leaf of a new run of its publisher
        Changed, ///< properties are different
    };

    int index = 0;
    QString url;
    What what = Changed;
    QStringList properties; ///< names of those that differ, of Changed
    QString text; ///< for people
};

/// Compares a leaf's properties before and after; an empty object is no leaf.
SelectorChange compareProperties(int index, const QString &url, const QJsonObject &before,
                                 const QJsonObject &after);

/// Renders lines one by one, in one format. Lines for a screen have no more of each name than tells
/// it apart, no date of this day, and notes that do not fit below them.
class WatchLines
{
public:
    /// @param names       labels or URLs of the selectors, which decide how wide a table is
    /// @param timestamps  whether each line says when it was printed, in a first column "seen"
    WatchLines(const QVector<QString> &names, const Style &style, bool timestamps = false);

    /// What stands above the first line; empty for JSON.
    QString header() const;

    /// @param now  nanoseconds since the epoch: when it is printed
    QString value(int index, const ReadResult &result, qint64 now) const;

    /// @param signal  name of the library's signal; has no line of its own with --quiet
    QString signal(const QString &signal, const QVector<SelectorChange> &changes, qint64 now) const;

private:
    QString jsonLine(QJsonObject object, qint64 now) const;
    QString csvLine(QStringList fields, qint64 now) const;
    QString tableLine(Row cells, Entry::State state) const;
    QString shownTime(qint64 time, qint64 now) const;

    const Style style;
    const bool timestamps;
    QVector<Column> columns;
    QVector<int> widths;
    ScreenNames screenNames; ///< of a screen
};

#endif
