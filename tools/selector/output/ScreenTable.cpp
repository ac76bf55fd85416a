// SPDX-License-Identifier: MIT
// Lays tables out for a screen.
#include "ScreenTable.h"

#include "ScreenColumns.h"
#include "ScreenNames.h"
#include "ScreenRowLayout.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr int gap = 2;
constexpr int leastWidth = 12; // of what is shortened

int countOfDifferent(const QStringList &texts)
{
    return QSet<QString>(texts.begin(), texts.end()).size();
}

} // namespace

ScreenTable::ScreenTable(const QVector<Column> &columns, const QVector<ScreenRow> &rows,
                         const Style &style, const QVector<int> &widest)
    : columns(columns)
    , rows(rows)
    , style(style)
{
    for (int column = 0; column < columns.size(); ++column) {
        takeTexts(column);
        takeWidth(column, widest.value(column));
    }
    if (widthOf(false) + widthOf(true) > style.width + gap) {
        narrowValues(widest);
    }
    for (const ColumnKind kind : {ColumnKind::Text, ColumnKind::Path, ColumnKind::Name}) {
        for (int column = 0; column < columns.size(); ++column) {
            if (kindOf(columns.at(column)) == kind && widths.at(column) > 0) {
                shorten(column);
            }
        }
    }
    proseBeside = widthOf(false) + widthOf(true) <= style.width + gap;
}

void ScreenTable::takeTexts(int column)
{
    const ColumnKind kind = kindOf(columns.at(column));
    QStringList cells;
    for (const ScreenRow &row : rows) {
        // Rows of a tree end with its names.
        cells.append(column < row.cells.size() ? shownText(row.cells.at(column), kind, style.now)
                                               : QString());
    }
    if (kind == ColumnKind::Name) {
        const ScreenNames names = ScreenNames::of(cells);
        commonName = printable(names.common);
        for (int i = 0; i < cells.size(); ++i) {
            cells[i] = printable(names.rests.at(i));
        }
    }
    texts.append(cells);
}

void ScreenTable::takeWidth(int column, int least)
{
    const QStringList &cells = texts.at(column);
    int longest = 0;
    for (const QString &cell : cells) {
        longest = std::max(longest, cell.size());
    }
    const bool shown = columns.at(column).place != Column::CsvAlone
        && (longest > 0 || least > 0 || rows.isEmpty());
    widths.append(shown ? std::max({longest, least, titleOf(columns.at(column)).size()}) : 0);
}

// Of the columns with sentences, or of the others; with a gap behind each.
int ScreenTable::widthOf(bool prose) const
{
    int width = 0;
    for (int column = 0; column < columns.size(); ++column) {
        const bool counts = widths.at(column) > 0 && isProse(columns.at(column)) == prose;
        width += counts ? widths.at(column) + gap : 0;
    }
    return width;
}

void ScreenTable::shorten(int column)
{
    const ColumnKind kind = kindOf(columns.at(column));
    const int excess = widthOf(false) - gap - style.width;
    const int most = widths.at(column);
    const int different = countOfDifferent(texts.at(column));
    int width = std::min(most, std::max(leastWidth, most - excess));
    while (excess > 0 && width < most
           && countOfDifferent(shortened(texts.at(column), width, kind)) < different
           && kind != ColumnKind::Text) {
        ++width;
    }
    if (excess > 0 && width < most) {
        texts[column] = shortened(texts.at(column), width, kind);
        widths[column] = width;
    }
}

void ScreenTable::narrowValues(const QVector<int> &least)
{
    const int most = std::max(leastWidth, style.width / 3);
    for (int column = 0; column < columns.size(); ++column) {
        if (kindOf(columns.at(column)) == ColumnKind::Value && widths.at(column) > most) {
            widths[column] = std::max(most, least.value(column));
        }
    }
}

// One that is wider than its column would move those behind it.
bool ScreenTable::standsBelow(const QStringList &cells, int column, bool fits) const
{
    bool isLast = true;
    for (int next = column + 1; next < columns.size(); ++next) {
        isLast = isLast && (cells.at(next).isEmpty() || isProse(columns.at(next)));
    }
    return cells.at(column).size() > widths.at(column) && !(isLast && fits);
}

void ScreenTable::addCells(const QStringList &cells, const QVector<bool> &changed,
                           ScreenRowLayout &layout) const
{
    QStringList below;
    for (int column = 0; column < columns.size(); ++column) {
        if (widths.at(column) == 0 || isProse(columns.at(column))) {
            continue;
        }
        QString text = cells.at(column);
        if (standsBelow(cells, column, layout.hasRoomFor(text))) {
            below.append(text);
            text.clear();
        }
        layout.add(text, widths.at(column), isAlignedRight(columns.at(column)),
                   changed.value(column));
    }
    for (const QString &text : qAsConst(below)) {
        layout.addWhole(text);
    }
}

void ScreenTable::addProse(const QStringList &cells, const QVector<bool> &changed,
                           ScreenRowLayout &layout) const
{
    bool isFirst = true;
    for (int column = 0; column < columns.size(); ++column) {
        const QString &text = cells.at(column);
        if (widths.at(column) == 0 || !isProse(columns.at(column))) {
            continue;
        }
        if (proseBeside || (isFirst && layout.hasRoomFor(text))) {
            layout.add(text, widths.at(column), false, changed.value(column));
        } else if (!text.isEmpty()) {
            layout.addSentence(text);
        }
        isFirst = false;
    }
}

QStringList ScreenTable::header(bool legend) const
{
    QStringList lines;
    if (!commonName.isEmpty()) {
        lines.append(commonName + ellipsis);
    }
    if (!legend) {
        return lines;
    }
    QStringList titles;
    for (const Column &column : columns) {
        titles.append(titleOf(column));
    }
    ScreenRowLayout layout(style.width);
    addCells(titles, {}, layout);
    for (int column = 0; column < columns.size(); ++column) {
        const bool fits = isProse(columns.at(column)) && widths.at(column) > 0
            && layout.hasRoomFor(titles.at(column));
        if (fits) {
            layout.add(titles.at(column), proseBeside ? widths.at(column) : style.width, false,
                       false);
        }
    }
    const QStringList laid = layout.lines();
    for (const QString &line : laid) {
        lines.append(asTitle(line, style.colour));
    }
    return lines;
}

QStringList ScreenTable::lines(int row) const
{
    QStringList cells;
    for (const QStringList &column : texts) {
        cells.append(column.at(row));
    }
    ScreenRowLayout layout(style.width, style.breaks);
    addCells(cells, rows.at(row).changed, layout);
    addProse(cells, rows.at(row).changed, layout);
    QStringList lines = layout.lines();
    for (QString &line : lines) {
        line = inColourOf(rows.at(row).state, line, style.colour);
    }
    return lines;
}

QString renderForScreen(const Report &report, const Style &style)
{
    QVector<ScreenRow> rows;
    for (const Entry &entry : report.entries) {
        for (int i = 0; i < entry.rows.size(); ++i) {
            ScreenRow row{entry.rows.at(i), entry.state, {}};
            for (int column = 0; i > 0 && column < row.cells.size(); ++column) {
                const bool again = kindOf(report.columns.at(column)) == ColumnKind::Name
                    && row.cells.at(column).text == entry.rows.at(i - 1).at(column).text;
                row.cells[column] = again ? Cell(QString()) : row.cells.at(column);
            }
            rows.append(row);
        }
    }
    const ScreenTable table(report.columns, rows, style);
    QStringList lines = table.header(style.legend);
    for (int row = 0; row < rows.size(); ++row) {
        lines += table.lines(row);
    }
    return lines.isEmpty() ? QString() : lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}
