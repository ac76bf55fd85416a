// SPDX-License-Identifier: MIT
// Puts the pieces of a range into the columns of a chart.
#include "HistoryPlot.h"

#include "LookBackLines.h"
#include "PlotPanel.h"
#include "ValueText.h"

#include <algorithm>

namespace {

constexpr int height = 10; // lines

bool isNumber(const HistorySample &sample)
{
    return sample.errorType == ProcessDataDefinitions::NoError && sample.value.isValid()
        && sample.value.userType() != QMetaType::QString
        && sample.value.userType() != QMetaType::QByteArray;
}

// What is read of a range, column by column.
struct Columns
{
    HistorySample held; // when the range began
    QVector<HistoryPiece> pieces; // without samples where nothing was written
    QVector<HistoryGap> gaps;
};

bool read(HistoryReader &reader, const LookBack &asked, const QString &url, int count,
          Columns &columns)
{
    LookBack beginning = asked;
    beginning.until = asked.from + 1;
    LookBack pieces = asked;
    pieces.interval = std::max<qint64>(1, (asked.until - asked.from + count - 1) / count);
    columns.pieces.resize(count);
    columns.held.errorType = ProcessDataDefinitions::NoValue;
    return lookBack(reader, beginning, url,
                    [&](const PastRow &row) {
                        if (row.kind == PastRow::Held) {
                            columns.held = row.sample;
                        }
                        return row.kind != PastRow::Held;
                    })
        && lookBack(reader, pieces, url, [&](const PastRow &row) {
               if (row.kind == PastRow::Piece) {
                   columns.pieces[int((row.time - asked.from) / pieces.interval)] = row.piece;
               } else if (row.kind == PastRow::Gap) {
                   columns.gaps.append(row.gap);
               }
               return true;
           });
}

// The last gap that touches a time; null without one.
const HistoryGap *gapWithin(const QVector<HistoryGap> &gaps, qint64 from, qint64 until)
{
    const auto found = std::find_if(gaps.rbegin(), gaps.rend(), [&](const HistoryGap &gap) {
        return gap.from < until && gap.until > from;
    });
    return found == gaps.rend() ? nullptr : &*found;
}

// The last value of a lost source was good until the gap that its loss left.
HistorySample afterPiece(const HistoryPiece &piece, const HistorySample &before)
{
    HistorySample last = piece.last;
    if (last.errorType == ProcessDataDefinitions::SourceLost
        && (piece.numbers > 0 || isNumber(before))) {
        last.errorType = ProcessDataDefinitions::NoError;
    }
    return last;
}

QString noteOf(const HistorySample &last, const QString &unit)
{
    if (last.errorType == ProcessDataDefinitions::NoValue) {
        return QStringLiteral("nothing is known at its end");
    }
    if (!last.value.isValid() || last.errorType != ProcessDataDefinitions::NoError) {
        return QStringLiteral("no good value at its end");
    }
    return (valueToShortText(shownValue(last.value)) + QLatin1Char(' ') + unit).trimmed();
}

} // namespace

bool drawHistory(HistoryReader &reader, const LookBack &asked, const PastSelector &selector,
                 const QString &title, const ChartSize &size, QStringList &lines)
{
    const int count = std::max(1, size.width - PlotPanel::axisWidth) * (size.dots ? 2 : 1);
    Columns columns;
    if (!read(reader, asked, selector.url, count, columns)) {
        return false;
    }
    PlotPanel panel(title);
    panel.setSwitch(selector.series.constLast().type == HistoryType::Bool);
    const qint64 interval = std::max<qint64>(1, (asked.until - asked.from + count - 1) / count);
    HistorySample last = columns.held;
    const QString unit = selector.series.constLast().unit;
    for (int i = 0; i < count; ++i) {
        const HistoryPiece &piece = columns.pieces.at(i);
        const qint64 from = asked.from + i * interval;
        const HistoryGap *gap
            = gapWithin(columns.gaps, from, std::min(asked.until, from + interval));
        if (piece.count > 0) {
            last = afterPiece(piece, last);
        }
        if (gap != nullptr && (piece.count == 0 || gap->from >= piece.last.time)) {
            last = {};
            last.errorType = ProcessDataDefinitions::NoValue;
        }
        const double held = isNumber(last) ? last.value.toDouble() : qQNaN();
        panel.add(piece.numbers > 0 ? piece.mean : held, noteOf(last, unit));
    }
    lines += panel.render(size.width, height, size.dots);
    return true;
}

QString rangeLine(const LookBack &asked, const ChartSize &size)
{
    const QString from = timeToText(asked.from);
    const QString until = timeToText(asked.until);
    const int room = size.width - PlotPanel::axisWidth;
    return QString(PlotPanel::axisWidth, QLatin1Char(' ')) + from
        + until.rightJustified(std::max(until.size() + 2, room - from.size()));
}
