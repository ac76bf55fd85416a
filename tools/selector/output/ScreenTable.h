// SPDX-License-Identifier: MIT
// Tables that fit on a screen.
#ifndef SCREENTABLE_H
#define SCREENTABLE_H

#include "Report.h"

class ScreenRowLayout;

/// A row as it is to be shown.
struct ScreenRow
{
    Row cells;
    Entry::State state = Entry::Good;
    QVector<bool> changed; ///< for each cell whether it stands out; empty: none does
};

/// Lays rows out for a screen of a certain width. What all names have in common is said once, above
/// the table; names are decoded; times become ages; columns without any content are left out.
/// Names, files and descriptions that do not fit are shortened, as long as no two look alike then.
/// Values are never shortened. Notes and long values that do not fit stand below their row.
class ScreenTable
{
public:
    /// @param style   its width, breaks, now and colour count
    /// @param widest  widths of an earlier table that this one takes the place of, so that its
    ///                columns do not move; empty: none
    ScreenTable(const QVector<Column> &columns, const QVector<ScreenRow> &rows, const Style &style,
                const QVector<int> &widest = {});

    /// What stands above the rows: what all names have in common, if anything, and the titles.
    ///
    /// @param legend  whether the titles are wanted
    QStringList header(bool legend = true) const;

    /// The lines of a row; all but the first are indented.
    QStringList lines(int row) const;

    /// One for each column.
    QVector<int> columnWidths() const { return widths; }

private:
    void takeTexts(int column);
    void takeWidth(int column, int least);
    void narrowValues(const QVector<int> &least);
    void shorten(int column);
    int widthOf(bool prose) const;
    bool standsBelow(const QStringList &cells, int column, bool fits) const;
    void addCells(const QStringList &cells, const QVector<bool> &changed,
                  ScreenRowLayout &layout) const;
    void addProse(const QStringList &cells, const QVector<bool> &changed,
                  ScreenRowLayout &layout) const;

    const QVector<Column> columns;
    const QVector<ScreenRow> rows;
    const Style style;
    QVector<QStringList> texts; ///< of each column the cell of each row
    QVector<int> widths; ///< 0: it is left out
    QString commonName;
    bool proseBeside = false; ///< all notes fit beside their rows
};

/// A report's table. An entry with several rows says its name once.
QString renderForScreen(const Report &report, const Style &style);

#endif
