// SPDX-License-Identifier: MIT
// Captures messages and compares their places with the sources.
#include "WarningLog.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

namespace {

// The statement that begins at a line of a source, in one line.
QString statementAt(const QString &file, int line)
{
    QFile source(QStringLiteral(SELECTORHANDLER_SOURCE_DIR "/") + file);
    if (!source.open(QIODevice::ReadOnly)) {
        return QString();
    }
    QTextStream stream(&source);
    for (int i = 1; i < line; ++i) {
        stream.readLine();
    }
    QString statement;
    while (!stream.atEnd() && !statement.contains(QLatin1Char(';'))) {
        statement += stream.readLine().trimmed();
    }
    return statement;
}

// A function's name without result type and arguments. Whatever is not a plain function, such as a
// lambda in one, keeps its whole text, so that nobody takes it for the function that it stands in.
QString nameOf(const QString &function)
{
    static const QRegularExpression plain(
        QStringLiteral("^(?:[^()]* )?([\\w:~]+)\\([^()]*\\)(?: const)?$"));
    const QRegularExpressionMatch match = plain.match(function);
    return match.hasMatch() ? match.captured(1) : function;
}

QString whatIsWrongWith(const LoggedMessage &message)
{
    if (message.type != QtWarningMsg) {
        return QStringLiteral("not a warning");
    }
    if (message.category != QLatin1String("default")) {
        return QStringLiteral("category ") + message.category;
    }
    if (!message.file.startsWith(QLatin1String("src/Selector"))) {
        return QStringLiteral("file \"%1\"").arg(message.file);
    }
    const QString statement = statementAt(message.file, message.line);
    const QString literal = QRegularExpression(QStringLiteral("^qWarning\\(\\) ?<< ?\"([^\"]*)\""))
                                .match(statement)
                                .captured(1);
    if (literal.isEmpty() || !message.text.startsWith(literal)) {
        return QStringLiteral("place %1:%2").arg(message.file).arg(message.line);
    }
    return QString();
}

} // namespace

QStringList WarningLog::texts() const
{
    QStringList result;
    for (const LoggedMessage &message : log.messages()) {
        const QString fault = whatIsWrongWith(message);
        result.append(fault.isEmpty() ? message.text
                                      : QStringLiteral("%1 [%2]").arg(message.text, fault));
    }
    return result;
}

QStringList WarningLog::functions() const
{
    QStringList result;
    for (const LoggedMessage &message : log.messages()) {
        result.append(nameOf(message.function));
    }
    return result;
}

QStringList WarningLog::files() const
{
    QStringList result;
    for (const LoggedMessage &message : log.messages()) {
        result.append(message.file);
    }
    return result;
}

int WarningLog::count(const QString &text) const
{
    int result = 0;
    for (const LoggedMessage &message : log.messages()) {
        result += message.text == text ? 1 : 0;
    }
    return result;
}
