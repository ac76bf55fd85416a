// SPDX-License-Identifier: MIT
// Holds the parser against tests/descriptions, as the schema is held against it.
#include "ProcessDataDescription.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtTest>

Q_DECLARE_METATYPE(DescriptionForm)

class DescriptionCorpusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDescriptionIsTakenOrRefusedAsItsFolderSays_data();
    void aDescriptionIsTakenOrRefusedAsItsFolderSays();
};

void DescriptionCorpusTest::aDescriptionIsTakenOrRefusedAsItsFolderSays_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<DescriptionForm>("form");
    QTest::addColumn<bool>("good");
    const struct
    {
        const char *folder;
        DescriptionForm form;
        bool good;
    } folders[] = {{"published/good", DescriptionForm::Published, true},
                   {"published/bad", DescriptionForm::Published, false},
                   {"template/good", DescriptionForm::Template, true},
                   {"template/bad", DescriptionForm::Template, false}};
    for (const auto &folder : folders) {
        const QDir directory(QStringLiteral(DESCRIPTION_CORPUS "/%1").arg(folder.folder));
        const QStringList names = directory.entryList({"*.json"}, QDir::Files);
        QVERIFY2(names.size() >= 7, qPrintable(directory.path()));
        for (const QString &name : names) {
            QTest::addRow("%s/%s", folder.folder, qPrintable(name))
                << directory.filePath(name) << folder.form << folder.good;
        }
    }
}

void DescriptionCorpusTest::aDescriptionIsTakenOrRefusedAsItsFolderSays()
{
    QFETCH(QString, fileName);
    QFETCH(DescriptionForm, form);
    QFETCH(bool, good);
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QString error;

    const auto description = parseDescription(text, form, error);

    QCOMPARE(description.has_value(), good);
    QCOMPARE(error, QJsonDocument::fromJson(text).object().value("expected").toString());
}

QTEST_APPLESS_MAIN(DescriptionCorpusTest)
#include "DescriptionCorpusTest.moc"
