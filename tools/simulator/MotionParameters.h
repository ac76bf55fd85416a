// SPDX-License-Identifier: MIT
// Reads the parameters of a leaf's "simulate" object and remembers the first one that is wrong.
#ifndef MOTIONPARAMETERS_H
#define MOTIONPARAMETERS_H

#include "LeafTemplate.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

/// Each reader returns its default when something is wrong; ask error() once all are read.
class MotionParameters
{
public:
    explicit MotionParameters(const LeafTemplate &leaf);

    double number(const QString &key, double defaultValue);
    double requiredNumber(const QString &key);
    /// A number above zero.
    double positive(const QString &key, std::optional<double> defaultValue = std::nullopt);
    QString requiredText(const QString &key);
    /// A value of the leaf's own type that keeps its limits.
    QVariant requiredValue(const QString &key);
    /// At least one value of the leaf's own type.
    QVector<QVariant> requiredValues(const QString &key);

    bool contains(const QString &key) const { return leaf.simulate.contains(key); }

    /// Remembers a fault unless there was one before.
    void fail(const QString &key, const QString &problem);

    /// The first fault as "simulate.<key> <problem>", also of a key that no reader asked for; empty
    /// when all is well.
    QString error();

private:
    QVariant value(const QString &key, const QJsonValue &json);

    const LeafTemplate &leaf;
    QStringList known{QStringLiteral("kind")}; ///< in the order in which they were asked for
    QString firstError;
};

#endif
