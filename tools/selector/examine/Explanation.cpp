// SPDX-License-Identifier: MIT
// The steps before and behind those of a selector's source.
#include "Explanation.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "ErrorTypeText.h"
#include "LiveLeaves.h"
#include "NearMiss.h"
#include "ValueText.h"

#include <algorithm>

namespace {

constexpr int mostLeaves = 10000; // beyond, looking takes longer than people wait

QString leafSummary(const QJsonObject &leaf)
{
    const QString unit = leaf.value(QLatin1String("unit")).toString();
    const bool readOnly = leaf.value(QLatin1String("readOnly")).toBool();
    return leaf.value(QLatin1String("type")).toString()
        + (unit.isEmpty() ? QString() : QStringLiteral(", unit ") + unit)
        + (readOnly ? QStringLiteral(", read-only") : QStringLiteral(", writable"));
}

// While a publisher replaces its buffer a client may come too late for the old one.
QSharedPointer<SelectorHandlerProcessValue> clientOf(const QString &url)
{
    constexpr int attempts = 3;
    QSharedPointer<SelectorHandlerProcessValue> handler;
    for (int i = 0; i < attempts; ++i) {
        // The text without its query: a deactivated selector has no value at any client.
        handler.reset(
            new SelectorHandlerProcessValue({url.section(QLatin1Char('?'), 0, 0)}, nullptr));
        const LeafValue value = handler->getValue(0);
        if (!value.isMissing() && value.errorType != ProcessDataAccess::ErrorType::SourceLost) {
            break;
        }
    }
    return handler;
}

// Walks one way; each step says whether it is passed.
class Walk
{
public:
    Walk(const QString &url, const QStringList &properties)
        : url(url)
        , properties(properties)
        , parts(parseSelectorUrl(url))
    {
    }

    bool text();
    bool bus();
    bool source();
    bool leaf();
    bool property();
    bool value();

    Explanation result;

private:
    bool pass(const QString &found)
    {
        result.passed.append(found);
        return true;
    }
    bool fail(Finding::Code code, const QString &found, const QString &advice)
    {
        result.finding = {code, found, advice};
        return false;
    }

    const QString url;
    const QStringList properties;
    const SelectorUrlParts parts;
    PlatformDetails::Services services;
    Examination found;
    QJsonObject description; // of the leaf
};

// Text, scheme and module.
bool Walk::text()
{
    if (!parts.valid && !parts.sourceNameRefused) {
        return fail(Finding::InvalidUrl, parts.problem,
                    QStringLiteral("write processdata://MODULE/OBJECT/INSTANCE/GROUP/LEAF, "
                                   "special characters percent-encoded"));
    }
    pass(parts.deactivated ? QStringLiteral("well formed, deactivated: clients leave it out")
                           : QStringLiteral("well formed"));
    const QString wanted
        = ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData();
    const QString scheme = url.section(QStringLiteral("://"), 0, 0);
    if (scheme != wanted) {
        return fail(Finding::WrongScheme, QStringLiteral("the scheme is \"%1\"").arg(scheme),
                    QStringLiteral("process data has the scheme \"%1\"").arg(wanted));
    }
    pass(scheme);
    if (!parts.valid) {
        return fail(Finding::InvalidUrl, parts.problem,
                    QStringLiteral("use the name that selector modules lists; module and object "
                                   "hold no \"_\""));
    }
    return pass(parts.source.module);
}

bool Walk::bus()
{
    result.finding = busFinding(
        ask([&](QString &error) { return PlatformDetails::fetchServices(services, error); }));
    return result.finding.isNone() && pass(busText(services));
}

// What was found at the steps of the source, as far as they are passed.
bool Walk::source()
{
    found = examine(parts.source);
    const QStringList all = QStringList{PlatformDetails::ownerText(found.owner),
                                        QStringLiteral("object \"%1\", instance \"%2\"")
                                            .arg(parts.source.object, parts.source.instance)}
        + PlatformDetails::bufferTexts(found.buffer);
    result.passed += all.mid(0, int(found.end) - int(Step::Owner));
    result.finding = found.cause;
    if (found.end == Step::Owner && found.cause.code == Finding::ServiceMissing
        && services.listed) {
        result.finding.advice
            += QStringLiteral("; running modules: ") + quotedList(services.modules);
    }
    return found.cause.isNone();
}

bool Walk::leaf()
{
    const QString place = parts.source.toString();
    const auto leaves = leavesBelow(found.description, QString());
    const auto wanted = std::find_if(leaves.begin(), leaves.end(), [this](const auto &one) {
        return !parts.path.isNull() && one.path == parts.path;
    });
    if (wanted == leaves.end()) {
        QStringList paths;
        for (int i = 0; i < std::min(mostLeaves, leaves.size()); ++i) {
            paths.append(leaves.at(i).path);
        }
        const QString guess = didYouMean(parts.path, paths);
        return fail(Finding::NoSuchLeaf,
                    QStringLiteral("%1 has no leaf \"%2\"").arg(place, parts.path),
                    (guess.isEmpty() ? QString() : guess + QLatin1Char(' '))
                        + QStringLiteral("selector browse %1 lists its leaves").arg(place));
    }
    description = wanted->properties;
    return pass(parts.path);
}

bool Walk::property()
{
    if (!properties.isEmpty()) {
        // Not the description's keys: clients know properties that are in none.
        const auto handler = clientOf(url);
        const QStringList known = propertiesOf(*handler, 0).keys();
        for (const QString &name : properties) {
            if (!handler->getProperties(name).constFirst().isValid()) {
                return fail(Finding::NoSuchProperty,
                            QStringLiteral("the leaf has no property \"%1\"").arg(name),
                            QStringLiteral("it has: %1").arg(known.join(QLatin1String(", "))));
            }
        }
    }
    return pass(leafSummary(description));
}

bool Walk::value()
{
    const LeafValue value = clientOf(url)->getValue(0);
    if (!value.isGood()) {
        return fail(Finding::NotReadable,
                    QStringLiteral("%1: %2").arg(errorTypeName(value.errorType),
                                                 explainErrorType(value.errorType)),
                    QStringLiteral("nothing is in the way; the cause is in the service %1")
                        .arg(found.owner.service));
    }
    return pass(QStringLiteral("NoError, of %1").arg(timeToText(value.timestamp)));
}

} // namespace

Explanation explainSelector(const QString &url, const QStringList &properties)
{
    Walk walk(url, properties);
    if (walk.text() && walk.bus() && walk.source() && walk.leaf() && walk.property()) {
        walk.value();
    }
    return walk.result;
}
