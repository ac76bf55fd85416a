// SPDX-License-Identifier: MIT
// A publisher in a process of its own that replaces a description on request.
#ifndef CHANGINGSERVICE_H
#define CHANGINGSERVICE_H

#include <QProcess>
#include <QString>
#include <QVector>

/// Instances of one object. The first, with 1,000 leaves, is the one that changes: each replacement
/// changes a property of every leaf. The others have 100 leaves.
class ChangingService
{
public:
    static constexpr int leafCount = 1000; // of the first

    /// @param leaves  of the first instance
    explicit ChangingService(int sources = 1, int leaves = leafCount);
    ~ChangingService();

    const QString &moduleName() const { return module; }
    QString busName() const;
    QString path() const;
    static QString interface();

    /// Of all leaves of all instances, those of the first first.
    QVector<QString> urls() const;

    /// Replaces the first description and announces it; returns when the service has been told.
    void change();

    /// Main function of the service; ends when its standard input does.
    static int serve(const QString &module, int sources, int leaves);

private:
    const int sources;
    const int leaves;
    const QString module; // names the object, too
    QProcess process;
};

#endif
