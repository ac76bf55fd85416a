// SPDX-License-Identifier: MIT
// The message handler of the tools.
#include "MessageLog.h"

#include "PrintableText.h"

#include <QLoggingCategory>
#include <QMutex>

#include <cstdio>

namespace {

constexpr int mostWarnings = 100;

struct State
{
    QMutex mutex;
    QString program;
    QString category;
    MessageLog::Level level = MessageLog::OwnMessages;
    QStringList warnings;
};

State &state()
{
    static State instance;
    return instance;
}

QString place(const QMessageLogContext &context)
{
    if (context.file == nullptr) {
        return {};
    }
    return QStringLiteral(" (%1:%2, %3)")
        .arg(QString::fromUtf8(context.file))
        .arg(context.line)
        .arg(QString::fromUtf8(context.function));
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    State &log = state();
    const QMutexLocker lock(&log.mutex);
    const bool own = QString::fromUtf8(context.category) == log.category;
    const bool warning = type == QtWarningMsg || type == QtCriticalMsg;
    if (!own && warning) {
        log.warnings.append(message);
        while (log.warnings.size() > mostWarnings) {
            log.warnings.removeFirst();
        }
    }
    if (own || type == QtFatalMsg || log.level == MessageLog::AllMessages) {
        const QString line
            = QStringLiteral("%1: %2%3\n")
                  .arg(log.program, printable(message), own ? QString() : place(context));
        static_cast<void>(std::fputs(line.toLocal8Bit().constData(), stderr));
    }
}

} // namespace

void MessageLog::install(const QString &program, const QString &category, Level level)
{
    {
        State &log = state();
        const QMutexLocker lock(&log.mutex);
        log.program = program;
        log.category = category;
        log.level = level;
    }
    if (level == AllMessages) {
        QLoggingCategory::setFilterRules(QStringLiteral("processdata.*.debug=true"));
    }
    qInstallMessageHandler(handleMessage);
}

QStringList MessageLog::takeWarnings()
{
    State &log = state();
    const QMutexLocker lock(&log.mutex);
    QStringList warnings;
    warnings.swap(log.warnings);
    return warnings;
}
