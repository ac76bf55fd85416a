// SPDX-License-Identifier: MIT
// Script of a platform without bus and shared memory: what it answers and what it was asked.
#ifndef SCRIPTEDPLATFORM_H
#define SCRIPTEDPLATFORM_H

#include "ScriptedSource.h"

#include <QByteArray>
#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

class SystemStatusManagerDBusConnector;

/// What SelectorUrlHandler says of one text, where the test wants another answer than parsing
/// gives.
struct ScriptedUrl
{
    QString url;
    QString scheme;
    QString moduleName;
    QString objectName;
    QString instance;
    bool valid = true;
    bool deactivated = false;
};

/// The script that all contract classes of this body answer from, for as long as it lives.
///
/// Make it before the objects under test. One at a time. Keys, scheme and file extension are unlike
/// those of the reference platform, so that nobody can have spelt them himself:
/// scripted://module/object/instance/leaf[?off].
class PROCESSDATAPLATFORM_EXPORT ScriptedPlatform
{
public:
    ScriptedPlatform();
    ~ScriptedPlatform();
    ScriptedPlatform(const ScriptedPlatform &) = delete;
    ScriptedPlatform &operator=(const ScriptedPlatform &) = delete;

    /// The script that is in force; null when none lives.
    static ScriptedPlatform *current();

    /// The script of an instance, added when it is asked for the first time.
    ScriptedSource &source(const QString &moduleName, const QString &objectName,
                           const QString &instance);
    /// The answers for one text, prefilled with what parsing gives.
    ScriptedUrl &url(const QString &text);

    ScriptedPlatform &statusManagerMissing(bool on = true);
    /// Emits orvalisStartupReady of every living status manager connector, in the calling thread.
    void announceStartupReady();
    /// Bytes that the parser leaves for a null node; none unless told.
    ScriptedPlatform &nullNodesRenderAs(const QByteArray &bytes);

    /// Runs @p hook inside every call of an operation, written as "ProcessDataValue::getValue".
    void during(const QString &operation, std::function<void()> hook);

    /// Calls since the start or the last forgetCalls(), in order; of the given classes only.
    QStringList calls(const QStringList &classNames = {}) const;
    void forgetCalls();
    /// For long loops: stops writing calls down.
    void stopRecording();
    /// Living objects of a contract class. Roots count as ConfigurationAndProcessDataBase.
    int alive(const QString &className) const;

    // For the contract classes.
    static ScriptedUrl parsed(const QString &text);
    ScriptedUrl answersFor(const QString &text) const;
    QSharedPointer<ScriptedService> service(const QString &moduleName, const QString &objectName);
    QSharedPointer<ScriptedSource> find(const QString &moduleName, const QString &objectName,
                                        const QString &instance) const;
    void describes(const QVariant &description, const ScriptedSource *source);
    QSharedPointer<ScriptedSource> describedBy(const QVariant &description) const;
    bool hasStatusManager() const { return statusManager; }
    void made(SystemStatusManagerDBusConnector *connector);
    QByteArray nullNode() const { return nullRendering; }

private:
    QMap<QString, QSharedPointer<ScriptedService>> services;
    QMap<QString, QSharedPointer<ScriptedSource>> sources;
    QMap<QString, QString> sourceOfDescription;
    QMap<QString, ScriptedUrl> urls;
    QVector<QPointer<SystemStatusManagerDBusConnector>> statusManagers;
    QByteArray nullRendering;
    bool statusManager = true;
};

#endif
