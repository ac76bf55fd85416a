// SPDX-License-Identifier: MIT
// The system around a client: a bus, publishers, and a service that answers as it likes.
#include "SoakWorld.h"

#include "DBusProcessDescriptionConnector.h"
#include "DBusReply.h"
#include "Descriptions.h"
#include "ModuleFiles.h"

#include <stdexcept>

namespace {

const QStringList baseLeaves{"value0", "value1", "value2", "value3", "value4", "text"};
const QString extraLeaf = "extra";

void require(const QByteArray &problem)
{
    if (!problem.isEmpty()) {
        throw std::runtime_error(problem.constData());
    }
}

void requireThat(bool condition, const QByteArray &problem)
{
    require(condition ? QByteArray() : problem);
}

} // namespace

SoakWorld::SoakWorld()
    : prefix(uniqueModule())
    , hostile(prefix + "hostile")
{
    for (int i = 0; i < sourceCount; ++i) {
        sources[i].module = prefix + "source" + QString::number(i);
    }
}

SoakWorld::~SoakWorld()
{
    for (SoakSource &source : sources) {
        source.process.reset();
    }
    removeLeftBuffers(prefix);
}

void SoakWorld::startBus()
{
    requireThat(bus.start(), bus.report());
    busUp = true;
    startHostile();
}

void SoakWorld::stopBus()
{
    bus.stop();
    busUp = false;
}

void SoakWorld::start(int number)
{
    SoakSource &source = sources[number];
    source.process.reset(new PublisherProcess);
    require(source.process->serve(source.module, description(source)));
    source.state = SoakSource::Up;
    source.published = 0;
}

void SoakWorld::kill(int number)
{
    sources[number].process->process().kill();
    sources[number].state = SoakSource::Dead;
}

void SoakWorld::quit(int number)
{
    requireThat(sources[number].process->quit(), sources[number].process->process().report());
    sources[number].state = SoakSource::Dead;
}

void SoakWorld::hang(int number)
{
    sources[number].process->process().suspend();
    sources[number].state = SoakSource::Hung;
}

void SoakWorld::resume(int number)
{
    sources[number].process->process().resume();
    sources[number].state = SoakSource::Up;
}

void SoakWorld::publish(int number)
{
    SoakSource &source = sources[number];
    source.published = ++publications;
    for (const QString &leaf : leafNames(number)) {
        const qint64 value = valueOf(source.published, number, leaf);
        require(source.process->publish(
            leaf, leaf == "text" ? QJsonValue(QString::number(value)) : QJsonValue(value)));
    }
}

void SoakWorld::replaceProperties(int number)
{
    ++sources[number].version;
    require(sources[number].process->replaceProperties(description(sources[number])));
}

// Values of leaves that are new stand at nothing until the next publication.
void SoakWorld::replaceDescription(int number, int layout)
{
    ++sources[number].version;
    sources[number].layout = layout;
    require(sources[number].process->replaceDescription(description(sources[number])));
    publish(number);
}

void SoakWorld::answer(const QString &mode, const QString &text, int announcements)
{
    order({"mode", mode});
    order(text.isEmpty() ? QStringList{"drop", "1"} : QStringList{"set", "1", text});
    order(ScriptedService::announcement("1", "ProcessDataDescriptionChanged")
          + QStringList(QString::number(announcements)));
}

QString SoakWorld::servedDescription(int number) const
{
    const auto connector
        = DBusProcessDescriptionConnector::createAndConnect(sources[number].module, "Controller");
    if (connector.isNull()) {
        return {};
    }
    const DBusReply reply = connector->getProcessDataDescription("1", QString());
    return reply.isError() ? QString() : reply.getValue().toString();
}

QStringList SoakWorld::leafNames(int number) const
{
    return sources[number].layout == 1 ? QStringList(extraLeaf) + baseLeaves : baseLeaves;
}

QStringList SoakWorld::buffers() const
{
    return buffersOf(prefix);
}

qint64 SoakWorld::valueOf(qint64 publication, int source, const QString &leaf)
{
    return publication * 100 + source * 10 + leafNumber(leaf);
}

int SoakWorld::leafNumber(const QString &leaf)
{
    return leaf == extraLeaf ? baseLeaves.size() : baseLeaves.indexOf(leaf);
}

// Layout 1 has one leaf more, before all others; layout 2 gives two of them another type.
QJsonObject SoakWorld::description(const SoakSource &source) const
{
    const QJsonObject unit{{"unit", QString("v%1").arg(source.version)}};
    QJsonObject capacity = unit;
    capacity.insert("capacity", source.layout == 2 ? 64 : 32);
    QJsonArray elements;
    if (source.layout == 1) {
        elements += leaf(extraLeaf, "float64", unit);
    }
    for (const QString &name : baseLeaves) {
        const bool retyped = source.layout == 2 && name == "value4";
        elements += name == "text" ? leaf(name, "string", capacity)
                                   : leaf(name, retyped ? "int64" : "float64", unit);
    }
    elements += leaf("setpoint", "float64", unit);
    return ::description(elements);
}

void SoakWorld::startHostile()
{
    hostileService.reset(new ScriptedService(hostile));
    requireThat(hostileService->comeUp(), hostileService->process().report());
}

void SoakWorld::order(const QStringList &words)
{
    const QByteArray answer = hostileService->order(words);
    requireThat(answer == "ok",
                "the hostile service answers " + answer + "\n"
                    + hostileService->process().report());
}
