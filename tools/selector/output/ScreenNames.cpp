// SPDX-License-Identifier: MIT
// Finds what names have in common.
#include "ScreenNames.h"

#include <QUrl>
#include <QVector>

#include <algorithm>

namespace {

const QLatin1String schemeEnd("://");

// What is not text when decoded stays encoded.
QString decoded(const QString &name)
{
    QString text = QUrl::fromPercentEncoding(name.toUtf8());
    return text.contains(QChar::ReplacementCharacter) ? name : text;
}

// Each with the "/" behind it; the scheme is the first.
QStringList partsOf(const QString &name)
{
    QStringList parts;
    int begin = 0;
    const int scheme = name.indexOf(schemeEnd);
    if (scheme >= 0) {
        begin = scheme + schemeEnd.size();
        parts.append(name.left(begin));
    }
    const int query = name.indexOf(QLatin1Char('?'), begin);
    const int end = query < 0 ? name.size() : query;
    int slash = name.indexOf(QLatin1Char('/'), begin);
    while (slash >= 0 && slash < end) {
        parts.append(name.mid(begin, slash + 1 - begin));
        begin = slash + 1;
        slash = name.indexOf(QLatin1Char('/'), begin);
    }
    parts.append(name.mid(begin));
    return parts;
}

// How many of the first parts are alike in all, without the last one of each. A place that ends in
// "/" has an empty last part, which would leave nothing of it.
int commonCount(const QVector<QStringList> &all)
{
    if (all.isEmpty()) {
        return 0;
    }
    int count = all.first().size();
    for (const QStringList &parts : all) {
        count = std::min(count, parts.last().isEmpty() ? parts.size() - 2 : parts.size() - 1);
        for (int i = 0; i < count; ++i) {
            count = parts.at(i) == all.first().at(i) ? count : i;
        }
    }
    return std::max(0, count);
}

} // namespace

ScreenNames ScreenNames::of(const QStringList &names)
{
    const bool urls = std::any_of(names.begin(), names.end(),
                                  [](const QString &name) { return name.contains(schemeEnd); });
    QVector<QStringList> all;
    QVector<bool> shares;
    for (const QString &name : names) {
        shares.append(!name.isEmpty() && (!urls || name.contains(schemeEnd)));
        if (shares.last()) {
            all.append(partsOf(name));
        }
    }
    const int count = commonCount(all);
    const QString common
        = all.isEmpty() ? QString() : QStringList(all.first().mid(0, count)).join(QString());
    ScreenNames result;
    result.common = decoded(common);
    for (int i = 0; i < names.size(); ++i) {
        result.rests.append(decoded(shares.at(i) ? names.at(i).mid(common.size()) : names.at(i)));
    }
    return result;
}
