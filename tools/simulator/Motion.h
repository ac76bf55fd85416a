// SPDX-License-Identifier: MIT
// How one simulated leaf moves.
#ifndef MOTION_H
#define MOTION_H

#include "LeafTemplate.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>

/// Computes the values of one leaf over time.
class Motion
{
public:
    /// Current value of another leaf of the same instance; invalid when it has none.
    using ValueReader = std::function<QVariant(const QString &path)>;

    Motion() = default;
    virtual ~Motion();
    Motion(const Motion &) = delete;
    Motion &operator=(const Motion &) = delete;

    /// The value now, of the leaf's own type.
    ///
    /// @param elapsed  milliseconds since the motion began; never less than in the call before
    /// @returns an invalid value when there is nothing to publish yet
    virtual QVariant next(qint64 elapsed, const ValueReader &read) = 0;
};

/// Makes the motion that a leaf's "simulate" object describes.
///
/// @param leaves  all leaves of the instance: what a leaf may follow
/// @param error   receives "simulate.<key> <what is wrong>"; left alone on success
/// @returns null when a parameter is wrong
std::unique_ptr<Motion> createMotion(const LeafTemplate &leaf, const QVector<LeafTemplate> &leaves,
                                     QString &error);

#endif
