// SPDX-License-Identifier: MIT
// Puts cells side by side.
#include "ScreenRowLayout.h"

#include <algorithm>

namespace {

constexpr int gap = 2;
constexpr int indent = 4;
const QLatin1String standOut("\x1b[7;1m");
const QLatin1String standBack("\x1b[27;22m"); // the row's colour stays

} // namespace

void ScreenRowLayout::add(const QString &text, int cellWidth, bool alignRight, bool changed)
{
    int begin = next + (alignRight ? std::max(0, cellWidth - text.size()) : 0);
    int end = next + cellWidth;
    if (!text.isEmpty()) {
        if (length > 0 && begin + text.size() > width) {
            breakLine();
            begin = length;
            end = length;
        }
        line += QString(begin - length, QLatin1Char(' '))
            + (changed ? standOut + text + standBack : text);
        length = begin + text.size();
    }
    next = std::max(end, length) + gap;
}

void ScreenRowLayout::addWhole(const QString &text)
{
    const QStringList all = pieces(text);
    for (const QString &piece : all) {
        breakLine();
        line += piece;
        length += piece.size();
    }
    next = width + gap;
}

void ScreenRowLayout::addSentence(const QString &text)
{
    QStringList words;
    const QStringList whole = text.split(QLatin1Char(' '));
    for (const QString &word : whole) {
        words += pieces(word);
    }
    breakLine();
    for (const QString &word : qAsConst(words)) {
        if (length > indent && length + 1 + word.size() > width) {
            breakLine();
        }
        line += length > indent ? QLatin1Char(' ') + word : word;
        length += word.size() + (length > indent ? 1 : 0);
    }
    next = width + gap; // what follows begins a line, too
}

QStringList ScreenRowLayout::lines() const
{
    return done + QStringList(line);
}

// All but the last one fill a line.
QStringList ScreenRowLayout::pieces(const QString &text) const
{
    const int room = std::max(2, width - indent);
    if (!breaks || text.size() <= room) {
        return {text};
    }
    QStringList pieces;
    for (int begin = 0; begin < text.size();) {
        const bool pair = begin + room < text.size() && text.at(begin + room).isLowSurrogate();
        pieces.append(text.mid(begin, pair ? room - 1 : room));
        begin += pieces.constLast().size();
    }
    return pieces;
}

void ScreenRowLayout::breakLine()
{
    done.append(line);
    line = QString(indent, QLatin1Char(' '));
    length = indent;
    next = indent;
}
