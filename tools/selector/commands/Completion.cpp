// SPDX-License-Identifier: MIT
// Goes on from what is typed.
#include "Completion.h"

#include "SelectorText.h"

#include <QUrl>

namespace {

QString encoded(const QString &name)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

} // namespace

TypedPlace typedPlace(const QString &text, bool isUrl)
{
    const QString scheme = QStringLiteral("processdata://");
    const QString label = isUrl ? selectorText(text).label : QString();
    TypedPlace place;
    place.base = text.left(label.isEmpty() ? 0 : label.size() + 1);
    QString rest = text.mid(place.base.size());
    const bool isScheme = isUrl && !rest.isEmpty() && scheme.startsWith(rest);
    if (isScheme || rest.startsWith(scheme)) {
        place.base += scheme;
        rest = rest.mid(scheme.size());
    }
    const int slash = rest.lastIndexOf(QLatin1Char('/'));
    place.base += rest.leftRef(slash + 1);
    place.begin = rest.mid(slash + 1);
    const QStringList names = slash < 0 ? QStringList() : rest.left(slash).split(QLatin1Char('/'));
    for (const QString &name : names) {
        place.names.append(QUrl::fromPercentEncoding(name.toUtf8()));
    }
    return place;
}

QStringList completions(const TypedPlace &place, const QStringList &names, const QString &end)
{
    QStringList words;
    for (const QString &name : names) {
        const bool group = name.endsWith(QLatin1Char('/'));
        const QString word
            = group ? encoded(name.chopped(1)) + QLatin1Char('/') : encoded(name) + end;
        if (word.startsWith(place.begin) || name.startsWith(place.begin)) {
            words.append(place.base + word);
        }
    }
    return words;
}

QStringList namesBelow(const QStringList &paths, const QString &group)
{
    const QString prefix = group.isEmpty() ? QString() : group + QLatin1Char('/');
    QStringList names;
    for (const QString &path : paths) {
        if (path.startsWith(prefix)) {
            const int slash = path.indexOf(QLatin1Char('/'), prefix.size());
            names.append(slash < 0 ? path.mid(prefix.size())
                                   : path.mid(prefix.size(), slash + 1 - prefix.size()));
        }
    }
    names.removeDuplicates();
    return names;
}
