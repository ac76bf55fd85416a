// SPDX-License-Identifier: MIT
// Finds what may stand at the end of a command line.
#include "LineCompletion.h"

#include "SelectorList.h"

#include <algorithm>

namespace {

// Those that go on from what is typed behind the prefix.
Offer matching(const QStringList &words, const QString &typed, const QString &prefix = {})
{
    Offer offer;
    for (const QString &word : words) {
        if (word.startsWith(typed)) {
            offer.words.append(prefix + word);
        }
    }
    return offer;
}

QStringList split(const char *words)
{
    return QString::fromLatin1(words).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

Offer offerOfOptions(const QVector<Option> &options, const QString &typed)
{
    QStringList all;
    for (const Option &option : options) {
        all += option.spellings();
    }
    all.sort();
    return matching(all, typed);
}

// Null when it is not known or takes no value.
const Option *optionWithValue(const QVector<Option> &options, const QString &spelling)
{
    const auto found = std::find_if(options.begin(), options.end(), [&](const Option &option) {
        return !option.value().isEmpty() && option.spellings().contains(spelling);
    });
    return found == options.end() ? nullptr : &*found;
}

Offer offerOfValue(const Option &option, const QString &typed, const QString &prefix = {})
{
    return option.kind == Option::File ? Offer{Arguments::File, {}}
                                       : matching(split(option.words), typed, prefix);
}

Offer offerOfArgument(const Arguments &takes, int position, const QString &typed)
{
    const bool isValue = takes.kind == Arguments::UrlAndValue && position % 2 == 1;
    if (position >= takes.most || isValue) {
        return {};
    }
    if (takes.kind == Arguments::FileAndUrls) {
        return {position == 0 ? Arguments::File : Arguments::Url, {}};
    }
    return takes.kind == Arguments::Words ? matching(split(takes.words), typed)
                                          : Offer{takes.kind, {}};
}

// The command's name, or an option of all commands in front of it.
Offer offerBeforeCommand(const QStringList &line, const QString &typed)
{
    const QVector<Option> &options = commonOptions();
    const Option *open = line.isEmpty() ? nullptr : optionWithValue(options, line.constLast());
    if (open != nullptr) {
        return offerOfValue(*open, typed);
    }
    if (typed.startsWith(QLatin1Char('-'))) {
        Offer offer = offerOfOptions(options, typed);
        offer.words += matching({QStringLiteral("--version")}, typed).words;
        return offer;
    }
    return matching(commandNames() + split("help --help --version"), typed);
}

} // namespace

Offer offerFor(QStringList line)
{
    const QString typed = line.takeLast();
    const int place = commandPosition(line);
    if (place < 0) {
        return offerBeforeCommand(line, typed);
    }
    const QString name = line.takeAt(place);
    if (name == QLatin1String("help")) {
        return line.isEmpty() ? matching(commandNames(), typed) : Offer();
    }
    const Command *command = findCommand(name);
    if (command == nullptr) {
        return {};
    }
    const QVector<Option> options = commonOptions(command->options) + command->options;
    const Option *open = nullptr; // waits for its value
    int position = 0;
    for (const QString &word : qAsConst(line)) {
        const bool isOption
            = word.startsWith(QLatin1Char('-')) && word.size() > 1 && !isNumber(word);
        if (open == nullptr && !isOption) {
            const bool isPair = command->takes.kind == Arguments::UrlAndValue && position % 2 == 0
                && valueIn(word) >= 0;
            position += isPair ? 2 : 1;
        }
        open = open == nullptr ? optionWithValue(options, word) : nullptr;
    }
    if (open != nullptr) {
        return offerOfValue(*open, typed);
    }
    if (!typed.startsWith(QLatin1Char('-'))) {
        return offerOfArgument(command->takes, position, typed);
    }
    const int value = typed.indexOf(QLatin1Char('=')) + 1;
    open = optionWithValue(options, typed.left(value - 1));
    return value > 0 && open != nullptr ? offerOfValue(*open, typed.mid(value), typed.left(value))
                                        : offerOfOptions(options, typed);
}
