// SPDX-License-Identifier: MIT
// A service that does on the bus exactly what a test orders, in a process of its own.
#include "ScriptedService.h"

#include <QJsonDocument>

namespace {
const QString path("/com/orvalis/ProcessData/Controller");
}

ScriptedService::ScriptedService(const QString &module)
    : child(QStringLiteral(BUS_SERVICE_HELPER), {})
    , service("com.orvalis.ProcessData." + module)
{
    child.start();
}

bool ScriptedService::comeUp()
{
    return order({"export", path}) == "ok" && order({"own", service}) == "ok";
}

bool ScriptedService::serve(const QString &instance, const QString &text)
{
    return order({"set", instance, text}) == "ok" && comeUp();
}

QByteArray ScriptedService::order(const QStringList &words)
{
    child.write(words.join('\t').toUtf8());
    return child.nextLine();
}

bool ScriptedService::orderAll(const QList<QStringList> &orders)
{
    for (const QStringList &words : orders) {
        child.write(words.join('\t').toUtf8());
    }
    bool good = true;
    for (int i = 0; i < orders.size() && good; ++i) {
        good = child.nextLine() == "ok";
    }
    return good;
}

bool ScriptedService::describe(const QString &instance, const QByteArray &text)
{
    return order({"set", instance, QString::fromUtf8(text)}) == "ok";
}

bool ScriptedService::announce(const QString &instance, const QString &member)
{
    return order(announcement(instance, member)) == "ok";
}

QStringList ScriptedService::announcement(const QString &instance, const QString &member)
{
    return {"signal", path, "com.orvalis.ProcessDescription1", member, instance};
}

int ScriptedService::fetches()
{
    return order({"count"}).toInt();
}

void ScriptedService::beginStorm(int count, int instances)
{
    outputBeforeStorm = child.output().size();
    child.write(QStringList({"storm", path, "ProcessDataDescriptionChanged", QString::number(count),
                             QString::number(instances)})
                    .join('\t')
                    .toUtf8());
}

int ScriptedService::stormTime()
{
    if (child.output().indexOf('\n', outputBeforeStorm) < 0) {
        return -1;
    }
    return child.nextLine().toInt();
}

QJsonObject claimed(QJsonObject served, const QString &module, const QString &instance)
{
    served.insert("module", module);
    served.insert("instance", instance);
    return served;
}

QByteArray oneLine(const QJsonObject &document)
{
    return QJsonDocument(document).toJson(QJsonDocument::Compact);
}
