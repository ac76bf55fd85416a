// SPDX-License-Identifier: MIT
// The condition that ends a watch.
#ifndef UNTILEXPRESSION_H
#define UNTILEXPRESSION_H

#include "WatchTargets.h"

#include <QString>
#include <QVariant>
#include <QVector>

#include <optional>

/// What a condition may know of one selector.
struct WatchedValue
{
    QVariant value; ///< invalid: none, or one with an error type
    bool changed = false; ///< at least once since the watch began
    std::optional<double> age = {}; ///< seconds since it was published; nothing when it never was
};

/// A condition over the values of selectors:
///
///     condition = all { "||" all }
///     all       = term { "&&" term }
///     term      = "!" term | "(" condition ")" | "changed" [ "(" selector ")" ]
///               | operand [ ( "==" | "!=" | "<" | "<=" | ">" | ">=" ) operand ]
///     operand   = selector | number | "true" | "false" | 'text' | "text"
///               | "age" "(" selector ")" | number ( "ms" | "s" | "min" | "h" | "d" )
///     selector  = NAME | "#" POSITION (0 is the first)
///
/// An operand alone holds when it is true or a number other than 0. A comparison with a selector
/// without a good value, or of a text with a number, is neither true nor false, nor is its
/// opposite. An age is known of every value that was published, good or not, and compares with
/// times; a number without unit counts seconds there.
class UntilExpression
{
public:
    enum Truth { False, True, Unknown };

    /// @param error  receives one sentence that names the place; left alone on success
    static bool parse(const QString &text, const QVector<WatchTarget> &targets,
                      UntilExpression &expression, QString &error);

    /// @param values  one for each target that the text was parsed for
    Truth evaluate(const QVector<WatchedValue> &values) const;

private:
    friend class UntilParser;

    enum Kind { Or, And, Not, Changed, Bare, Equal, Different, Less, AtMost, More, AtLeast };

    struct Operand
    {
        int selector = -1; ///< -1: the literal
        QVariant literal;
        bool isAge = false; ///< of the selector
        bool isTime = false; ///< the literal, with a unit; in seconds
    };

    struct Node
    {
        Kind kind = Bare;
        int left = -1; ///< node
        int right = -1; ///< node
        Operand first; ///< of Changed without a selector: any
        Operand second;
    };

    static QVariant valueOf(const Operand &operand, const QVector<WatchedValue> &values);
    static Truth changed(const Operand &operand, const QVector<WatchedValue> &values);
    Truth evaluate(int index, const QVector<WatchedValue> &values) const;

    QVector<Node> nodes; ///< the last one is the root
};

#endif
