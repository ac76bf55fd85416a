// SPDX-License-Identifier: MIT
// Evaluates conditions.
#include "UntilExpression.h"

#include <algorithm>
#include <optional>

namespace {

bool isInteger(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

bool isNumber(const QVariant &value)
{
    return isInteger(value) || value.userType() == QMetaType::Double
        || value.userType() == QMetaType::Float;
}

template <typename T> int order(const T &left, const T &right)
{
    return left < right ? -1 : static_cast<int>(right < left);
}

// Doubles would take neighbours beyond 2^53 for the same number.
int compareIntegers(const QVariant &left, const QVariant &right)
{
    const bool leftNegative = left.userType() != QMetaType::ULongLong && left.toLongLong() < 0;
    const bool rightNegative = right.userType() != QMetaType::ULongLong && right.toLongLong() < 0;
    if (leftNegative || rightNegative) {
        return leftNegative && rightNegative ? order(left.toLongLong(), right.toLongLong())
                                             : order(int(rightNegative), int(leftNegative));
    }
    return order(left.toULongLong(), right.toULongLong());
}

// Nothing when they cannot be compared.
std::optional<int> compare(const QVariant &left, const QVariant &right)
{
    if (isInteger(left) && isInteger(right)) {
        return compareIntegers(left, right);
    }
    if (isNumber(left) && isNumber(right)) {
        // 1.8 as typed is a double other than the float32 1.8.
        const bool single
            = left.userType() == QMetaType::Float || right.userType() == QMetaType::Float;
        const double a = single ? double(left.toFloat()) : left.toDouble();
        const double b = single ? double(right.toFloat()) : right.toDouble();
        return a == a && b == b ? std::optional<int>(order(a, b)) : std::nullopt;
    }
    if (left.userType() == QMetaType::QString && right.userType() == QMetaType::QString) {
        return order(left.toString(), right.toString());
    }
    if (left.userType() == QMetaType::QByteArray && right.userType() == QMetaType::QByteArray) {
        return order(left.toByteArray(), right.toByteArray());
    }
    return std::nullopt;
}

UntilExpression::Truth truth(bool value)
{
    return value ? UntilExpression::True : UntilExpression::False;
}

} // namespace

QVariant UntilExpression::valueOf(const Operand &operand, const QVector<WatchedValue> &values)
{
    if (operand.selector < 0) {
        return operand.literal;
    }
    const WatchedValue value = values.value(operand.selector);
    return operand.isAge ? (value.age ? QVariant(*value.age) : QVariant()) : value.value;
}

UntilExpression::Truth UntilExpression::changed(const Operand &operand,
                                                const QVector<WatchedValue> &values)
{
    if (operand.selector >= 0) {
        return truth(values.value(operand.selector).changed);
    }
    return truth(std::any_of(values.begin(), values.end(),
                             [](const WatchedValue &value) { return value.changed; }));
}

UntilExpression::Truth UntilExpression::evaluate(const QVector<WatchedValue> &values) const
{
    return evaluate(nodes.size() - 1, values);
}

UntilExpression::Truth UntilExpression::evaluate(int index,
                                                 const QVector<WatchedValue> &values) const
{
    const Node &node = nodes.at(index);
    if (node.kind == Or || node.kind == And) {
        const Truth decisive = node.kind == Or ? True : False;
        const Truth left = evaluate(node.left, values);
        const Truth right = evaluate(node.right, values);
        if (left == decisive || right == decisive) {
            return decisive;
        }
        return left == Unknown || right == Unknown ? Unknown : left;
    }
    if (node.kind == Not) {
        const Truth operand = evaluate(node.left, values);
        return operand == Unknown ? Unknown : truth(operand == False);
    }
    if (node.kind == Changed) {
        return changed(node.first, values);
    }
    const QVariant first = valueOf(node.first, values);
    if (node.kind == Bare) {
        return isNumber(first) ? truth(first.toDouble() != 0) : Unknown;
    }
    const std::optional<int> result = compare(first, valueOf(node.second, values));
    if (!result) {
        return Unknown;
    }
    switch (node.kind) {
    case Equal:
        return truth(*result == 0);
    case Different:
        return truth(*result != 0);
    case Less:
        return truth(*result < 0);
    case AtMost:
        return truth(*result <= 0);
    case More:
        return truth(*result > 0);
    default:
        return truth(*result >= 0);
    }
}
