// SPDX-License-Identifier: MIT
// What this process warns of, while the object lives.
#include "WarningLog.h"

#include <cstring>

namespace {
WarningLog *current = nullptr;
}

WarningLog::WarningLog()
{
    current = this;
    previous = qInstallMessageHandler(receive);
}

WarningLog::~WarningLog()
{
    qInstallMessageHandler(previous);
    current = nullptr;
}

QStringList WarningLog::texts() const
{
    const QMutexLocker lock(&mutex);
    return collected;
}

void WarningLog::receive(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtWarningMsg || std::strcmp(context.category, "default") != 0) {
        current->previous(type, context, text);
        return;
    }
    const QMutexLocker lock(&current->mutex);
    current->collected.append(text);
}
