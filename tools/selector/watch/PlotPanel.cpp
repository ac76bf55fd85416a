// SPDX-License-Identifier: MIT
// Draws lines with characters.
#include "PlotPanel.h"

#include "ScreenColumns.h"
#include "ValueText.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int labelWidth = PlotPanel::axisWidth - 2;
constexpr int labelDigits = 5;

struct Range
{
    double low = 0;
    double high = 1;
};

// Lines of dots; a set dot belongs to the drawn line.
using Raster = QVector<QVector<bool>>;

Range rangeOf(const QVector<double> &samples)
{
    Range range{qInf(), -qInf()};
    for (const double sample : samples) {
        if (std::isfinite(sample)) {
            range.low = std::min(range.low, sample);
            range.high = std::max(range.high, sample);
        }
    }
    if (range.low > range.high) {
        return {};
    }
    if (range.low == range.high) { // a constant runs through the middle
        const double margin = std::max(1.0, std::fabs(range.low) / 10);
        return {range.low - margin, range.high + margin};
    }
    return range;
}

int lineOf(double sample, const Range &range, int lines)
{
    // Halves first: the difference of the largest doubles would be infinite.
    const double part
        = (range.high / 2 - sample / 2) / (range.high / 2 - range.low / 2) * (lines - 1);
    return std::clamp(static_cast<int>(std::lround(part)), 0, lines - 1);
}

Raster draw(const QVector<double> &samples, const Range &range, int columns, int lines)
{
    Raster raster(lines, QVector<bool>(columns, false));
    const int first = columns - samples.size();
    int previous = -1;
    for (int i = 0; i < samples.size(); ++i) {
        if (!std::isfinite(samples.at(i))) {
            previous = -1;
            continue;
        }
        const int line = lineOf(samples.at(i), range, lines);
        const int from = previous < 0 ? line : previous;
        // The step between two samples is drawn too, but not the dot of the one before.
        for (int y = std::min(from, line); y <= std::max(from, line); ++y) {
            raster[y][first + i] = y != from || from == line;
        }
        previous = line;
    }
    return raster;
}

QChar brailleCell(const Raster &raster, int row, int column)
{
    // Bits of the dots in Unicode's order: left column, right column, then the lowest pair.
    static const int bits[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
    int cell = 0x2800;
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 2; ++x) {
            cell |= raster.at(row * 4 + y).at(column * 2 + x) ? bits[y][x] : 0;
        }
    }
    return cell == 0x2800 ? QChar(QLatin1Char(' ')) : QChar(cell);
}

QString label(double value, bool isSwitch)
{
    const QString text
        = isSwitch ? valueToText(value > 0) : QString::number(value, 'g', labelDigits);
    return text.rightJustified(labelWidth);
}

QString cells(const Raster &raster, int row, int columns, bool dots)
{
    QString cells;
    for (int column = 0; column < columns; ++column) {
        cells += dots ? brailleCell(raster, row, column)
                      : QChar(QLatin1Char(raster.at(row).at(column) ? '*' : ' '));
    }
    return cells;
}

QString fitted(const QString &text, int width)
{
    return text.size() <= width ? text : text.left(std::max(0, width - 1)) + ellipsis;
}

QString withoutTrailingBlanks(QString line)
{
    while (line.endsWith(QLatin1Char(' '))) {
        line.chop(1);
    }
    return line;
}

} // namespace

PlotPanel::PlotPanel(const QString &name)
    : name(name)
{
}

void PlotPanel::add(double sample, const QString &newNote)
{
    note = newNote;
    samples.append(sample);
    if (samples.size() > mostSamples) {
        samples.removeFirst();
    }
}

QStringList PlotPanel::render(int width, int height, bool dots) const
{
    const int columns = std::max(1, width - axisWidth);
    const int rows = std::max(2, height - 1);
    const int across = dots ? columns * 2 : columns;
    const QVector<double> shown = samples.mid(std::max(0, samples.size() - across));
    const Range range = isSwitch ? Range() : rangeOf(shown);
    const Raster raster = draw(shown, range, across, dots ? rows * 4 : rows);
    QStringList lines{fitted(printable(QStringLiteral("%1  %2").arg(name, note).trimmed()), width)};
    for (int row = 0; row < rows; ++row) {
        QString line = QString(labelWidth, QLatin1Char(' '));
        if (row == 0 || row == rows - 1) {
            line = label(row == 0 ? range.high : range.low, isSwitch);
        }
        line += dots ? QStringLiteral(" \u2502") : QStringLiteral(" |");
        lines.append(withoutTrailingBlanks(line + cells(raster, row, columns, dots)));
    }
    return lines;
}
