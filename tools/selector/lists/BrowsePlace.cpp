// SPDX-License-Identifier: MIT
// Takes places apart.
#include "BrowsePlace.h"

#include "ConfigurationAndProcessDataDefinitions.h"

#include <QStringList>
#include <QUrl>

namespace {

QString decoded(const QString &part)
{
    return QUrl::fromPercentEncoding(part.toUtf8());
}

constexpr int firstGroup = 3;

} // namespace

bool parseBrowsePlace(const QString &text, BrowsePlace &place, QString &error)
{
    const QString scheme = ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
        + QStringLiteral("://");
    const QString bare = text.startsWith(scheme) ? text.mid(scheme.size()) : text;
    QStringList parts = bare.split(QLatin1Char('/'));
    // A slash at the end of a module or a group is a habit; behind an object it names the instance
    // "".
    if (parts.size() != firstGroup && parts.size() > 1 && parts.constLast().isEmpty()) {
        parts.removeLast();
    }
    for (int i = 0; i < parts.size(); ++i) {
        if (parts.at(i).isEmpty() && i != firstGroup - 1) {
            error = QStringLiteral("\"%1\" has an empty part; expected MODULE/OBJECT/INSTANCE")
                        .arg(text);
            return false;
        }
        parts[i] = decoded(parts.at(i));
    }
    place.module = parts.value(0);
    place.object = parts.value(1);
    place.instance = parts.value(2);
    place.group = QStringList(parts.mid(firstGroup)).join(QLatin1Char('/'));
    place.level = static_cast<BrowsePlace::Level>(qMin(parts.size(), firstGroup));
    return true;
}
