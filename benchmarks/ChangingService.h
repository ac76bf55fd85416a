// SPDX-License-Identifier: MIT
// A publisher in a process of its own that replaces its description on request.
#ifndef CHANGINGSERVICE_H
#define CHANGINGSERVICE_H

#include <QProcess>
#include <QString>
#include <QVector>

/// One instance with 1,000 leaves; each replacement changes a property of every leaf.
class ChangingService
{
public:
    static constexpr int leafCount = 1000;

    ChangingService();
    ~ChangingService();

    QString busName() const;
    QString path() const;
    QString interface() const;
    QVector<QString> urls() const;

    /// Replaces the description and announces it; returns when the service has been told.
    void change();

    /// Main function of the service; ends when its standard input does.
    static int serve(const QString &module);

private:
    const QString module;
    QProcess process;
};

#endif
