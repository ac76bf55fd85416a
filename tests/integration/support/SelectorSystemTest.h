// SPDX-License-Identifier: MIT
// What the tests of the command-line client start with: the system's services and one publisher.
#ifndef SELECTORSYSTEMTEST_H
#define SELECTORSYSTEMTEST_H

#include "SystemTest.h"

#include <QJsonArray>
#include <QString>
#include <QStringList>

/// Base of the test classes, whose init() calls bringUp() after SystemTest::init().
class SelectorSystemTest : public SystemTest
{
    Q_OBJECT

protected Q_SLOTS:
    void cleanup();

protected:
    /// Starts the status and information managers, and a publisher that serves the elements as
    /// instance 1 of object Controller of the module.
    void bringUp(const QJsonArray &elements);

    /// Whether the information manager knows the module by now.
    static bool isRegistered(const QString &moduleName);

    /// With the module's name in place of MODULE: rows of test data are made before it has one.
    QStringList filledIn(QStringList texts) const;
    QByteArray filledIn(QString text) const;

    QScopedPointer<ChildProcess> system;
    QScopedPointer<PublisherProcess> publisher;
};

#endif
