// SPDX-License-Identifier: MIT
// A leaf that follows another one, as a measured value follows its setpoint.
#ifndef FOLLOWMOTION_H
#define FOLLOWMOTION_H

#include "WaveMotion.h"

/// offset + gain × the other leaf, approached with a first-order lag.
struct Follow
{
    QString path;
    double timeConstant = 0; ///< seconds until 63 % of a step is made; 0 follows at once
    double gain = 1;
    double offset = 0;
    Range range;
    int capacity = 0; ///< bytes that a string or bytes leaf holds
};

/// Strings and bytes are copied, cut to the capacity.
class FollowMotion : public Motion
{
public:
    FollowMotion(LeafType type, Follow follow);
    QVariant next(qint64 elapsed, const ValueReader &read) override;

private:
    QVariant copy(const QVariant &target) const;

    const LeafType type;
    const Follow follow;
    double current = 0;
    qint64 last = -1;
};

#endif
