// SPDX-License-Identifier: MIT
// Takes labels off selectors.
#include "WatchTargets.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

QString lastSegment(const QString &url)
{
    const QString path = url.left(url.indexOf(QLatin1Char('?')));
    return QUrl::fromPercentEncoding(path.mid(path.lastIndexOf(QLatin1Char('/')) + 1).toUtf8());
}

} // namespace

WatchTarget watchTarget(const QString &text)
{
    static const QRegularExpression labelled(QStringLiteral("^([\\p{L}_][\\p{L}\\p{N}_.-]*)=(.*)$"),
                                             QRegularExpression::UseUnicodePropertiesOption
                                                 | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = labelled.match(text);
    if (match.hasMatch()) {
        return {match.captured(1), match.captured(2)};
    }
    return {lastSegment(text), text};
}

QVector<WatchTarget> watchTargets(const QVector<QString> &texts)
{
    QVector<WatchTarget> targets;
    targets.reserve(texts.size());
    for (const QString &text : texts) {
        targets.append(watchTarget(text));
    }
    return targets;
}

QVector<QString> urlsOf(const QVector<WatchTarget> &targets)
{
    QVector<QString> urls;
    urls.reserve(targets.size());
    for (const WatchTarget &target : targets) {
        urls.append(target.url);
    }
    return urls;
}
