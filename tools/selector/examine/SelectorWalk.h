// SPDX-License-Identifier: MIT
// Walks the way of one selector from its text to its value, and reports what it finds.
#ifndef SELECTORWALK_H
#define SELECTORWALK_H

#include "BufferInspection.h"
#include "BusQueryResult.h"
#include "ExitCode.h"
#include "SelectorUrlParser.h"

#include <QJsonObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVector>

class SelectorHandlerProcessValue;

/// One step of the way.
struct WalkStep
{
    enum Result { Ok, Failed, NotReached };

    QString name; ///< for people
    QString key; ///< for programs
    Result result = NotReached;
    QString finding;
    QString advice; ///< what to do, of a step that failed
};

/// Asks bus, service and shared memory themselves, past everything that a client remembers.
///
/// Threads: one; blocks for D-Bus calls. Runs no event loop.
class SelectorWalk
{
public:
    /// @param properties  that the leaf must have
    SelectorWalk(const QString &url, const QStringList &properties);

    /// Walks until a step fails.
    void walk();

    /// All steps in their order, those behind a failed one not reached.
    const QVector<WalkStep> &steps() const { return way; }

    /// What the failed step means for a script; ExitAllGood when none failed.
    ExitCode exitCode() const { return code; }

private:
    bool checkText();
    bool checkScheme();
    bool checkModule();
    bool checkBus();
    bool checkOwner();
    bool checkObject();
    bool checkDescription();
    bool checkBuffer();
    bool checkPermission();
    bool checkLayout();
    bool checkLiveness();
    bool checkLeaf();
    bool checkProperty();
    bool checkValue();

    bool ok(const QString &finding);
    bool fail(const QString &finding, const QString &advice, ExitCode exitCode = ExitSomeFailed);
    bool failQuery(BusQueryResult result, const QString &error);
    QString source() const;
    QSharedPointer<SelectorHandlerProcessValue> client() const;

    const QString url;
    const QStringList wantedProperties;
    const SelectorUrlParts parts;
    QVector<WalkStep> way;
    int position = 0;
    ExitCode code = ExitAllGood;
    QString description;
    BufferInspection buffer;
    QJsonObject leaf;
    QString service;
};

#endif
