// SPDX-License-Identifier: MIT
// Changed files are noticed, however an editor changes them.
#include "FileChanges.h"
#include "Files.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class FileChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileThatIsRewrittenIsReported();
    void aFileThatIsReplacedIsReportedEachTime();
    void aFileThatVanishesAndComesBackIsReported();
};

void FileChangesTest::aFileThatIsRewrittenIsReported()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("a.pdd");
    QVERIFY(writeFile(file, "1"));
    const FileChanges changes({file});
    QSignalSpy spy(&changes, &FileChanges::changed);

    QVERIFY(writeFile(file, "2"));
    QTRY_VERIFY(spy.count() >= 1);
}

void FileChangesTest::aFileThatIsReplacedIsReportedEachTime()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("a.pdd");
    QVERIFY(writeFile(file, "1"));
    const FileChanges changes({file});
    QSignalSpy spy(&changes, &FileChanges::changed);

    for (const char *content : {"2", "3"}) {
        const int before = spy.count();
        QVERIFY(writeFile(file + "~", content));
        QCOMPARE(std::rename(QFile::encodeName(file + "~"), QFile::encodeName(file)), 0);
        QTRY_VERIFY(spy.count() > before);
    }
    const int before = spy.count();
    QVERIFY(writeFile(file, "4")); // the new file is watched, not the old one
    QTRY_VERIFY(spy.count() > before);
}

void FileChangesTest::aFileThatVanishesAndComesBackIsReported()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("a.pdd");
    QVERIFY(writeFile(file, "1"));
    const FileChanges changes({file});
    QSignalSpy spy(&changes, &FileChanges::changed);

    QVERIFY(QFile::remove(file));
    QTRY_VERIFY(spy.count() >= 1);
    const int before = spy.count();
    QVERIFY(writeFile(file, "2"));
    QTRY_VERIFY(spy.count() > before);
}

QTEST_GUILESS_MAIN(FileChangesTest)
#include "FileChangesTest.moc"
