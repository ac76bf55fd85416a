// SPDX-License-Identifier: MIT
// Prints what a history says, row by row: ranges may hold more than memory does.
#ifndef LOOKBACKLINES_H
#define LOOKBACKLINES_H

#include "Console.h"
#include "LookBack.h"

#include <QJsonObject>

class LookBackLines
{
public:
    /// @param widest  of the URLs, characters; 0: there is only one, which needs no column
    LookBackLines(const LookBack &asked, int widest, const Console &console);

    void begin();
    /// A selector and its rows; endSelector() ends them.
    void beginSelector(const PastSelector &one);
    void add(const PastRow &row);
    void endSelector();
    /// A selector of which there is nothing.
    void addMissing(const PastSelector &missing, const QString &reason);
    void end();

private:
    struct Cells
    {
        Row row; ///< in the order of the columns
        Entry::State state = Entry::Good;
        QString until; ///< of a piece and a gap, exact
    };

    Cells cellsOf(const PastRow &row) const;
    Cells pieceCells(const PastRow &row) const;
    void printCells(const Cells &cells, const QString &kind);
    void separate();

    const LookBack asked;
    const Console console;
    const bool withUrl;
    QVector<Column> columns;
    QVector<int> widths;
    PastSelector selector;
    bool firstSelector = true;
    bool firstRow = true;
};

/// A value of a small type as the tools print those of large ones.
QVariant shownValue(const QVariant &value);

/// A row as an object: exact, times also as strings of nanoseconds.
QJsonObject jsonOf(const PastRow &row, const LookBack &asked, const QStringList &units);

/// What an event or a gap says to people.
QString noteOf(const HistoryEvent &event);
QString noteOf(const HistoryGap &gap);

#endif
