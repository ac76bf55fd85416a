// SPDX-License-Identifier: MIT
// A publisher in a process of its own, driven line by line.
#include "PublisherProcess.h"

#include <QJsonDocument>

PublisherProcess::PublisherProcess(const QStringList &arguments, const QStringList &prefix)
    : child((prefix + QStringList{INTEGRATION_PUBLISHER}).first(),
            (prefix + QStringList{INTEGRATION_PUBLISHER}).mid(1) + arguments)
{
}

QByteArray PublisherProcess::start()
{
    if (!child.start() || child.waitForLineWith("ready").isNull()) {
        return "did not come up: " + child.report();
    }
    return {};
}

QByteArray PublisherProcess::create(const QString &module, const QString &object,
                                    const QString &instance, const QJsonObject &description)
{
    return command({{"do", "create"},
                    {"module", module},
                    {"object", object},
                    {"instance", instance},
                    {"description", description}});
}

QByteArray PublisherProcess::serve(const QString &module, const QJsonObject &description)
{
    const QByteArray problem = start();
    return problem.isEmpty() ? create(module, "Controller", "1", description) : problem;
}

QByteArray PublisherProcess::publish(const QString &path, const QJsonValue &value)
{
    return command({{"do", "publish"}, {"path", path}, {"value", value}});
}

QByteArray PublisherProcess::replaceDescription(const QJsonObject &description)
{
    return command({{"do", "replaceDescription"}, {"description", description}});
}

QByteArray PublisherProcess::replaceProperties(const QJsonObject &description)
{
    return command({{"do", "replaceProperties"}, {"description", description}});
}

QByteArray PublisherProcess::playStatusManager()
{
    return command({{"do", "playStatusManager"}});
}

QByteArray PublisherProcess::playRegistry()
{
    return command({{"do", "playRegistry"}});
}

QByteArray PublisherProcess::starve(const QString &what)
{
    return command({{"do", "starve"}, {"of", what}});
}

QByteArray PublisherProcess::announceStartupReady()
{
    return command({{"do", "announceStartupReady"}});
}

QByteArray PublisherProcess::waitForWrite(const QString &path)
{
    const QByteArray prefix = "written " + path.toUtf8() + ' ';
    const QByteArray line = child.waitForLine(
        [&prefix](const QByteArray &candidate) { return candidate.startsWith(prefix); });
    return line.mid(prefix.size());
}

QByteArray PublisherProcess::command(const QJsonObject &command)
{
    child.write(QJsonDocument(command).toJson(QJsonDocument::Compact));
    const QByteArray answer = child.waitForLine(
        [](const QByteArray &line) { return line == "ok" || line.startsWith("error"); });
    if (answer == "ok") {
        return {};
    }
    return (answer.isNull() ? QByteArray("no answer") : answer) + '\n' + child.report();
}
