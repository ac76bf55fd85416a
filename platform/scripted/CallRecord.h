// SPDX-License-Identifier: MIT
// Ordered record of everything that is asked of the scripted platform.
#ifndef CALLRECORD_H
#define CALLRECORD_H

#include "ProcessDataPlatformExport.h"

#include <QMap>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// One call, written as Class[object]::operation(arguments), strings in single quotes; a
/// destruction is written as ~Class[object].
struct Call
{
    QString className;
    QString object; ///< empty for static operations and free functions
    QString operation; ///< "~" for a destruction
    QStringList arguments;

    PROCESSDATAPLATFORM_EXPORT QString text() const;
};

/// Calls, living objects and hooks of the whole process.
///
/// Threads: any. Hooks run in the thread of the call that they hang on, outside the record's own
/// lock.
class PROCESSDATAPLATFORM_EXPORT CallRecord
{
public:
    static CallRecord &instance();

    /// Notes a call and runs the hook of its operation.
    void called(const QString &className, const QString &object, const QString &operation,
                const QStringList &arguments = {});
    void born(const QString &className);
    void died(const QString &className, const QString &object);

    /// Runs @p hook inside every later call of an operation written as Class::operation.
    void during(const QString &operation, const std::function<void()> &hook);

    QStringList texts(const QStringList &classNames) const;
    int alive(const QString &className) const;
    void setRecording(bool on);
    void forgetCalls();
    /// Forgets calls, hooks and numbers. Objects of an earlier script stay counted.
    void reset();

    /// 1, 2, 3 … within a class and a script.
    int nextNumber(const QString &className);

    static QString quoted(const QString &text);

private:
    CallRecord() = default;

    mutable QMutex mutex;
    QVector<Call> calls;
    QMap<QString, std::function<void()>> hooks;
    QMap<QString, int> numbers;
    QMap<QString, int> living;
    bool recording = true;
};

#endif
