// SPDX-License-Identifier: MIT
// Draws the table over itself.
#include "TableScreen.h"

#include "AgeText.h"
#include "TerminalSize.h"

namespace {

constexpr int usualHeight = 24; // of a terminal that does not say
constexpr int ageInterval = 500; // milliseconds: no mark of a change stands much too long

} // namespace

TableScreen::TableScreen(const QVector<WatchTarget> &targets, const Console &console,
                         const TerminalAbilities &abilities)
    : table(targets)
    , console(console)
    , abilities(abilities)
{
    clock.start();
}

void TableScreen::start()
{
    if (!abilities.moves) {
        return;
    }
    terminal = std::make_unique<Terminal>(Terminal::Own);
    connect(terminal.get(), &Terminal::disturbed, this, &TableScreen::drawAnew);
    connect(terminal.get(), &Terminal::typed, this, &TableScreen::press);
    connect(&ages, &QTimer::timeout, this, &TableScreen::draw);
    ages.start(ageInterval);
}

void TableScreen::show(const QVector<ReadResult> &results, qint64 /*time*/)
{
    table.take(results, clock.elapsed());
    draw();
}

void TableScreen::press(const QString &key)
{
    switch (table.press(key)) {
    case WatchTable::Answer::Leave:
        Q_EMIT left();
        break;
    case WatchTable::Answer::Draw:
        draw();
        break;
    case WatchTable::Answer::Nothing:
        break;
    }
}

void TableScreen::drawAnew()
{
    if (!terminal) {
        return;
    }
    drawn.clear();
    console.out << QStringLiteral("\x1b[2J");
    draw();
}

void TableScreen::draw()
{
    if (!terminal || !terminal->isOurs()) {
        return;
    }
    const TerminalSize size = TerminalSize::ofStandardOutput();
    Style style = console.style;
    style.width = size.width;
    style.breaks = true;
    style.now = currentTime();
    const QStringList lines
        = table.frame(style, size.height > 0 ? size.height : usualHeight, clock.elapsed());
    for (int i = 0; i < lines.size(); ++i) {
        if (lines.at(i) != drawn.value(i)) {
            console.out << QStringLiteral("\x1b[%1;1H\x1b[2K").arg(i + 1) << lines.at(i);
        }
    }
    console.out.flush();
    drawn = lines;
}

void TableScreen::finish()
{
    ages.stop();
    if (abilities.moves) {
        terminal.reset();
        return;
    }
    Style style = console.style;
    style.now = currentTime();
    console.out << table.report(style);
    console.out.flush();
}
