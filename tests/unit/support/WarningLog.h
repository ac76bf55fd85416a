// SPDX-License-Identifier: MIT
// Captures the message log while it lives.
#ifndef WARNINGLOG_H
#define WARNINGLOG_H

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

/// Everything that is logged, in any thread, from its making on.
///
/// A message is in order when it is a warning of the default category whose file and line lead to
/// the statement in src/ that holds the text's literal.
class WarningLog
{
public:
    WarningLog();
    ~WarningLog();
    WarningLog(const WarningLog &) = delete;
    WarningLog &operator=(const WarningLog &) = delete;

    /// The texts in order. What is not in order about a message is appended in brackets.
    QStringList texts() const;
    /// The functions that logged, in order, without result type and arguments; whole, with all that
    /// the compiler says of it, where it was not a plain function.
    QStringList functions() const;
    /// The files that logged, in order.
    QStringList files() const;
    /// How many messages there were with this text.
    int count(const QString &text) const;
    void clear();
};

#endif
