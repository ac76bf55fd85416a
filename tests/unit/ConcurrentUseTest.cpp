// SPDX-License-Identifier: MIT
// Reads and writes in one thread while the list and the sources change in another.
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr int changes = 300;
constexpr int changesOfReaders = 20;

} // namespace

class ConcurrentUseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readersSeeWholeListsWhileTheListIsReplaced()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1).leaf("b", 2);
        platform.stopRecording();
        const QVector<QString> shortList{on("a"), on("b")};
        const QVector<QString> longList{on("b"), off("a"), on("a"), on("b"), on("a")};
        SelectorHandlerProcessValue handler(shortList, nullptr);
        std::atomic<bool> stop{false};
        std::atomic<int> reads{0};
        std::atomic<int> broken{0};
        const auto read = [&] {
            while (!stop) {
                const QVector<ProcessValue> values = handler.getValues();
                const bool isShort = values.size() == 2 && values.at(0).getValue() == QVariant(1)
                    && values.at(1).getValue() == QVariant(2);
                const bool isLong = values.size() == 5 && values.at(0).getValue() == QVariant(2)
                    && isErrorValue(values.at(1)) && values.at(4).getValue() == QVariant(1);
                const int texts = handler.getPropertiesAsJsonString().size();
                const int units = handler.getProperties("unit").size();
                broken += isShort || isLong ? 0 : 1;
                broken += (texts == 2 || texts == 5) && (units == 2 || units == 5) ? 0 : 1;
                ++reads;
            }
        };
        std::vector<std::thread> readers;
        readers.emplace_back(read);
        readers.emplace_back(read);

        // Bounded, and long enough that readers have really read in between.
        for (int i = 0; i < changes || (reads < changesOfReaders && i < 1000000); ++i) {
            handler.setSelectorUrls(i % 2 == 0 ? longList : shortList);
        }
        stop = true;
        for (std::thread &reader : readers) {
            reader.join();
        }

        QVERIFY(reads >= changesOfReaders);
        QCOMPARE(broken.load(), 0);
    }

    void readersSeeWholeRecordsWhileSourcesAreRefreshed()
    {
        UnlikePlatform platform;
        ScriptedSource &script
            = platform.source("boiler", "sensors", "1").leaf("a", 1).leaf("b", 2);
        platform.stopRecording();
        SelectorHandlerProcessValue handler({on("a"), on("b")}, nullptr);
        std::atomic<bool> stop{false};
        std::atomic<int> reads{0};
        std::atomic<int> broken{0};
        std::thread reader([&] {
            while (!stop) {
                const QVector<ProcessValue> values = handler.getValues();
                const bool whole = values.size() == 2 && values.at(0).getValue() == QVariant(1)
                    && values.at(1).getValue() == QVariant(2);
                // Both texts are replaced in one pass under the lock: they carry the same number.
                const QVector<QString> texts = handler.getPropertiesAsJsonString();
                const bool together = texts.at(0) == QString(texts.at(1)).replace("\"b\"", "\"a\"");
                broken += whole && together ? 0 : 1;
                handler.setValue(valueOf(1), 0);
                ++reads;
            }
        });

        for (int i = 0; i < changes || (reads < changesOfReaders && i < 1000000); ++i) {
            script.at("a").property("pass", i);
            script.at("b").property("pass", i);
            i % 2 == 0 ? script.changeDescription() : script.changeProperties();
        }
        stop = true;
        reader.join();

        QVERIFY(reads >= changesOfReaders);
        QCOMPARE(broken.load(), 0);
    }
};

QTEST_GUILESS_MAIN(ConcurrentUseTest)
#include "ConcurrentUseTest.moc"
