// SPDX-License-Identifier: MIT
// Draws charts over themselves.
#include "PlotScreen.h"

#include <QVector>

#include <algorithm>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int usualWidth = 80;
constexpr int usualPanel = 10; // lines
constexpr int smallestPanel = 3;

struct Size
{
    int width = usualWidth;
    int height = 0; ///< 0: as long as it takes
};

Size terminalSize()
{
    struct winsize size = {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return {};
    }
    return {size.ws_col, size.ws_row};
}

bool localeIsUtf8()
{
    for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const QByteArray value = qgetenv(name).toLower();
        if (!value.isEmpty()) {
            return value.contains("utf-8") || value.contains("utf8");
        }
    }
    return false;
}

} // namespace

PlotAbilities PlotAbilities::ofStandardOutput()
{
    const QByteArray terminal = qgetenv("TERM");
    const bool moves
        = ::isatty(STDOUT_FILENO) != 0 && !terminal.isEmpty() && terminal != QByteArray("dumb");
    return {moves, moves && terminal != QByteArray("linux") && localeIsUtf8()};
}

PlotScreen::PlotScreen(const QVector<WatchTarget> &targets, const Console &console,
                       const PlotAbilities &abilities)
    : console(console)
    , abilities(abilities)
{
    for (const WatchTarget &target : targets) {
        panels.append(PlotPanel(target.name));
    }
}

QStringList PlotScreen::frame() const
{
    const Size size = terminalSize();
    // One line less than the terminal has: writing the last one would scroll.
    const int height = size.height == 0
        ? usualPanel
        : std::clamp((size.height - 1) / std::max(1, panels.size()), smallestPanel, usualPanel * 2);
    QStringList lines;
    for (const PlotPanel &panel : panels) {
        lines += panel.render(size.width, height, abilities.dots);
    }
    return size.height == 0 ? lines : QStringList(lines.mid(0, size.height - 1));
}

void PlotScreen::draw()
{
    if (!abilities.moves) {
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
        return;
    }
    const QStringList lines = frame();
    for (const QString &line : lines) {
        console.out << line << '\n';
    }
    console.out.flush();
}
