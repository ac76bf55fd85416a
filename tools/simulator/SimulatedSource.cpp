// SPDX-License-Identifier: MIT
// Publishing, moving and reloading of one source.
#include "SimulatedSource.h"

#include "ExactJson.h"
#include "ProcessDataPublisher.h"
#include "PublishedText.h"
#include "SimulatorLog.h"
#include "ValueText.h"

#include <algorithm>
#include <utility>

std::unique_ptr<SimulatedSource> SimulatedSource::create(const QString &fileName, QString &error)
{
    std::unique_ptr<SimulatedSource> source(new SimulatedSource(fileName));
    return source->start(error) ? std::move(source) : nullptr;
}

SimulatedSource::SimulatedSource(const QString &fileName)
    : name(fileName)
{
    clock.start();
}

SimulatedSource::~SimulatedSource() = default;

bool SimulatedSource::start(QString &error)
{
    if (!readFile(name, content, error)) {
        return false;
    }
    published = content;
    return publish(error);
}

bool SimulatedSource::publish(QString &error)
{
    DescriptionFile file;
    if (!parseDescriptionFile(name, published, file, error)) {
        return false;
    }
    report(file.doubts);
    QString problem;
    publisher = ProcessDataPublisher::createFromText(
        file.source.module, file.source.object, file.source.instance,
        withoutSimulationKeys(published), firstValues(file), &problem);
    if (!publisher) {
        error = QStringLiteral("%1: %2").arg(name, problem);
        return false;
    }
    current = std::move(file);
    current.movingLeaves.clear();
    QObject::connect(publisher.data(), &ProcessDataPublisher::valueWritten, publisher.data(),
                     [file = name](const QString &path, const ProcessValue &value) {
                         qCDebug(simulator).noquote() << file + QStringLiteral(": a client wrote")
                                                      << path << valueToText(value.getValue());
                     });
    return true;
}

// Published before any client hears of the leaves.
ProcessDataPublisher::FirstValues SimulatedSource::firstValues(DescriptionFile &file)
{
    return [this, &file](ProcessDataPublisher &to) {
        takeMotions(std::move(file.movingLeaves));
        publishFirstValues(to);
    };
}

// A follower has no value before the leaf that it follows was published, perhaps a follower itself.
void SimulatedSource::publishFirstValues(ProcessDataPublisher &to)
{
    const auto waiting = [this] {
        return std::count_if(tracks.begin(), tracks.end(),
                             [](const Track &track) { return !track.last.isValid(); });
    };
    auto before = waiting();
    for (bool progress = true; progress && before > 0;) {
        step(to);
        const auto after = waiting();
        progress = after < before;
        before = after;
    }
}

void SimulatedSource::takeMotions(std::vector<MovingLeaf> &&leaves)
{
    const qint64 now = clock.elapsed();
    std::vector<Track> previous = std::move(tracks);
    tracks.clear();
    for (MovingLeaf &moving : leaves) {
        const auto same = std::find_if(previous.begin(), previous.end(), [&](const Track &track) {
            return track.moving.leaf.path == moving.leaf.path
                && track.moving.leaf.type.name == moving.leaf.type.name
                && track.moving.leaf.properties == moving.leaf.properties
                && track.moving.leaf.simulate == moving.leaf.simulate;
        });
        if (same == previous.end()) {
            tracks.push_back({std::move(moving), now, QVariant()});
        } else {
            tracks.push_back(std::move(*same));
            previous.erase(same);
        }
    }
}

void SimulatedSource::step()
{
    if (isPublished()) {
        step(*publisher);
    }
}

void SimulatedSource::step(ProcessDataPublisher &to)
{
    const qint64 now = clock.elapsed();
    const Motion::ValueReader read
        = [&to](const QString &path) { return to.value(path).getValue(); };
    QVector<QPair<QString, ProcessValue>> batch;
    std::vector<Track *> moved;
    for (Track &track : tracks) {
        QVariant value = track.moving.motion->next(now - track.begin, read);
        if (value.isValid() && value != track.last) {
            batch.append({track.moving.leaf.path, ProcessValue(value)});
            track.last = std::move(value);
            moved.push_back(&track);
        }
    }
    if (batch.isEmpty() || to.publish(batch)) {
        return;
    }
    // No value breaks its limits, so it is the buffer that was kept locked: the next step tries again.
    for (Track *track : moved) {
        track->last = QVariant();
    }
}

void SimulatedSource::reload()
{
    if (!isPublished()) {
        return; // looked at again when it is
    }
    QByteArray newContent;
    QString error;
    if (!readFile(name, newContent, error)) {
        if (!std::exchange(missing, true)) {
            qCWarning(simulator).noquote()
                << error + QStringLiteral("; the old description goes on");
        }
        return;
    }
    missing = false;
    if (newContent == content) {
        return;
    }
    content = newContent;
    if (!replace(content, error)) {
        qCWarning(simulator).noquote() << error + QStringLiteral("; the old description goes on");
    }
}

bool SimulatedSource::replace(const QByteArray &newContent, QString &error)
{
    DescriptionFile file;
    if (!parseDescriptionFile(name, newContent, file, error)) {
        return false;
    }
    report(file.doubts);
    if (!apply(file, newContent, error)) {
        return false;
    }
    published = newContent;
    current = std::move(file);
    current.movingLeaves.clear();
    return true;
}

// Before the file is taken: what looks strange may be the reason for which it is refused.
void SimulatedSource::report(const QStringList &newDoubts)
{
    if (newDoubts == doubts) {
        return;
    }
    doubts = newDoubts;
    for (const QString &doubt : qAsConst(doubts)) {
        qCWarning(simulator).noquote() << QStringLiteral("%1: %2").arg(name, doubt);
    }
}

bool SimulatedSource::apply(DescriptionFile &file, const QByteArray &newContent, QString &error)
{
    if (file.source != current.source) {
        error
            = QStringLiteral("%1: module, object and instance cannot change while it is published")
                  .arg(name);
        return false;
    }
    QString problem;
    QString what = QStringLiteral("movement changed");
    if (!sameLayout(file.description, current.description)) {
        what = QStringLiteral("description replaced");
        publisher->replaceDescriptionText(withoutSimulationKeys(newContent), firstValues(file),
                                          &problem);
    } else {
        if (withoutSimulation(exactObject(newContent))
            != withoutSimulation(exactObject(published))) {
            what = QStringLiteral("properties changed");
            publisher->replacePropertiesText(withoutSimulationKeys(newContent), &problem);
        }
        if (problem.isEmpty()) {
            firstValues(file)(*publisher);
        }
    }
    if (!problem.isEmpty()) {
        error = QStringLiteral("%1: %2").arg(name, problem);
        return false;
    }
    qCInfo(simulator).noquote() << name + QStringLiteral(": ") + what;
    return true;
}
