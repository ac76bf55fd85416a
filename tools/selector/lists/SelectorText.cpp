// SPDX-License-Identifier: MIT
// Takes labels off selectors and gives short paths their scheme.
#include "SelectorText.h"

#include "ConfigurationAndProcessDataDefinitions.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

const QLatin1String schemeEnd("://");

QString withoutQuery(const QString &url)
{
    return url.section(QLatin1Char('?'), 0, 0);
}

// An empty one is left as it is: a script that fills in an empty variable should hear of it.
QString inFull(const QString &selector)
{
    return selector.isEmpty() || selector.contains(schemeEnd)
        ? selector
        : ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData() + schemeEnd
            + selector;
}

} // namespace

SelectorText selectorText(const QString &typed)
{
    static const QRegularExpression labelled(QStringLiteral("^([\\p{L}_][\\p{L}\\p{N}_.-]*)=(.*)$"),
                                             QRegularExpression::UseUnicodePropertiesOption
                                                 | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = labelled.match(typed);
    if (match.hasMatch()) {
        return {match.captured(1), inFull(match.captured(2))};
    }
    return {QString(), inFull(typed)};
}

bool holdsPattern(const QString &url)
{
    return withoutQuery(url).contains(QLatin1Char('*'));
}

QString lastPartOf(const QString &url)
{
    return QUrl::fromPercentEncoding(withoutQuery(url).section(QLatin1Char('/'), -1).toUtf8());
}
