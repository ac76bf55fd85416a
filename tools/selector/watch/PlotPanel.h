// SPDX-License-Identifier: MIT
// The chart of one selector.
#ifndef PLOTPANEL_H
#define PLOTPANEL_H

#include <QString>
#include <QStringList>
#include <QVector>

/// Keeps the latest samples and draws them as a line, the newest at the right.
class PlotPanel
{
public:
    static constexpr int mostSamples = 4096; ///< more dots than any terminal has side by side
    static constexpr int axisWidth = 12; ///< columns before the line, with labels in them

    explicit PlotPanel(const QString &name);

    /// Whether its values are true and false, which have a range of their own.
    void setSwitch(bool is) { isSwitch = is; }

    /// @param sample   NaN: none at this time, which leaves a gap
    /// @param newNote  the value with its unit, or why there is none
    void add(double sample, const QString &newNote);

    /// @param width   columns in all
    /// @param height  lines in all, at least 3: the title and the line
    /// @param dots    whether the terminal has Braille patterns, eight dots a cell; otherwise plain
    ///                ASCII
    QStringList render(int width, int height, bool dots) const;

private:
    const QString name;
    QString note;
    bool isSwitch = false;
    QVector<double> samples;
};

#endif
