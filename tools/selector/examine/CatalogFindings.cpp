// SPDX-License-Identifier: MIT
// What the catalog says, as findings and with exact numbers.
#include "CatalogFindings.h"

#include "DescriptionEdits.h"

Finding findingOf(const CatalogAnswer &answer)
{
    return answer.isOk() ? Finding() : unanswered({answer.result, answer.text});
}

Finding missOf(const CatalogMatch &match)
{
    const QString advice = QStringLiteral("selector browse -r shows what is there");
    switch (match.missing) {
    case CatalogMatch::Module:
        return {Finding::ServiceMissing, match.hint, advice};
    case CatalogMatch::Object:
    case CatalogMatch::Instance:
        return {Finding::NoSuchInstance, match.hint, advice};
    case CatalogMatch::Path:
        return {Finding::NoSuchLeaf, match.hint, advice};
    case CatalogMatch::None:
        break;
    }
    return match.failed.isEmpty()
        ? Finding(Finding::NoSuchLeaf, QStringLiteral("nothing matches"), advice)
        : findingOf(match.failed.constFirst().answer);
}

QHash<QString, QJsonObject> exactProperties(const CatalogSource &source)
{
    QHash<QString, QJsonObject> properties;
    const auto leaves = leavesBelow(source.description, QString());
    for (const DescribedLeaf &leaf : leaves) {
        properties.insert(leaf.path, leaf.properties);
    }
    return properties;
}
