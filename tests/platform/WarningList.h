// SPDX-License-Identifier: MIT
// Collects the warnings of a scope, so that a test can compare all of them.
#ifndef WARNINGLIST_H
#define WARNINGLIST_H

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Warnings since construction, each as "category: text". One at a time.
class WarningList
{
public:
    WarningList()
    {
        list().clear();
        before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &context, const QString &text) {
                static QMutex mutex;
                const QMutexLocker lock(&mutex);
                list().append(QString("%1: %2").arg(context.category, text));
            });
    }
    ~WarningList() { qInstallMessageHandler(before); }
    WarningList(const WarningList &) = delete;
    WarningList &operator=(const WarningList &) = delete;

    QStringList texts() const { return list(); }

private:
    static QStringList &list()
    {
        static QStringList texts;
        return texts;
    }
    QtMessageHandler before;
};

#endif
