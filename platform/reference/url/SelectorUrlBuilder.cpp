// SPDX-License-Identifier: MIT
// Builds selector URLs from names.
#include "SelectorUrlBuilder.h"

#include <QStringList>
#include <QUrl>

QString selectorUrl(const QString &moduleName, const QString &objectName,
                    const QString &instanceName, const QString &path)
{
    QStringList parts{moduleName, objectName, instanceName};
    parts += path.split(QLatin1Char('/'));
    for (QString &part : parts) {
        part = QString::fromLatin1(QUrl::toPercentEncoding(part));
    }
    return QStringLiteral("processdata://") + parts.join(QLatin1Char('/'));
}
