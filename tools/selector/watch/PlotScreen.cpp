// SPDX-License-Identifier: MIT
// Draws charts over themselves.
#include "PlotScreen.h"

#include "PlotFrame.h"

#include <QVector>

#include <algorithm>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int usualWidth = 80;

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
    const QStringList titles = plotTitles(targets);
    for (const QString &title : titles) {
        panels.append(PlotPanel(title));
    }
}

QStringList PlotScreen::frame() const
{
    const Size size = terminalSize();
    // One line less than the terminal has: writing the last one would scroll.
    return plotFrame(panels, size.width, std::max(0, size.height - 1), abilities.dots);
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
