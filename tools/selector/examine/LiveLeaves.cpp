// SPDX-License-Identifier: MIT
// Looks leaves up in the running system.
#include "LiveLeaves.h"

#include "ExactJson.h"

namespace {

QVector<QString> urlsOf(const QVector<ListLine> &lines)
{
    QVector<QString> urls;
    urls.reserve(lines.size());
    for (const ListLine &line : lines) {
        urls.append(line.url);
    }
    return urls;
}

} // namespace

LiveLeaves::LiveLeaves(const QVector<ListLine> &lines)
    : values(urlsOf(lines), nullptr)
{
}

FoundLeaf LiveLeaves::find(int position, const QString &url)
{
    const QJsonObject properties = exactObject(values.getPropertyAsJsonString(position).toUtf8());
    if (!properties.isEmpty()) {
        return {{}, properties};
    }
    const Finding finding = diagnosis.explain(url);
    if (finding.code != Finding::None) {
        return {finding, {}};
    }
    return {{Finding::NotReadable, QStringLiteral("the leaf has only just appeared, try again")},
            {}};
}
