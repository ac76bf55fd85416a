// SPDX-License-Identifier: MIT
// Reads and makes snapshots.
#include "Snapshot.h"

#include "ExactJson.h"
#include "PropertyManagerConst.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>

namespace {

QString escaped(const QString &name)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

} // namespace

QJsonObject snapshotOf(const QJsonObject &document, const QHash<QString, QJsonValue> &values,
                       const QVector<SelectorPattern> &chosen)
{
    QJsonObject result = withElements(document, [&](const QString &path, QJsonObject &element) {
        element.remove(QLatin1String("offset"));
        element.remove(QLatin1String("simulate"));
        if (values.contains(path)) {
            element.insert(QStringLiteral("simulate"),
                           QJsonObject{{QStringLiteral("kind"), QStringLiteral("constant")},
                                       {QStringLiteral("value"), values.value(path)}});
        }
        const bool isGroup = element.contains(QLatin1String("elements"));
        return std::any_of(chosen.begin(), chosen.end(), [&](const SelectorPattern &place) {
            return isGroup ? place.leadsTo(path) : place.matchesLeaf(path);
        });
    });
    result.remove(QLatin1String("buffer"));
    result.remove(QLatin1String("session"));
    return result;
}

QString snapshotFileName(const SourceName &source)
{
    // Module and object contain no "_", so no two sources share a name.
    return QStringLiteral("%1_%2_%3.%4")
        .arg(escaped(source.module), escaped(source.object), escaped(source.instance),
             PropertyManagerConst::getProcessDataDescriptionFileExtension());
}

bool Snapshot::load(const QString &path, Snapshot &snapshot, QString &error)
{
    Snapshot loaded;
    if (!QFileInfo(path).isDir()) {
        if (!loaded.add(path, error)) {
            return false;
        }
        snapshot = loaded;
        return true;
    }
    const QDir directory(path);
    const QStringList files = directory.entryList(
        {QLatin1String("*.") + PropertyManagerConst::getProcessDataDescriptionFileExtension()},
        QDir::Files, QDir::Name);
    if (files.isEmpty()) {
        error = QStringLiteral("%1: no description file (*.%2) in it")
                    .arg(path, PropertyManagerConst::getProcessDataDescriptionFileExtension());
        return false;
    }
    for (const QString &file : files) {
        if (!loaded.add(directory.filePath(file), error)) {
            return false;
        }
    }
    snapshot = loaded;
    return true;
}

bool Snapshot::add(const QString &fileName, QString &error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return false;
    }
    QJsonParseError problem;
    const QByteArray text = file.readAll();
    QJsonDocument::fromJson(text, &problem);
    const QJsonObject document = exactObject(text);
    const QJsonValue module = document.value(QLatin1String("module"));
    const QJsonValue object = document.value(QLatin1String("object"));
    const QJsonValue instance = document.value(QLatin1String("instance"));
    if (problem.error != QJsonParseError::NoError) {
        error = QStringLiteral("%1: %2 at byte %3")
                    .arg(fileName, problem.errorString())
                    .arg(problem.offset);
        return false;
    }
    if (!module.isString() || !object.isString() || !instance.isString()
        || !document.value(QLatin1String("elements")).isArray()) {
        error
            = QStringLiteral("%1: no description: module, object, instance and elements are wanted")
                  .arg(fileName);
        return false;
    }
    const SourceName name{module.toString(), object.toString(), instance.toString()};
    if (all.contains(name)) {
        error = QStringLiteral("%1: %2 stands in another file already")
                    .arg(fileName, name.toString());
        return false;
    }
    SnapshotSource &source = all[name];
    source.leaves = leavesBelow(document, QString());
    for (DescribedLeaf &leaf : source.leaves) {
        for (const char *key : {"offset", "session", "simulate"}) {
            leaf.properties.remove(QLatin1String(key));
        }
        source.byPath.insert(leaf.path, leaf.properties);
    }
    return true;
}

FoundLeaf Snapshot::find(const SelectorUrlParts &parts) const
{
    const QString place = parts.source.toString();
    const auto source = all.find(parts.source);
    if (source == all.end()) {
        return {{Finding::NoSuchInstance, QStringLiteral("the snapshot has no %1").arg(place)}, {}};
    }
    const auto leaf = source->byPath.find(parts.path);
    if (leaf == source->byPath.end()) {
        return {{Finding::NoSuchLeaf, QStringLiteral("%1 has no such leaf").arg(place)}, {}};
    }
    return {{}, *leaf};
}
