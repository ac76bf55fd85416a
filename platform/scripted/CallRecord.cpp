// SPDX-License-Identifier: MIT
// Keeps the record of calls.
#include "CallRecord.h"

#include <QMutexLocker>

QString Call::text() const
{
    const QString owner
        = object.isEmpty() ? className : QStringLiteral("%1[%2]").arg(className, object);
    if (operation == QLatin1String("~")) {
        return QLatin1Char('~') + owner;
    }
    const QString name = className.isEmpty() ? operation : owner + QStringLiteral("::") + operation;
    return name + QLatin1Char('(') + arguments.join(QStringLiteral(", ")) + QLatin1Char(')');
}

CallRecord &CallRecord::instance()
{
    static CallRecord record;
    return record;
}

void CallRecord::called(const QString &className, const QString &object, const QString &operation,
                        const QStringList &arguments)
{
    std::function<void()> hook;
    {
        const QMutexLocker lock(&mutex);
        if (recording) {
            calls.append({className, object, operation, arguments});
        }
        hook = hooks.value(className + QStringLiteral("::") + operation);
    }
    if (hook) {
        hook();
    }
}

void CallRecord::born(const QString &className)
{
    const QMutexLocker lock(&mutex);
    ++living[className];
}

void CallRecord::died(const QString &className, const QString &object)
{
    {
        const QMutexLocker lock(&mutex);
        --living[className];
    }
    called(className, object, QStringLiteral("~"));
}

void CallRecord::during(const QString &operation, const std::function<void()> &hook)
{
    const QMutexLocker lock(&mutex);
    hooks.insert(operation, hook);
}

QStringList CallRecord::texts(const QStringList &classNames) const
{
    const QMutexLocker lock(&mutex);
    QStringList result;
    for (const Call &call : calls) {
        if (classNames.isEmpty() || classNames.contains(call.className)) {
            result.append(call.text());
        }
    }
    return result;
}

int CallRecord::alive(const QString &className) const
{
    const QMutexLocker lock(&mutex);
    return living.value(className);
}

void CallRecord::setRecording(bool on)
{
    const QMutexLocker lock(&mutex);
    recording = on;
}

void CallRecord::forgetCalls()
{
    const QMutexLocker lock(&mutex);
    calls.clear();
}

void CallRecord::reset()
{
    const QMutexLocker lock(&mutex);
    calls.clear();
    hooks.clear();
    numbers.clear();
    recording = true;
}

int CallRecord::nextNumber(const QString &className)
{
    const QMutexLocker lock(&mutex);
    return ++numbers[className];
}

QString CallRecord::quoted(const QString &text)
{
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}
