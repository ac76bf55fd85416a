// SPDX-License-Identifier: MIT
// Names of selector types.
#include "ClassForm.h"
#include "SelectorHanderDefinitions.h"

#include <QtTest>

#include <thread>
#include <type_traits>
#include <vector>

class SelectorTypesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // First, so that the threads make the first calls.
    void threadsThatCallFirstAllGetTheSameStrings()
    {
        constexpr int threadCount = 8;
        std::vector<const QString *> analog(threadCount);
        std::vector<const QString *> binary(threadCount);
        std::vector<std::thread> threads;
        QSemaphore start;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&, i] {
                start.acquire();
                analog[i] = &SelectorHanderDefinitions::getGlobalAnalogSelectorType();
                binary[i] = &SelectorHanderDefinitions::getGlobalBinarylSelectorType();
            });
        }
        start.release(threadCount);
        for (std::thread &thread : threads) {
            thread.join();
        }

        for (int i = 0; i < threadCount; ++i) {
            QCOMPARE(analog[i], &SelectorHanderDefinitions::getGlobalAnalogSelectorType());
            QCOMPARE(binary[i], &SelectorHanderDefinitions::getGlobalBinarylSelectorType());
        }
    }

    void theNamesAreSpeltExactly()
    {
        const QString &analog = SelectorHanderDefinitions::getGlobalAnalogSelectorType();
        const QString &binary = SelectorHanderDefinitions::getGlobalBinarylSelectorType();

        QCOMPARE(analog, QString("AnalogSelector"));
        QCOMPARE(analog.size(), 14);
        QCOMPARE(binary, QString("DigitalSelector"));
        QCOMPARE(binary.size(), 15);
    }

    void twoCallsReturnTheSameObject()
    {
        QCOMPARE(&SelectorHanderDefinitions::getGlobalAnalogSelectorType(),
                 &SelectorHanderDefinitions::getGlobalAnalogSelectorType());
        QCOMPARE(&SelectorHanderDefinitions::getGlobalBinarylSelectorType(),
                 &SelectorHanderDefinitions::getGlobalBinarylSelectorType());
        QVERIFY(&SelectorHanderDefinitions::getGlobalAnalogSelectorType()
                != &SelectorHanderDefinitions::getGlobalBinarylSelectorType());
    }

    void theTextsAreStaticData()
    {
        QString analog = SelectorHanderDefinitions::getGlobalAnalogSelectorType();
        QString binary = SelectorHanderDefinitions::getGlobalBinarylSelectorType();

        QVERIFY(analog.data_ptr()->ref.isStatic());
        QVERIFY(binary.data_ptr()->ref.isStatic());
    }

    void theClassHasNothingButAVirtualDestructor()
    {
        using Definitions = SelectorHanderDefinitions;
        QVERIFY(std::is_polymorphic<Definitions>::value);
        QVERIFY(std::has_virtual_destructor<Definitions>::value);
        QVERIFY(std::is_default_constructible<Definitions>::value);
        QCOMPARE(sizeof(Definitions), sizeof(void *));

        // The destructor takes slots 0 and 1; the first operation that a derived class adds is 2.
        struct Derived : Definitions
        {
            virtual void added() { }
        };
        QCOMPARE(virtualSlotOf(&Derived::added), 2);
    }

    void theAccessorsNeedNoObject()
    {
        const QString &(*analog)() = &SelectorHanderDefinitions::getGlobalAnalogSelectorType;
        const QString &(*binary)() = &SelectorHanderDefinitions::getGlobalBinarylSelectorType;

        QCOMPARE(analog(), QString("AnalogSelector"));
        QCOMPARE(binary(), QString("DigitalSelector"));
    }

    void anObjectCanBeMadeAndDeletedThroughItsBase()
    {
        struct Derived : SelectorHanderDefinitions
        {
            explicit Derived(bool *ended)
                : ended(ended)
            {
            }
            ~Derived() override { *ended = true; }
            bool *ended;
        };
        bool ended = false;
        const SelectorHanderDefinitions *object = new Derived(&ended);
        delete object;
        QVERIFY(ended);
    }
};

QTEST_GUILESS_MAIN(SelectorTypesTest)
#include "SelectorTypesTest.moc"
