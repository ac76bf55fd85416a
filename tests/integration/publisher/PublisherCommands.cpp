// SPDX-License-Identifier: MIT
// Runs the commands that a test gives to its publisher process.
#include "PublisherCommands.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

namespace {

QByteArray answer(bool good, const QString &error)
{
    return good ? QByteArray("ok") : "error " + error.toUtf8();
}

QByteArray asJson(const QVariant &value)
{
    const QByteArray list
        = QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

} // namespace

QByteArray PublisherCommands::run(const QByteArray &line)
{
    const QJsonObject command = QJsonDocument::fromJson(line).object();
    const QString verb = command.value("do").toString();
    if (verb == "create") {
        return create(command);
    }
    if (verb == "playStatusManager") {
        return playStatusManager();
    }
    if (verb == "playRegistry") {
        return playRegistry();
    }
    if (verb == "starve") {
        return starve(command.value("of").toString());
    }
    if (verb == "announceStartupReady" && status) {
        status->setReady(true);
        return "ok";
    }
    if (verb == "publish" && publisher) {
        return publish(command);
    }
    if (verb == "replaceDescription" && publisher) {
        return replace(command, true);
    }
    if (verb == "replaceProperties" && publisher) {
        return replace(command, false);
    }
    return "error no such command now: " + line;
}

QByteArray PublisherCommands::create(const QJsonObject &command)
{
    QString error;
    const auto created = ProcessDataPublisher::create(
        command.value("module").toString(), command.value("object").toString(),
        command.value("instance").toString(), command.value("description").toObject(), &error);
    if (created) {
        publisher = created;
        publishers.append(created);
        QObject::connect(created.data(), &ProcessDataPublisher::valueWritten,
                         [](const QString &path, const ProcessValue &value) {
                             printLine("written " + path.toUtf8() + ' ' + asJson(value.getValue()));
                         });
    }
    return answer(!created.isNull(), error);
}

QByteArray PublisherCommands::publish(const QJsonObject &command)
{
    return answer(
        publisher->publish(command.value("path").toString(), command.value("value").toVariant()),
        "not published");
}

QByteArray PublisherCommands::replace(const QJsonObject &command, bool layout)
{
    QString error;
    const QJsonObject description = command.value("description").toObject();
    const bool replaced = layout ? publisher->replaceDescription(description, &error)
                                 : publisher->replaceProperties(description, &error);
    return answer(replaced, error);
}

QByteArray PublisherCommands::playStatusManager()
{
    QString error;
    status = SystemStatusService::create(&error);
    return answer(!status.isNull(), error);
}

QByteArray PublisherCommands::playRegistry()
{
    QString error;
    registry = ProviderRegistryService::create(&error);
    return answer(!registry.isNull(), error);
}

QByteArray PublisherCommands::starve(const QString &what)
{
    descriptorShortage.reset(what == "descriptors" ? new DescriptorShortage : nullptr);
    memoryShortage.reset(what == "memory" ? new MemoryShortage : nullptr);
    return "ok";
}

void printLine(const QByteArray &line)
{
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}
