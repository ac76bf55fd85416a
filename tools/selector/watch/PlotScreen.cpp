// SPDX-License-Identifier: MIT
// Draws charts over themselves.
#include "PlotScreen.h"

#include "PlotFrame.h"
#include "TerminalSize.h"
#include "ValueText.h"

#include <algorithm>

namespace {

bool isText(const QVariant &value)
{
    return value.userType() == QMetaType::QString || value.userType() == QMetaType::QByteArray;
}

// NaN where there is none; a text that reads like a number is still none.
double sampleOf(const LeafValue &value)
{
    bool isNumber = false;
    const double sample = value.value.toDouble(&isNumber);
    return isNumber && !isText(value.value) && value.isGood() ? sample : qQNaN();
}

QString noteOf(const ReadResult &result)
{
    const ReadRow row = readRow(result);
    return row.state == Entry::Good
        ? (valueToShortText(result.value.value) + QLatin1Char(' ') + row.unit).trimmed()
        : row.note;
}

} // namespace

PlotScreen::PlotScreen(const QVector<WatchTarget> &targets, const Console &console,
                       const TerminalAbilities &abilities)
    : console(console)
    , abilities(abilities)
{
    clock.start();
    const QStringList titles = plotTitles(targets);
    for (const QString &title : titles) {
        panels.append(PlotPanel(title));
    }
}

void PlotScreen::start()
{
    if (!abilities.moves) {
        return;
    }
    terminal = std::make_unique<Terminal>(Terminal::Same);
    connect(terminal.get(), &Terminal::disturbed, this, [this] {
        drawnLines = 0; // others may have written below them
        draw();
    });
    connect(terminal.get(), &Terminal::typed, this, [this](const QString &key) {
        if (key == QLatin1String("q")) {
            Q_EMIT left();
        }
    });
}

void PlotScreen::show(const QVector<ReadResult> &results, qint64 /*time*/)
{
    for (int i = 0; i < panels.size(); ++i) {
        const LeafValue &value = results.at(i).value;
        if (value.isGood()) {
            panels[i].setSwitch(value.value.userType() == QMetaType::Bool);
        }
        panels[i].add(sampleOf(value), noteOf(results.at(i)));
    }
    times.append(clock.nsecsElapsed()); // nobody can set this clock
    if (times.size() > PlotPanel::mostSamples) {
        times.removeFirst();
    }
    draw();
}

QStringList PlotScreen::frame() const
{
    const TerminalSize size = TerminalSize::ofStandardOutput();
    // One line less than the terminal has: writing the last one would scroll.
    return plotFrame(panels, times, {size.width, std::max(0, size.height - 1), abilities.dots});
}

void PlotScreen::draw()
{
    if (!terminal || !terminal->isOurs()) {
        return;
    }
    if (drawnLines > 0) {
        console.out << QStringLiteral("\x1b[%1A").arg(drawnLines);
    }
    const QStringList lines = frame();
    for (const QString &line : lines) {
        console.out << QStringLiteral("\r\x1b[2K") << line << '\n';
    }
    console.out << QStringLiteral("\x1b[J"); // a frame before a resize may have been longer
    console.out.flush();
    drawnLines = lines.size();
}

void PlotScreen::finish()
{
    if (abilities.moves) {
        terminal.reset();
        return;
    }
    const QStringList lines = frame();
    for (const QString &line : lines) {
        console.out << line << '\n';
    }
    console.out.flush();
}
