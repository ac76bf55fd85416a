// SPDX-License-Identifier: MIT
// The least that setting a list up can cost with Qt's own JSON: what the library is measured
// against.
#ifndef SETUPFLOOR_H
#define SETUPFLOOR_H

#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QVector>

/// What one selector is set up to: its leaf, and its leaf's properties as text.
struct FloorSelector
{
    QJsonObject leaf;
    QString rendered;
};

/// Parses a description, puts its leaves into a hash, splits each URL by hand, looks its leaf up
/// and renders it. No bus, no checks, no memory.
inline QVector<FloorSelector> setUpFloor(const QByteArray &description,
                                         const QVector<QString> &urls)
{
    QHash<QString, QJsonObject> leaves;
    const QJsonArray elements
        = QJsonDocument::fromJson(description).object().value(QLatin1String("elements")).toArray();
    for (const QJsonValue &element : elements) {
        const QJsonObject leaf = element.toObject();
        leaves.insert(leaf.value(QLatin1String("name")).toString(), leaf);
    }
    QVector<FloorSelector> selectors;
    selectors.reserve(urls.size());
    for (const QString &url : urls) {
        // scheme://module/object/instance/path
        int slash = url.indexOf(QLatin1String("://")) + 2;
        for (int i = 0; i < 3; ++i) {
            slash = url.indexOf(QLatin1Char('/'), slash + 1);
        }
        const QJsonObject leaf = leaves.value(url.mid(slash + 1));
        selectors.append(
            {leaf, QString::fromUtf8(QJsonDocument(leaf).toJson(QJsonDocument::Compact))});
    }
    return selectors;
}

#endif
