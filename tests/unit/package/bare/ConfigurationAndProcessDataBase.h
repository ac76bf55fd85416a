// SPDX-License-Identifier: MIT
// A node whose operations are not const.
#ifndef CONFIGURATIONANDPROCESSDATABASE_H
#define CONFIGURATIONANDPROCESSDATABASE_H

#include <QHash>
#include <QJsonObject>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

class ProcessDataValue;

class ConfigurationAndProcessDataBase
{
public:
    typedef QSharedPointer<ProcessDataValue> ProcessDataValueSharedPointer;
    virtual ~ConfigurationAndProcessDataBase();
    ConfigurationAndProcessDataBase(const ConfigurationAndProcessDataBase &) = delete;
    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url);
    virtual QVariant readLeafProperty(const QString &name);
    virtual bool hasLeafProperty(const QString &name);

protected:
    ConfigurationAndProcessDataBase();
    QJsonObject properties;

private:
    friend class ConfigurationAndProcessDataParser;
    friend class ProcessDataManager;
    QHash<QString, ProcessDataValueSharedPointer> leaves;
};

#endif
