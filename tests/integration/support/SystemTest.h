// SPDX-License-Identifier: MIT
// What every test of the whole system starts with: a bus of its own and a fresh module name.
#ifndef SYSTEMTEST_H
#define SYSTEMTEST_H

#include "Descriptions.h"
#include "IndexLists.h"
#include "ModuleFiles.h"
#include "PrivateBus.h"
#include "PublisherProcess.h"

#include <QObject>
#include <QScopedPointer>

/// Base of the test classes. QtTest calls its slots around each test function.
class SystemTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// What init() does, on a bus with other limits.
    void startSystem(PrivateBus::Limits limits);

    /// Begin of a command line that takes from root the power to open every file.
    static QStringList powerless();

    QString module;
    QScopedPointer<PrivateBus> bus;
};

/// Fails the test with the publisher's own words.
#define VERIFY_COMMAND(expression)                                                                 \
    do {                                                                                           \
        const QByteArray problem = (expression);                                                   \
        QVERIFY2(problem.isEmpty(), problem.constData());                                          \
    } while (false)

#endif
