// SPDX-License-Identifier: MIT
// First-order lag behind another leaf.
#include "FollowMotion.h"

#include <cmath>
#include <utility>

namespace {

constexpr double millisecondsPerSecond = 1000;
constexpr double closeEnough = 1e-4; // of the target: then the value rests instead of creeping on

} // namespace

FollowMotion::FollowMotion(LeafType type, Follow follow)
    : type(std::move(type))
    , follow(std::move(follow))
{
}

QVariant FollowMotion::copy(const QVariant &target) const
{
    if (type.kind == ValueKind::Bytes) {
        return target.toByteArray().left(follow.capacity);
    }
    QString text = target.toString();
    while (text.toUtf8().size() > follow.capacity) {
        text.chop(text.size() > 1 && text.at(text.size() - 1).isLowSurrogate() ? 2 : 1);
    }
    return text;
}

QVariant FollowMotion::next(qint64 elapsed, const ValueReader &read)
{
    const QVariant value = read(follow.path);
    const bool number = value.type() == QVariant::Double
        || value.type() == static_cast<QVariant::Type>(QMetaType::Float);
    if (!value.isValid() || (number && !std::isfinite(value.toDouble()))) {
        return {};
    }
    if (type.kind == ValueKind::String || type.kind == ValueKind::Bytes) {
        return copy(value);
    }
    const double target = qBound(
        follow.range.lowest, follow.offset + follow.gain * value.toDouble(), follow.range.highest);
    if (last < 0 || follow.timeConstant <= 0 || !std::isfinite(current)) {
        current = target;
    } else {
        const double seconds = static_cast<double>(elapsed - last) / millisecondsPerSecond;
        current += (target - current) * (1 - std::exp(-seconds / follow.timeConstant));
        if (std::abs(target - current) <= closeEnough * std::abs(target)
            || (target == 0 && std::abs(current) <= closeEnough)) {
            current = target;
        }
    }
    last = elapsed;
    return valueFromNumber(type, current);
}
