// SPDX-License-Identifier: MIT
// Judges the options of selector watch.
#include "WatchChoices.h"

namespace {

constexpr int usualTick = 1000; // milliseconds between two rows

// Two options that do not go together, in the order in which they are looked at.
struct Clash
{
    const char *option;
    const char *other;
};

constexpr Clash clashes[]{{"plot", "table"},      {"plot", "wide"},        {"table", "wide"},
                          {"quiet", "table"},     {"quiet", "wide"},       {"plot", "deadband"},
                          {"table", "deadband"},  {"wide", "deadband"},    {"wide", "interval"},
                          {"wide", "timestamps"}, {"wide", "changes-only"}};

bool optionsFit(const CommandLine &line, QString &usage)
{
    for (const char *view : {"plot", "table"}) {
        if (line.has(view) && line.format != Format::Table) {
            usage = QStringLiteral("--%1 draws for people; it has no --format json or csv.")
                        .arg(QLatin1String(view));
            return false;
        }
    }
    if (line.has("quiet") && (line.has("plot") || line.has("timestamps"))) {
        usage = QStringLiteral("--quiet has no --plot and no --timestamps.");
        return false;
    }
    for (const Clash &clash : clashes) {
        if (line.has(clash.option) && line.has(clash.other)) {
            usage = QStringLiteral("--%1 has no --%2.")
                        .arg(QLatin1String(clash.option), QLatin1String(clash.other));
            return false;
        }
    }
    if (line.has("every") && !line.has("wide")) {
        usage = QStringLiteral("--every goes with --wide; else --interval says how often to look.");
        return false;
    }
    return true;
}

} // namespace

bool takeWatchOptions(const CommandLine &line, WatchOptions &options, QString &usage)
{
    if (!optionsFit(line, usage)) {
        return false;
    }
    options.view = line.has("plot") ? WatchOptions::Plot
        : line.has("table")         ? WatchOptions::Table
        : line.has("wide")          ? WatchOptions::Wide
                                    : WatchOptions::Lines;
    options.interval = line.has("wide") ? line.number("every", usualTick)
                                        : line.number("interval", options.interval);
    options.count = line.number("count");
    options.timestamps = line.has("timestamps");
    options.changesOnly = line.has("changes-only");
    options.maximumAge = MaximumAge(line.number("max-age"));
    if (line.has("deadband")) {
        const std::optional<Deadband> deadband = Deadband::fromText(line.text("deadband"));
        if (!deadband) {
            usage = QStringLiteral("--deadband must be a number such as 0.5, or a share of the "
                                   "range such as 0.5%, not \"%1\"")
                        .arg(line.text("deadband"));
            return false;
        }
        options.deadband = *deadband;
    }
    return true;
}
