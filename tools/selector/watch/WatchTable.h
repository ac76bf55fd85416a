// SPDX-License-Identifier: MIT
// A row for each watched selector.
#ifndef WATCHTABLE_H
#define WATCHTABLE_H

#include "Entries.h"
#include "ScreenTable.h"
#include "WatchTargets.h"

#include <QVector>

/// Holds what each selector has now, what of it has just changed, and which rows are wanted. It asks
/// neither a terminal nor a clock. A moment is a number of milliseconds that only grows.
class WatchTable
{
public:
    static constexpr qint64 changeStands
        = 1000; ///< milliseconds for which a changed cell stands out

    enum class Answer {
        Nothing, ///< the key means nothing here
        Draw, ///< the rows or the last line differ now
        Leave, ///< the person has seen enough
    };

    explicit WatchTable(const QVector<WatchTarget> &targets);

    /// @param results  one for each target
    void take(const QVector<ReadResult> &results, qint64 moment);

    /// q leaves; / begins a filter, whose text follows; Enter keeps it, Escape clears it.
    Answer press(const QString &key);

    /// The lines of the screen, at most as many as it has. Rows that have no room are counted in the
    /// last one.
    QStringList frame(const Style &style, int height, qint64 moment);

    /// All rows at full length, for the end.
    QString report(const Style &style) const;

private:
    struct Row
    {
        Entry entry;
        QString name; ///< as a filter sees it
        QVector<qint64> changed; ///< when each cell did; 0: it did not
    };

    bool isWanted(const Row &row) const;
    QVector<ScreenRow> wantedRows(qint64 moment) const;
    QString lastLine(int wanted, int hidden) const;

    const QVector<Column> columns;
    QVector<Row> rows;
    QVector<int> widths; ///< of the columns so far, which only grow
    int widthOfScreen = 0;
    QString filter;
    bool typing = false;
};

#endif
