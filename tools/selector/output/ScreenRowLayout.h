// SPDX-License-Identifier: MIT
// The lines of one row.
#ifndef SCREENROWLAYOUT_H
#define SCREENROWLAYOUT_H

#include <QString>
#include <QStringList>

/// Puts cells side by side. One that would cross the edge of the screen begins a new line, so that
/// the terminal breaks no value.
class ScreenRowLayout
{
public:
    /// @param width   of the screen, in columns
    /// @param breaks  whether texts that are wider than the screen are broken anywhere
    explicit ScreenRowLayout(int width, bool breaks = false)
        : width(width)
        , breaks(breaks)
    {
    }

    /// @param cellWidth  of its column; a longer text moves what follows
    /// @param changed    whether it stands out
    void add(const QString &text, int cellWidth, bool alignRight, bool changed);

    /// Whether a text fits behind what is there.
    bool hasRoomFor(const QString &text) const { return next + text.size() <= width; }

    /// Adds a sentence on lines of its own, which break at blanks.
    void addSentence(const QString &text);

    /// Adds a text on a line of its own, as it is, or on as many as it takes.
    void addWhole(const QString &text);

    /// At least one; all but the first are indented.
    QStringList lines() const;

private:
    void breakLine();
    QStringList pieces(const QString &text) const;

    const int width;
    const bool breaks;
    QStringList done;
    QString line;
    int length = 0; ///< columns of the line
    int next = 0; ///< where the next cell begins
};

#endif
