// SPDX-License-Identifier: MIT
// Changes that are too small to be worth a line.
#ifndef DEADBAND_H
#define DEADBAND_H

#include <QJsonObject>
#include <QString>
#include <QVariant>

#include <optional>

/// How far a number may move away from the one told last without being told. It means what the
/// deadband of a history means.
class Deadband
{
public:
    Deadband() = default; ///< none: every change is told

    /// Takes "0.5", in the unit of each leaf, or "0.5%" of a leaf's range, which is at most 100.
    ///
    /// @returns nothing for any other text
    static std::optional<Deadband> fromText(const QString &text);

    /// In the unit of one leaf; nothing when it is a share of a range and the leaf, a number, has
    /// none. 0, every change, when the range is empty, reversed or infinite.
    ///
    /// @param properties  the leaf's; with their minimum, maximum and type
    std::optional<double> of(const QJsonObject &properties) const;

    /// Whether a value is worth telling after another. What is not a number is compared whole.
    ///
    /// @param deadband  in the values' unit
    static bool isExceeded(const QVariant &before, const QVariant &after, double deadband);

private:
    double amount = 0;
    bool isPercent = false;
};

#endif
