// SPDX-License-Identifier: MIT
// Makes motions from the parameters in a description file.
#include "Motion.h"

#include "FollowMotion.h"
#include "MotionParameters.h"
#include "WaveMotion.h"

#include <QCryptographicHash>

#include <algorithm>
#include <map>

namespace {

constexpr double defaultInterval = 1000; // milliseconds

using Factory = std::unique_ptr<Motion> (*)(const LeafTemplate &, MotionParameters &);

double limit(const LeafTemplate &leaf, const char *key, double typeLimit)
{
    const QJsonValue json = leaf.properties.value(QLatin1String(key));
    return json.isDouble() ? json.toDouble() : typeLimit;
}

Range leafRange(const LeafTemplate &leaf)
{
    return {std::max(leaf.type.lowest(), limit(leaf, "minimum", leaf.type.lowest())),
            std::min(leaf.type.highest(), limit(leaf, "maximum", leaf.type.highest()))};
}

void checkInside(const LeafTemplate &leaf, const Range &swing, const QString &key,
                 MotionParameters &parameters)
{
    const Range allowed = leafRange(leaf);
    if (swing.lowest < allowed.lowest || swing.highest > allowed.highest) {
        parameters.fail(
            key,
            QStringLiteral("makes the value move from %1 to %2, but the leaf allows %3 to %4")
                .arg(swing.lowest)
                .arg(swing.highest)
                .arg(allowed.lowest)
                .arg(allowed.highest));
    }
}

Wave readWave(const LeafTemplate &leaf, MotionParameters &parameters, Wave::Shape shape)
{
    Wave wave;
    wave.shape = shape;
    if (leaf.type.kind == ValueKind::Bool && shape == Wave::Square) {
        wave.offset = 0.5;
        wave.amplitude = 0.5;
    } else {
        wave.offset = parameters.number(QStringLiteral("offset"), 0);
        wave.amplitude = parameters.number(QStringLiteral("amplitude"), 1);
    }
    wave.period = parameters.positive(QStringLiteral("period"));
    wave.phase = parameters.number(QStringLiteral("phase"), 0);
    const QString swingKey = parameters.contains(QStringLiteral("amplitude"))
        ? QStringLiteral("amplitude")
        : QStringLiteral("offset");
    checkInside(leaf, wave.swing(), swingKey, parameters);
    return wave;
}

std::unique_ptr<Motion> makeConstant(const LeafTemplate &leaf, MotionParameters &parameters)
{
    Q_UNUSED(leaf)
    return std::make_unique<SequenceMotion>(
        QVector<QVariant>{parameters.requiredValue(QStringLiteral("value"))}, defaultInterval);
}

std::unique_ptr<Motion> makeSequence(const LeafTemplate &leaf, MotionParameters &parameters)
{
    Q_UNUSED(leaf)
    const QVector<QVariant> values = parameters.requiredValues(QStringLiteral("values"));
    return std::make_unique<SequenceMotion>(
        values, parameters.positive(QStringLiteral("interval"), defaultInterval));
}

std::unique_ptr<Motion> makeSine(const LeafTemplate &leaf, MotionParameters &parameters)
{
    return std::make_unique<WaveMotion>(leaf.type, readWave(leaf, parameters, Wave::Sine));
}

std::unique_ptr<Motion> makeRamp(const LeafTemplate &leaf, MotionParameters &parameters)
{
    return std::make_unique<WaveMotion>(leaf.type, readWave(leaf, parameters, Wave::Ramp));
}

std::unique_ptr<Motion> makeSquare(const LeafTemplate &leaf, MotionParameters &parameters)
{
    return std::make_unique<WaveMotion>(leaf.type, readWave(leaf, parameters, Wave::Square));
}

std::unique_ptr<Motion> makeRandomWalk(const LeafTemplate &leaf, MotionParameters &parameters)
{
    const Range allowed = leafRange(leaf);
    Walk walk;
    walk.step = parameters.positive(QStringLiteral("step"));
    walk.interval = parameters.positive(QStringLiteral("interval"), defaultInterval);
    walk.start = parameters.number(QStringLiteral("offset"),
                                   std::min(std::max(0.0, allowed.lowest), allowed.highest));
    walk.range = allowed;
    checkInside(leaf, {walk.start, walk.start}, QStringLiteral("offset"), parameters);
    if (parameters.contains(QStringLiteral("amplitude"))) {
        const double amplitude = parameters.positive(QStringLiteral("amplitude"));
        walk.range = {walk.start - amplitude, walk.start + amplitude};
        checkInside(leaf, walk.range, QStringLiteral("amplitude"), parameters);
    }
    // Without a seed each leaf walks its own way, and the same way in every run.
    const QByteArray hash
        = QCryptographicHash::hash(leaf.path.toUtf8(), QCryptographicHash::Sha1).toHex().left(8);
    const double seed = parameters.number(QStringLiteral("seed"), hash.toUInt(nullptr, 16));
    if (seed < 0 || seed > 4294967295.0) {
        parameters.fail(QStringLiteral("seed"),
                        QStringLiteral("must lie between 0 and 4294967295"));
    } else {
        walk.seed = static_cast<quint32>(seed);
    }
    return std::make_unique<RandomWalkMotion>(leaf.type, walk);
}

std::unique_ptr<Motion> makeCounter(const LeafTemplate &leaf, MotionParameters &parameters)
{
    const Range allowed = leafRange(leaf);
    Count count;
    count.step = parameters.number(QStringLiteral("step"), 1);
    if (count.step == 0) {
        parameters.fail(QStringLiteral("step"), QStringLiteral("must not be 0"));
    }
    count.interval = parameters.positive(QStringLiteral("interval"), defaultInterval);
    count.start = parameters.number(QStringLiteral("offset"),
                                    std::min(std::max(0.0, allowed.lowest), allowed.highest));
    count.range = allowed;
    checkInside(leaf, {count.start, count.start}, QStringLiteral("offset"), parameters);
    return std::make_unique<CounterMotion>(leaf.type, count);
}

std::unique_ptr<Motion> makeFollow(const LeafTemplate &leaf, const QVector<LeafTemplate> &leaves,
                                   MotionParameters &parameters)
{
    Follow follow;
    follow.path = parameters.requiredText(QStringLiteral("of"));
    const auto target = std::find_if(leaves.begin(), leaves.end(), [&](const LeafTemplate &other) {
        return other.path == follow.path && other.path != leaf.path;
    });
    const bool numeric = leaf.type.isNumber() || leaf.type.kind == ValueKind::Bool;
    if (target == leaves.end()) {
        parameters.fail(QStringLiteral("of"),
                        QStringLiteral("names no other leaf: \"%1\"").arg(follow.path));
    } else if (numeric != (target->type.isNumber() || target->type.kind == ValueKind::Bool)
               || (!numeric && target->type.kind != leaf.type.kind)) {
        parameters.fail(QStringLiteral("of"),
                        QStringLiteral("names a leaf of another kind: %1 cannot follow %2")
                            .arg(leaf.type.name, target->type.name));
    }
    if (numeric) {
        follow.timeConstant = parameters.number(QStringLiteral("timeConstant"), 0);
        if (follow.timeConstant < 0) {
            parameters.fail(QStringLiteral("timeConstant"), QStringLiteral("must not be negative"));
        }
        follow.gain = parameters.number(QStringLiteral("gain"), 1);
        follow.offset = parameters.number(QStringLiteral("offset"), 0);
    }
    follow.range = leafRange(leaf);
    follow.capacity = leaf.properties.value(QLatin1String("capacity")).toInt();
    return std::make_unique<FollowMotion>(leaf.type, follow);
}

struct Kind
{
    Factory make;
    bool forAllTypes; ///< also for strings and bytes
    bool forBool;
};

const std::map<QString, Kind> &kinds()
{
    static const std::map<QString, Kind> table{
        {QStringLiteral("constant"), {makeConstant, true, true}},
        {QStringLiteral("sequence"), {makeSequence, true, true}},
        {QStringLiteral("sine"), {makeSine, false, false}},
        {QStringLiteral("ramp"), {makeRamp, false, false}},
        {QStringLiteral("square"), {makeSquare, false, true}},
        {QStringLiteral("randomWalk"), {makeRandomWalk, false, false}},
        {QStringLiteral("counter"), {makeCounter, false, false}},
    };
    return table;
}

bool suits(const Kind &kind, const LeafType &type)
{
    return kind.forAllTypes || type.isNumber() || (kind.forBool && type.kind == ValueKind::Bool);
}

} // namespace

Motion::~Motion() = default;

std::unique_ptr<Motion> createMotion(const LeafTemplate &leaf, const QVector<LeafTemplate> &leaves,
                                     QString &error)
{
    MotionParameters parameters(leaf);
    const QString name = parameters.requiredText(QStringLiteral("kind"));
    std::unique_ptr<Motion> motion;
    const auto kind = kinds().find(name);
    if (name == QLatin1String("follow")) {
        motion = makeFollow(leaf, leaves, parameters);
    } else if (kind == kinds().end()) {
        parameters.fail(QStringLiteral("kind"),
                        QStringLiteral("\"%1\" is none of constant, counter, follow, ramp, "
                                       "randomWalk, sequence, sine, square")
                            .arg(name));
    } else if (!suits(kind->second, leaf.type)) {
        parameters.fail(
            QStringLiteral("kind"),
            QStringLiteral("\"%1\" does not suit a leaf of type %2").arg(name, leaf.type.name));
    } else {
        motion = kind->second.make(leaf, parameters);
    }
    const QString fault = parameters.error();
    if (!fault.isEmpty()) {
        error = fault;
        return nullptr;
    }
    return motion;
}
