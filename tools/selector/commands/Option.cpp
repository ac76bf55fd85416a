// SPDX-License-Identifier: MIT
// The parts of an option's head, and the options of every command.
#include "Option.h"

#include <algorithm>

QString Option::name() const
{
    return QString::fromLatin1(head)
        .section(QStringLiteral("--"), 1)
        .section(QLatin1Char(' '), 0, 0);
}

QString Option::letter() const
{
    return head[1] == '-' ? QString() : QString(QLatin1Char(head[1]));
}

QString Option::value() const
{
    return QString::fromLatin1(head).section(QStringLiteral("--"), 1).section(QLatin1Char(' '), 1);
}

QStringList Option::spellings() const
{
    QStringList result{QStringLiteral("--") + name()};
    if (!letter().isEmpty()) {
        result.append(QLatin1Char('-') + letter());
    }
    return result;
}

const QVector<Option> &commonOptions()
{
    static const QVector<Option> options{
        {"--format FORMAT", "table (default), json or csv; -j is --format json",
         "FORMATS in selector(1) describes them.", Option::Text, "table json csv"},
        {"-j, --json", "", "The same as --format json."},
        {"--no-legend", "leave out the header line of a table and of csv"},
        {"--width N", "make tables for a screen of N columns",
         "For a screen names are shortened to what tells them apart, times are ages, and long notes "
         "have lines of their own. Without it tables fit the terminal that they go to; in pipes "
         "and files they have all in full.",
         Option::Count},
        {"-v, --verbose", "also print the libraries' warnings on standard error",
         "With file, line and function."},
        {"-h, --help", "print this and exit", "The help is the usage in short."}};
    return options;
}

QVector<Option> commonOptions(const QVector<Option> &own)
{
    QVector<Option> result;
    for (const Option &option : commonOptions()) {
        const bool replaced = std::any_of(
            own.begin(), own.end(), [&](const Option &one) { return one.name() == option.name(); });
        if (!replaced) {
            result.append(option);
        }
    }
    return result;
}
