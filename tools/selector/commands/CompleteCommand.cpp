// SPDX-License-Identifier: MIT
// selector complete: candidates for shells from the live system.
#include "Catalog.h"
#include "Command.h"
#include "Completion.h"
#include "ExitCode.h"
#include "LineCompletion.h"

#include <QRegularExpression>

namespace {

constexpr int namesOfSource = 3;
constexpr int patience = 500; // milliseconds that a person at the keyboard may wait for a call

QStringList modules()
{
    return Catalog().moduleNames();
}

QStringList leafPaths(const QStringList &source)
{
    Catalog catalog;
    QStringList paths;
    const auto &leaves = catalog.source({source.at(0), source.at(1), source.at(2)}).leaves;
    for (const DescribedLeaf &leaf : leaves) {
        paths.append(leaf.path);
    }
    return paths;
}

// Nothing when the system does not answer: a completion has nobody to complain to.
QStringList candidates(const TypedPlace &place, bool isUrl)
{
    const QString slash = QStringLiteral("/");
    Catalog catalog;
    switch (place.names.size()) {
    case 0:
        return completions(place, modules(), slash);
    case 1:
        return completions(place, catalog.objectNames(place.names.at(0)), slash);
    case 2:
        return completions(place, catalog.instanceNames(place.names.at(0), place.names.at(1)),
                           isUrl ? slash : QString());
    default:
        break;
    }
    const QString group = QStringList(place.names.mid(namesOfSource)).join(QLatin1Char('/'));
    const QStringList names = namesBelow(leafPaths(place.names), group);
    return completions(place, isUrl ? names : names.filter(slash), QString());
}

QStringList wordsOf(const Offer &offer, const QString &typed)
{
    switch (offer.kind) {
    case Arguments::Words:
        return offer.words;
    case Arguments::File:
        return {QStringLiteral(":files")}; // shells know best how to spell their names
    case Arguments::Module:
        return modules().filter(
            QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(typed)));
    case Arguments::Place:
        return candidates(typedPlace(typed, false), false);
    case Arguments::Url:
    case Arguments::UrlAndValue:
    case Arguments::FileAndUrls:
        break;
    }
    return candidates(typedPlace(typed, true), true);
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    static const QMap<QString, Arguments::Kind> kinds{
        {QStringLiteral("url"), Arguments::Url},
        {QStringLiteral("place"), Arguments::Place},
        {QStringLiteral("module"), Arguments::Module}};
    QStringList words = line.arguments;
    const QString kind = words.isEmpty() ? QString() : words.takeFirst();
    // A whole line, for the scripts of the shells that are installed with this program alone.
    const bool isLine = kind == QLatin1String("line") && !words.isEmpty();
    if (!isLine && (!kinds.contains(kind) || words.size() > 1)) {
        usage = QStringLiteral("expected \"url\", \"place\" or \"module\", and one word");
        return ExitUsage;
    }
    if (!line.has("timeout")) {
        ProcessDataAccess::setCallTimeLimit(patience);
    }
    const QString typed = words.isEmpty() ? QString() : words.constLast();
    const Offer offer = isLine ? offerFor(words) : Offer{kinds.value(kind), {}};
    const QStringList found = wordsOf(offer, typed);
    for (const QString &word : found) {
        console.out << word << '\n';
    }
    console.out.flush();
    return ExitAllGood;
}

} // namespace

Command completeCommand()
{
    return {
        QStringLiteral("complete"),
        QStringLiteral("print what may follow a word, for shells"),
        "Usage: selector complete url|place|module [WORD]\n"
        "Prints, one a line, the words that go on from WORD by one name: modules, objects,\n"
        "instances, groups and leaves of the running system; for a URL, for a place as browse\n"
        "takes it, or for the name of a module as doctor takes it. Prints nothing, and no\n"
        "reason, when the system does not answer. The completions for bash, zsh and fish use it.\n",
        {{"--timeout S", "seconds that one call to a service may take (0.5)", "", Option::Seconds}},
        "The output is the same in each format, and the exit code 0 also\n"
        "when nothing was found.\n"
        "\nExample: selector complete url processdata://PumpStation/\n",
        {Arguments::Words, 1, "url place module"},
        run};
}
