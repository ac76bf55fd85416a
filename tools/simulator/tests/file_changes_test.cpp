// SPDX-License-Identifier: MIT
// Changed files are noticed, however an editor changes them.
#include "FileChanges.h"

#include <QFile>
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

private:
    static void write(const QString &fileName, const QByteArray &content);
};

void FileChangesTest::write(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

void FileChangesTest::aFileThatIsRewrittenIsReported()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("a.pdd");
    write(file, "1");
    const FileChanges changes({file});
    QSignalSpy spy(&changes, &FileChanges::changed);

    write(file, "2");
    QTRY_VERIFY(spy.count() >= 1);
}

void FileChangesTest::aFileThatIsReplacedIsReportedEachTime()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("a.pdd");
    write(file, "1");
    const FileChanges changes({file});
    QSignalSpy spy(&changes, &FileChanges::changed);

    for (const char *content : {"2", "3"}) {
        const int before = spy.count();
        write(file + "~", content);
        QCOMPARE(std::rename(QFile::encodeName(file + "~"), QFile::encodeName(file)), 0);
        QTRY_VERIFY(spy.count() > before);
    }
    const int before = spy.count();
    write(file, "4"); // the new file is watched, not the old one
    QTRY_VERIFY(spy.count() > before);
}

void FileChangesTest::aFileThatVanishesAndComesBackIsReported()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath("a.pdd");
    write(file, "1");
    const FileChanges changes({file});
    QSignalSpy spy(&changes, &FileChanges::changed);

    QVERIFY(QFile::remove(file));
    QTRY_VERIFY(spy.count() >= 1);
    const int before = spy.count();
    write(file, "2");
    QTRY_VERIFY(spy.count() > before);
}

QTEST_GUILESS_MAIN(FileChangesTest)
#include "file_changes_test.moc"
