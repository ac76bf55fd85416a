// SPDX-License-Identifier: MIT
// The main function of tests in whose process the platform's bus threads run.
#ifndef BUSTESTMAIN_H
#define BUSTESTMAIN_H

#include <QCoreApplication>
#include <QtTest>

/// Instead of QTEST_GUILESS_MAIN. That one ends QtTest while the bus threads still run, and a thread
/// that warns of a lost bus at this moment ends the process: QtTest deletes its log without a lock.
/// Here the application ends first, and the bus threads with it.
template <typename Test> int runBusTest(int argc, char **argv)
{
    int failures = 0;
    {
        const QCoreApplication application(argc, argv);
        Test test;
        QTest::qInit(&test, argc, argv);
        failures = QTest::qRun();
    }
    QTest::qCleanup();
    return failures;
}

#define BUS_TEST_MAIN(Test)                                                                        \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        return runBusTest<Test>(argc, argv);                                                       \
    }

#endif
