// SPDX-License-Identifier: MIT
// Descriptions, selectors and index lists as the integration tests write them.
#include "Descriptions.h"

#include <QCoreApplication>
#include <QDir>

QString uniqueModule()
{
    static int counter = 0;
    ++counter;
    return QString("It%1x%2").arg(QCoreApplication::applicationPid()).arg(counter);
}

QStringList buffersOf(const QString &text)
{
    const QStringList all
        = QDir("/dev/shm").entryList({"*" + text + "*"}, QDir::AllEntries | QDir::System);
    QStringList buffers = all;
    for (const QString &name : all) {
        buffers.removeAll(name + ".life");
    }
    return buffers;
}

void removeLeftBuffers(const QString &module)
{
    QDir sharedMemory("/dev/shm");
    const QStringList left
        = sharedMemory.entryList({"*" + module + "*"}, QDir::Files | QDir::System);
    for (const QString &name : left) {
        sharedMemory.remove(name);
    }
}

QJsonObject leaf(const QString &name, const QString &type, const QJsonObject &more)
{
    QJsonObject result = more;
    result.insert("name", name);
    result.insert("type", type);
    return result;
}

QJsonObject description(const QJsonArray &elements)
{
    return {{"format", "process-data-description/1"}, {"elements", elements}};
}

QString selectorUrl(const QString &module, const QString &path, const QString &object,
                    const QString &instance)
{
    return QString("processdata://%1/%2/%3/%4").arg(module, object, instance, path);
}

IndexLists indexLists(const QSignalSpy &spy)
{
    IndexLists result;
    for (const QList<QVariant> &arguments : spy) {
        result.append(arguments.at(0).value<QVector<int>>());
    }
    return result;
}
