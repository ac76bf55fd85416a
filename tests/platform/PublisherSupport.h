// SPDX-License-Identifier: MIT
// What the publisher tests share: descriptions, and a client that attaches as the library does.
#ifndef PUBLISHERSUPPORT_H
#define PUBLISHERSUPPORT_H

#include "ConfigurationAndProcessDataBase.h"
#include "DBusProcessDescriptionConnector.h"
#include "ModuleFiles.h"
#include "ProcessDataManager.h"
#include "ProcessDataPublisher.h"
#include "ProcessDataValue.h"
#include "PropertyManagerConst.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

inline QJsonObject describe(const QString &elements)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(
        QString(R"({"format":"process-data-description/1","elements":%1})").arg(elements).toUtf8(),
        &error);
    return error.error == QJsonParseError::NoError ? document.object() : QJsonObject();
}

/// Three leaves: temperature (read-only), drive/speed and drive/name.
inline QJsonObject pumpDescription()
{
    return describe(R"([
        {"name":"temperature","type":"float64","readOnly":true,"unit":"K","selectorType":"AnalogSelector"},
        {"name":"drive","elements":[
            {"name":"speed","type":"int32","minimum":0,"maximum":3000,"selectorType":"AnalogSelector"},
            {"name":"name","type":"string","capacity":20,"selectorType":"TextSelector"}]}])");
}

/// Fetches an instance's description and attaches to its buffer.
class TestClient
{
public:
    TestClient(const QString &module, const QString &object, const QString &instance)
        : connector(DBusProcessDescriptionConnector::createAndConnect(module, object))
        , url(QString("processdata://%1/%2/%3/").arg(module, object, instance))
        , instance(instance)
    {
    }

    bool attach()
    {
        const DBusReply reply = connector->getProcessDataDescription(instance, QString());
        error = reply.getErrorMessage();
        description = reply.getValue();
        manager.reset(new ProcessDataManager);
        root = manager->createProcessDataFromJson(
            description, PropertyManagerConst::getProcessDataDescriptionFileExtension(),
            ProcessDataManager::InitTypeAttach);
        return !root.isNull() && manager->isBufferValid();
    }

    QSharedPointer<ProcessDataValue> leaf(const QString &path) const
    {
        return root.isNull() ? QSharedPointer<ProcessDataValue>()
                             : root->getLeafProcessDataValue(url + path);
    }

    ProcessValue read(const QString &path) const
    {
        ProcessValue value(ProcessDataDefinitions::NoValue);
        if (const auto found = leaf(path)) {
            found->getValue(value, false);
        }
        return value;
    }

    bool write(const QString &path, const QVariant &value) const
    {
        const auto found = leaf(path);
        return !found.isNull() && found->setValue(ProcessValue(value));
    }

    QJsonObject document() const
    {
        return QJsonDocument::fromJson(description.toString().toUtf8()).object();
    }

    QSharedPointer<DBusProcessDescriptionConnector> connector;
    QString error;
    QVariant description;

private:
    const QString url;
    const QString instance;
    QSharedPointer<ProcessDataManager> manager;
    QSharedPointer<ConfigurationAndProcessDataBase> root;
};

#endif
