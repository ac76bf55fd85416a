// SPDX-License-Identifier: MIT
// Takes what this process logs out of the test's own log, so that a test can compare all of it.
#include "MessageLog.h"

#include <QMutex>
#include <QMutexLocker>

namespace {

// Threads may log while the object that they log to ends.
QMutex mutex;
QVector<LoggedMessage> taken;
MessageLog::Kind wanted = MessageLog::Everything;
QtMessageHandler previous = nullptr;

bool isOfLibrary(const LoggedMessage &message)
{
    return message.category == QLatin1String("default");
}

void take(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const LoggedMessage message{
        type,         QString::fromUtf8(context.category), QString::fromUtf8(context.file),
        context.line, QString::fromUtf8(context.function), text};
    if (type == QtFatalMsg
        || (wanted == MessageLog::LibraryWarnings
            && (type != QtWarningMsg || !isOfLibrary(message)))) {
        previous(type, context, text);
        return;
    }
    const QMutexLocker lock(&mutex);
    taken.append(message);
}

} // namespace

MessageLog::MessageLog(Kind kind)
{
    clear();
    wanted = kind;
    previous = qInstallMessageHandler(take);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(previous);
}

QVector<LoggedMessage> MessageLog::messages() const
{
    const QMutexLocker lock(&mutex);
    return taken;
}

QStringList MessageLog::texts() const
{
    QStringList result;
    for (const LoggedMessage &message : messages()) {
        result.append(isOfLibrary(message) ? message.text : message.category + ": " + message.text);
    }
    return result;
}

void MessageLog::clear()
{
    const QMutexLocker lock(&mutex);
    taken.clear();
}
