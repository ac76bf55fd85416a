// SPDX-License-Identifier: MIT
// The script in force, as the contract classes of this body ask it.
#ifndef SCRIPT_H
#define SCRIPT_H

#include "ScriptedNames.h"
#include "ScriptedPlatform.h"
#include "SourceScript.h"

#include <QMap>
#include <QPointer>

class SystemStatusManagerDBusConnector;

/// State of the platform. Static operations speak of the script in force; without one they answer
/// as a platform without any source does.
class Script
{
public:
    explicit Script(ScriptedNames names)
        : chosenNames(std::move(names))
    {
    }

    static Script *current();
    static void enter(Script *script); // null: none is in force

    static const ScriptedNames &names();
    static ScriptedUrl parsed(const QString &text);
    static ScriptedUrl answersFor(const QString &text);
    static QSharedPointer<ServiceScript> service(const QString &moduleName,
                                                 const QString &objectName);
    static QSharedPointer<SourceScript> find(const QString &moduleName, const QString &objectName,
                                             const QString &instance);
    static QVector<QSharedPointer<SourceScript>>
    instancesOf(const QSharedPointer<ServiceScript> &service);
    static void describes(const QVariant &description, const SourceScript &source);
    static QSharedPointer<SourceScript> describedBy(const QVariant &description);

    static QString keyOf(const QStringList &parts) { return parts.join(QLatin1Char('\n')); }

    const ScriptedNames chosenNames;
    QMap<QString, QSharedPointer<ServiceScript>> services;
    QMap<QString, ScriptedSource> sources;
    QMap<QString, QString> sourceOfDescription;
    QMap<QString, ScriptedUrl> urls;
    QVector<QPointer<SystemStatusManagerDBusConnector>> statusManagers;
    QByteArray nullRendering;
    bool statusManager = true;
};

#endif
