// SPDX-License-Identifier: MIT
// A handler with one scripted source, and all that it tells its client.
#ifndef CHANGECLIENT_H
#define CHANGECLIENT_H

#include "IndexLists.h"
#include "SelectorHandlerProcessValue.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QString>
#include <QVector>
#include <QtTest>

/// Records from the moment on at which the list stands. The source has the leaves a and b.
struct ChangeClient
{
    UnlikePlatform platform;
    ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1).leaf("b", 2);
    SelectorHandlerProcessValue handler;
    QSignalSpy descriptions{&handler, SIGNAL(processDataDescriptionChanged(QVector<int>))};
    QSignalSpy properties{&handler, SIGNAL(propertyChanged(QVector<int>))};
    WarningLog warnings;

    explicit ChangeClient(const QVector<QString> &urls)
        : handler(urls, nullptr)
    {
        platform.forgetCalls();
        warnings.clear();
    }
    void announce(const char *slot, const QString &key)
    {
        QVERIFY(QMetaObject::invokeMethod(&handler, slot, Q_ARG(QString, key)));
    }
};

#endif
