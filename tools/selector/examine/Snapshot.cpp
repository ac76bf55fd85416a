// SPDX-License-Identifier: MIT
// Reads and makes snapshots.
#include "Snapshot.h"

#include "ExactJson.h"
#include "PropertyManagerConst.h"
#include "SelectorUrlHandler.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

namespace {

constexpr int deepestLevel = 64; // what descriptions may have at most

QString place(const QString &module, const QString &object, const QString &instance)
{
    return QStringLiteral("%1/%2/%3").arg(module, object, instance);
}

// Whether a path is that of a group, in it, or on the way to it.
bool isOnTheWay(const QString &path, const QString &group)
{
    const QLatin1Char slash('/');
    return group.isEmpty() || (path + slash).startsWith(group + slash)
        || (group + slash).startsWith(path + slash);
}

QJsonArray kept(const QJsonArray &elements, const QString &prefix, int level,
                const QHash<QString, QJsonValue> &values, const QString &group)
{
    const QLatin1String below("elements");
    QJsonArray result;
    for (const QJsonValue &element : elements) {
        QJsonObject object = element.toObject();
        const QString path = prefix + object.value(QLatin1String("name")).toString();
        if (!isOnTheWay(path, group)) {
            continue;
        }
        object.remove(QLatin1String("offset"));
        object.remove(QLatin1String("simulate"));
        if (object.value(below).isArray() && level < deepestLevel) {
            object.insert(below,
                          kept(object.value(below).toArray(), path + QLatin1Char('/'), level + 1,
                               values, group));
        } else if (values.contains(path)) {
            object.insert(QStringLiteral("simulate"),
                          QJsonObject{{QStringLiteral("kind"), QStringLiteral("constant")},
                                      {QStringLiteral("value"), values.value(path)}});
        }
        result.append(object);
    }
    return result;
}

QString escaped(const QString &name)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

} // namespace

QJsonObject snapshotOf(const QJsonObject &document, const QHash<QString, QJsonValue> &values,
                       const QString &group)
{
    QJsonObject result = document;
    result.remove(QLatin1String("buffer"));
    result.remove(QLatin1String("session"));
    result.insert(
        QStringLiteral("elements"),
        kept(document.value(QLatin1String("elements")).toArray(), QString(), 1, values, group));
    return result;
}

QString snapshotFileName(const QString &module, const QString &object, const QString &instance)
{
    // Module and object contain no "_", so no two sources share a name.
    return QStringLiteral("%1_%2_%3.%4")
        .arg(escaped(module), escaped(object), escaped(instance),
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
    SnapshotSource source{module.toString(), object.toString(), instance.toString(), {}};
    const QString key = place(source.module, source.object, source.instance);
    if (all.contains(key)) {
        error = QStringLiteral("%1: %2 stands in another file already").arg(fileName, key);
        return false;
    }
    QHash<QString, QJsonObject> byPath;
    QVector<DescribedLeaf> leaves = leavesBelow(document, QString());
    for (DescribedLeaf &leaf : leaves) {
        for (const char *name : {"offset", "session", "simulate"}) {
            leaf.properties.remove(QLatin1String(name));
        }
        byPath.insert(leaf.path, leaf.properties);
        source.leaves.append(leaf);
    }
    leavesByPath.insert(key, byPath);
    all.insert(key, source);
    return true;
}

FoundLeaf Snapshot::find(const SelectorUrlHandler &url) const
{
    const QString key = place(url.getModuleName(), url.getObjectName(), url.getInstance());
    const auto source = leavesByPath.find(key);
    if (source == leavesByPath.end()) {
        return {{Finding::NoSuchInstance, QStringLiteral("the snapshot has no %1").arg(key)}, {}};
    }
    const auto leaf = source->find(leafPathOf(url));
    if (leaf == source->end()) {
        return {{Finding::NoSuchLeaf, QStringLiteral("%1 has no such leaf").arg(key)}, {}};
    }
    return {{}, *leaf};
}
