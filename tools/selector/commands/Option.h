// SPDX-License-Identifier: MIT
// An option of a command. Parser, help, manual page and shells all read this one.
#ifndef OPTION_H
#define OPTION_H

#include <QString>
#include <QStringList>
#include <QVector>

struct Option
{
    /// What its value must be.
    enum Value {
        Text, ///< anything, nothing too
        Name, ///< not empty
        File, ///< not empty; shells offer files
        Count, ///< 1 to the largest int
        Milliseconds, ///< 1 to an hour; another unit may stand behind it
        Seconds, ///< above 0, at most a day, fractions and other units too; kept as milliseconds
    };

    const char *head; ///< as the help shows it: "--dry-run", or "-f, --file FILE"
    const char *text; ///< for help and page, as lines; empty: the page alone has the option
    const char *more = ""; ///< sentences that only the page has room for
    Value kind = Text;
    const char *words = ""; ///< what a value may be, for shells

    QString name() const; ///< "file"
    QString letter() const; ///< "f"; empty without
    QString value() const; ///< "FILE"; empty when it takes none
    QStringList spellings() const; ///< "--file" and "-f"
};

/// Those of every command.
const QVector<Option> &commonOptions();

/// The same but for those that a command has itself.
QVector<Option> commonOptions(const QVector<Option> &own);

/// What several commands have alike.
inline constexpr Option timeoutOption{
    "--timeout S", "seconds for all calls together; else 2 for each call",
    "Fractions are allowed, and another unit: 500ms, 2min. PROCESSDATA_DBUS_TIMEOUT_MS changes the "
    "2 seconds.",
    Option::Seconds};
inline constexpr Option urlFileOption{
    "-f, --file FILE",
    "also read selectors from FILE (- is standard input), one a line;\n"
    "lines that begin with # are left out; may be given several times",
    "FILE may be a pipe. Empty lines are left out too. These selectors come after those on the "
    "command line.",
    Option::File};
inline constexpr Option quietOption{
    "-q, --quiet", "print values only, one a line; an empty line where there is none",
    "Values are exact, and there is no header. Reasons go to standard error as ever. Backslashes "
    "and what is not seen are escaped, as write --escapes reads it; a text that is empty is \\c. Not "
    "with --format."};
inline constexpr Option maximumAgeOption{
    "--max-age S", "take values older than S seconds for stale, a failure",
    "A stale value is shown, with the status doubtful and the code stale. The time of a value is that "
    "of its publication, so this needs publishers that refresh what does not change.",
    Option::Seconds};
inline constexpr char knownProperties[]
    = "type unit readOnly minimum maximum description selectorType";

#endif
