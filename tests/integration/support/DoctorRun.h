// SPDX-License-Identifier: MIT
// Runs selector doctor and looks at what it found.
#ifndef DOCTORRUN_H
#define DOCTORRUN_H

#include "ChildProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>

struct DoctorRun
{
    /// @param prefix  begin of the command line, such as SystemTest::powerless()
    explicit DoctorRun(const QString &selector, const QStringList &arguments,
                       const QStringList &prefix = {})
    {
        QStringList command
            = prefix + QStringList{selector, "doctor", "--format", "json"} + arguments;
        const QString program = command.takeFirst();
        ChildProcess client(program, command);
        if (client.run()) {
            exitCode = client.exitCode();
            const QJsonObject document = QJsonDocument::fromJson(client.output()).object();
            if (document["schema"] == "selector.doctor/1") {
                results = document["results"].toArray();
            }
        }
        report = client.report();
    }

    /// "SEVERITY CHECK CODE SUBJECT" of everything that is not good, in order.
    QStringList faults() const
    {
        QStringList list;
        for (const QJsonValue &value : results) {
            const QJsonObject finding = value.toObject();
            if (finding["severity"] != "ok") {
                list.append(QStringList{finding["severity"].toString(), finding["check"].toString(),
                                        finding["code"].toString(), finding["subject"].toString()}
                                .join(' '));
            }
        }
        return list;
    }

    /// Of the first finding with this code: a text of it; null without such a finding.
    QString text(const QString &code, const QString &key) const
    {
        for (const QJsonValue &value : results) {
            if (value.toObject()["code"] == code) {
                return value.toObject()[key].toString();
            }
        }
        return {};
    }

    /// Names of the checks that found nothing wrong, in order.
    QStringList goodChecks() const
    {
        QStringList list;
        for (const QJsonValue &value : results) {
            if (value.toObject()["severity"] == "ok") {
                list.append(value.toObject()["check"].toString());
            }
        }
        return list;
    }

    int exitCode = -1;
    QJsonArray results;
    QByteArray report;
};

/// Compares exit code and faults; every fault must come with advice.
#define COMPARE_DOCTOR(run, wantedCode, wantedFaults)                                              \
    do {                                                                                           \
        const DoctorRun got = (run);                                                               \
        QVERIFY2(got.exitCode == (wantedCode) && got.faults() == (wantedFaults),                   \
                 got.report.constData());                                                          \
        for (const QJsonValue &value : got.results) {                                              \
            const bool good = value.toObject()["severity"] == "ok";                                \
            QVERIFY2(good || !value.toObject()["advice"].toString().isEmpty(),                     \
                     got.report.constData());                                                      \
        }                                                                                          \
    } while (false)

#endif
