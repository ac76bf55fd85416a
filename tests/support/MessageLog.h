// SPDX-License-Identifier: MIT
// Takes what this process logs out of the test's own log, so that a test can compare all of it.
#ifndef MESSAGELOG_H
#define MESSAGELOG_H

#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

/// One message with all that the log knows of it.
struct LoggedMessage
{
    QtMsgType type;
    QString category;
    QString file;
    int line;
    QString function;
    QString text;
};

/// What is logged in any thread while it lives. One object at a time.
class MessageLog
{
public:
    enum Kind {
        Everything,
        LibraryWarnings, ///< those of the default category; everything else passes through
    };

    explicit MessageLog(Kind kind = Everything);
    ~MessageLog();
    MessageLog(const MessageLog &) = delete;
    MessageLog &operator=(const MessageLog &) = delete;

    QVector<LoggedMessage> messages() const;
    /// In their order, each as "category: text", or as its text where it has the default category.
    QStringList texts() const;
    void clear();
};

#endif
