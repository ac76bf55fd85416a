// SPDX-License-Identifier: MIT
// What the soak does at random: each deed with its chance, its count and a line in the record.
#include "SoakDeeds.h"

#include "Descriptions.h"

#include <QCoreApplication>
#include <QTest>

#include <stdexcept>
#include <string>

#include <unistd.h>

namespace {

constexpr int hundred = 100;
constexpr int recordLength = 60;

} // namespace

// Chances add up to a hundred. What is not possible at a moment gives way to the next one.
const SoakDeeds::Deed SoakDeeds::deeds[] = {
    {"publisher killed", 10, &SoakDeeds::killPublisher},
    {"publisher ended", 5, &SoakDeeds::quitPublisher},
    {"publisher started", 11, &SoakDeeds::startPublisher},
    {"publisher hung", 4, &SoakDeeds::hangPublisher},
    {"publisher resumed", 5, &SoakDeeds::resumePublisher},
    {"values published", 11, &SoakDeeds::publishValues},
    {"properties replaced", 9, &SoakDeeds::replaceProperties},
    {"description replaced", 8, &SoakDeeds::replaceDescription},
    {"list replaced", 7, &SoakDeeds::replaceList},
    {"setpoint written", 5, &SoakDeeds::writeSetpoint},
    {"bus ended", 2, &SoakDeeds::stopBus},
    {"bus started", 3, &SoakDeeds::startBus},
    {"hostile answers", 5, &SoakDeeds::answerHostilely},
    {"hostile source read", 3, &SoakDeeds::meetHostile},
    {"second client", 3, &SoakDeeds::comeLate},
    {"writing client killed", 4, &SoakDeeds::killWriter},
    {"events delivered", 5, &SoakDeeds::runEvents},
};

SoakDeeds::SoakDeeds(SoakWorld &world, SoakClient &client, quint32 seed)
    : world(world)
    , client(client)
    , generator(seed)
{
    for (int source = 0; source < SoakWorld::sourceCount; ++source) {
        world.start(source);
        world.publish(source);
    }
    client.apply(client.fullList());
}

void SoakDeeds::doNext()
{
    int dice = random(hundred);
    const Deed *deed = deeds;
    while (dice >= deed->chance) {
        dice -= deed->chance;
        ++deed;
    }
    ++number;
    try {
        while (lastSource = -1, !(this->*deed->act)()) {
            deed = deed + 1 == std::end(deeds) ? deeds : deed + 1;
        }
    } catch (const std::runtime_error &error) {
        throw std::runtime_error(std::string(deed->name) + ": " + error.what());
    }
    ++counted[deed->name];
    note(lastSource < 0 ? deed->name : QString("%1, source %2").arg(deed->name).arg(lastSource));
    QCoreApplication::processEvents();
}

void SoakDeeds::bringEverythingUp()
{
    note("everything is brought up");
    if (!world.isBusUp()) {
        world.startBus();
        ++counted["bus started"];
    }
    for (int source = 0; source < SoakWorld::sourceCount; ++source) {
        if (world.source(source).state == SoakSource::Hung) {
            world.resume(source);
            ++counted["publisher resumed"];
        } else if (world.source(source).state == SoakSource::Dead) {
            world.start(source);
            ++counted["publisher started"];
        }
        world.publish(source);
    }
    if (listMadeWithoutBus) {
        listMadeWithoutBus = false;
        client.apply(client.list());
    }
}

void SoakDeeds::endEverything()
{
    for (int source = 0; source < SoakWorld::sourceCount; ++source) {
        world.quit(source);
    }
}

QString SoakDeeds::counts() const
{
    QStringList lines;
    for (auto it = counted.cbegin(); it != counted.cend(); ++it) {
        lines += QString("%1 x %2").arg(it.value(), 6).arg(it.key());
    }
    return lines.join('\n');
}

int SoakDeeds::random(int below)
{
    return int(generator() % quint32(below)); // no distribution: those differ between libraries
}

int SoakDeeds::randomSource(SoakSource::State state)
{
    const int first = random(SoakWorld::sourceCount);
    for (int i = 0; i < SoakWorld::sourceCount; ++i) {
        const int source = (first + i) % SoakWorld::sourceCount;
        if (world.source(source).state == state) {
            lastSource = source;
            return source;
        }
    }
    return -1;
}

void SoakDeeds::note(const QString &text)
{
    record += QString("%1: %2").arg(number).arg(text);
    if (record.size() > recordLength) {
        record.removeFirst();
    }
}

bool SoakDeeds::killPublisher()
{
    const int source = randomSource(random(4) == 0 ? SoakSource::Hung : SoakSource::Up);
    if (source >= 0) {
        world.kill(source);
    }
    return source >= 0;
}

bool SoakDeeds::quitPublisher()
{
    const int source = randomSource(SoakSource::Up);
    if (source >= 0) {
        world.quit(source);
    }
    return source >= 0;
}

bool SoakDeeds::startPublisher()
{
    const int source = world.isBusUp() ? randomSource(SoakSource::Dead) : -1;
    if (source >= 0) {
        world.start(source);
    }
    return source >= 0;
}

bool SoakDeeds::hangPublisher()
{
    const int source = randomSource(SoakSource::Up);
    if (source >= 0) {
        world.hang(source);
    }
    return source >= 0;
}

bool SoakDeeds::resumePublisher()
{
    const int source = randomSource(SoakSource::Hung);
    if (source >= 0) {
        world.resume(source);
    }
    return source >= 0;
}

bool SoakDeeds::publishValues()
{
    const int source = randomSource(SoakSource::Up);
    if (source >= 0) {
        world.publish(source);
    }
    return source >= 0;
}

bool SoakDeeds::replaceProperties()
{
    const int source = randomSource(SoakSource::Up);
    if (source >= 0) {
        world.replaceProperties(source);
    }
    return source >= 0;
}

bool SoakDeeds::replaceDescription()
{
    const int layout = random(SoakWorld::layoutCount);
    const int source = randomSource(SoakSource::Up);
    if (source >= 0) {
        world.replaceDescription(source, layout);
    }
    return source >= 0;
}

bool SoakDeeds::replaceList()
{
    client.apply(random(2) == 0 ? client.fullList() : randomList());
    listMadeWithoutBus = !world.isBusUp();
    return true;
}

bool SoakDeeds::writeSetpoint()
{
    client.write(-1 - random(1000));
    return true;
}

bool SoakDeeds::stopBus()
{
    if (!world.isBusUp()) {
        return false;
    }
    world.stopBus();
    return true;
}

bool SoakDeeds::startBus()
{
    if (world.isBusUp()) {
        return false;
    }
    world.startBus();
    return true;
}

bool SoakDeeds::answerHostilely()
{
    static const char *const modes[]
        = {"ok", "ok", "ok", "ok", "number", "two", "silent", "silent", "ok", "large"};
    if (!world.isBusUp()) {
        return false;
    }
    const char *const mode = modes[random(int(std::size(modes)))];
    world.answer(mode, hostileText(), 1 + random(200));
    return true;
}

// A client that also reads the hostile service; what it reads there may be anything.
bool SoakDeeds::meetHostile()
{
    if (hostileClient.isNull() || random(3) == 0) {
        QVector<QString> urls;
        for (const SoakSelector &selector : client.fullList()) {
            urls += selector.url;
            urls += QString(selector.url)
                        .replace(world.source(selector.source).module, world.hostileModule());
        }
        hostileClient.reset(new SelectorHandlerProcessValue(urls, nullptr));
    }
    hostileClient->getValues();
    hostileClient->getPropertiesAsJsonString();
    return true;
}

bool SoakDeeds::comeLate()
{
    QVector<QString> urls;
    for (const SoakSelector &selector : randomList()) {
        urls += selector.url;
    }
    SelectorHandlerProcessValue late(urls, nullptr);
    if (late.getValues().size() != urls.size()) {
        throw std::runtime_error("a second client has not a value for each selector");
    }
    return true;
}

// Killed at any of its stores, perhaps with the writers' lock.
bool SoakDeeds::killWriter()
{
    const int microseconds = random(3000);
    const int source = world.isBusUp() ? randomSource(SoakSource::Up) : -1;
    if (source < 0) {
        return false;
    }
    ChildProcess writer(QCoreApplication::applicationFilePath(),
                        {"writer", client.selector(source, "setpoint").url});
    if (!writer.start() || writer.waitForLineWith("writing").isNull()) {
        throw std::runtime_error(writer.report().constData());
    }
    ::usleep(useconds_t(microseconds)); // waits for nothing: it spreads the deaths
    writer.kill();
    return true;
}

bool SoakDeeds::runEvents()
{
    QTest::qWait(random(hundred));
    return true;
}

QVector<SoakSelector> SoakDeeds::randomList()
{
    const QVector<SoakSelector> all = client.fullList();
    QVector<SoakSelector> list;
    for (int count = random(2 * all.size()); count > 0; --count) {
        SoakSelector selector = all.at(random(all.size()));
        switch (random(10)) {
        case 0:
            selector = {-1, QString(), selector.url + "?deactivated"};
            break;
        case 1:
            selector = {-1, QString(), "processdata://nobody/Controller/1/" + selector.leaf};
            break;
        case 2:
            selector = {-1, QString(), "no selector at all %"};
            break;
        default:
            break;
        }
        list += selector;
    }
    return list;
}

// A description of a real source under the hostile service's name, with some bytes changed. Draws
// as many random numbers whatever it gets, so that the deeds after it are the seed's.
QString SoakDeeds::hostileText()
{
    const int source = randomSource(SoakSource::Up);
    const int changes = random(4);
    const int kind = random(8);
    const quint32 places[]
        = {quint32(generator()), quint32(generator()), quint32(generator()), quint32(generator())};
    if (source < 0 || kind == 0) {
        return "{}";
    }
    QByteArray text = world.servedDescription(source).toUtf8();
    text.replace(world.source(source).module.toUtf8(), world.hostileModule().toUtf8());
    for (int i = 0; i < changes && !text.isEmpty(); ++i) {
        text[int(places[i] % quint32(text.size()))] = char(' ' + places[i] / 65536 % 95);
    }
    if (kind == 1 && !text.isEmpty()) {
        text.truncate(int(places[3] % quint32(text.size())));
    }
    return QString::fromUtf8(text).replace('\n', ' ').replace('\t', ' ');
}
