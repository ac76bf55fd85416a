// SPDX-License-Identifier: MIT
// Parses conditions.
#include "Duration.h"
#include "LeafType.h"
#include "UntilExpression.h"
#include "UntilTokens.h"

#include <algorithm>

namespace {

constexpr int deepestNesting = 64;

} // namespace

/// Recursive descent over the tokens; the first fault ends it.
class UntilParser
{
public:
    UntilParser(const QVector<WatchTarget> &targets, UntilExpression &expression)
        : targets(targets)
        , nodes(expression.nodes)
    {
    }

    bool parse(const QString &text, QString &error)
    {
        if (!readTokens(text) || condition() < 0
            || (current().kind != UntilToken::End
                && fail(QStringLiteral("unexpected \"%1\"").arg(current().text)) < 0)) {
            error = fault;
            return false;
        }
        return true;
    }

private:
    using E = UntilExpression;

    bool readTokens(const QString &text)
    {
        int position = 0;
        do {
            UntilToken token;
            if (!nextToken(text, position, token)) {
                while (position < text.size() && text.at(position).isSpace()) {
                    ++position;
                }
                const bool assignment = text.at(position) == QLatin1Char('=');
                fault = QStringLiteral("place %1: \"%2\" is not understood%3")
                            .arg(position + 1)
                            .arg(text.mid(position, 1),
                                 assignment ? QStringLiteral("; == compares") : QString());
                return false;
            }
            tokens.append(token);
        } while (tokens.constLast().kind != UntilToken::End);
        return true;
    }

    const UntilToken &current() const { return tokens.at(at); }

    bool take(const char *sign)
    {
        const bool found
            = current().kind == UntilToken::Sign && current().text == QLatin1String(sign);
        at += found ? 1 : 0;
        return found;
    }

    int fail(const QString &problem)
    {
        if (fault.isEmpty()) {
            fault = QStringLiteral("place %1: %2").arg(current().place).arg(problem);
        }
        return -1;
    }

    int add(const E::Node &node)
    {
        nodes.append(node);
        return nodes.size() - 1;
    }

    int chain(const char *sign, E::Kind kind, int (UntilParser::*part)())
    {
        int left = (this->*part)();
        while (left >= 0 && take(sign)) {
            const int right = (this->*part)();
            left = right < 0 ? -1 : add({kind, left, right, {}, {}});
        }
        return left;
    }

    int condition() { return chain("||", E::Or, &UntilParser::all); }
    int all() { return chain("&&", E::And, &UntilParser::term); }

    int term()
    {
        if (++depth > deepestNesting) {
            return fail(QStringLiteral("nested too deeply"));
        }
        const int result = nested();
        --depth;
        return result;
    }

    int nested()
    {
        if (take("!")) {
            const int operand = term();
            return operand < 0 ? -1 : add({E::Not, operand, -1, {}, {}});
        }
        if (take("(")) {
            const int inner = condition();
            return inner < 0 || take(")") ? inner : fail(QStringLiteral("\")\" is missing"));
        }
        // A selector of that name can still be had by its position or a label.
        if (current().kind == UntilToken::Name && current().text == QLatin1String("changed")) {
            return changed();
        }
        return comparison();
    }

    bool isFollowedBy(const char *sign) const
    {
        const UntilToken &next = tokens.at(std::min(at + 1, tokens.size() - 1));
        return next.kind == UntilToken::Sign && next.text == QLatin1String(sign);
    }

    int changed()
    {
        ++at;
        E::Operand which;
        if (take("(")) {
            if (!operand(which)) {
                return -1;
            }
            if (which.selector < 0) {
                return fail(QStringLiteral("changed() takes a selector"));
            }
            if (!take(")")) {
                return fail(QStringLiteral("\")\" is missing"));
            }
        }
        return add({E::Changed, -1, -1, which, {}});
    }

    int comparison()
    {
        static const QVector<QPair<const char *, E::Kind>> signsOfComparison{
            {"==", E::Equal},   {"!=", E::Different}, {"<=", E::AtMost},
            {">=", E::AtLeast}, {"<", E::Less},       {">", E::More}};
        E::Node node;
        if (!operand(node.first)) {
            return -1;
        }
        for (const auto &sign : signsOfComparison) {
            if (take(sign.first)) {
                node.kind = sign.second;
                return operand(node.second) && timesFit(node) ? add(node) : -1;
            }
        }
        return timesFit(node) ? add(node) : -1;
    }

    // Of values nobody knows in which unit they would have to be.
    bool timesFit(const E::Node &node)
    {
        const bool hasTime = node.first.isTime || node.second.isTime;
        if (hasTime && !node.first.isAge && !node.second.isAge) {
            fail(QStringLiteral("a time can be compared with an age() only"));
            return false;
        }
        return true;
    }

    bool age(E::Operand &result)
    {
        at += 2; // the word and what opens
        if (!operand(result)) {
            return false;
        }
        if (result.selector < 0 || result.isAge) {
            fail(QStringLiteral("age() takes a selector"));
            return false;
        }
        result.isAge = true;
        if (!take(")")) {
            fail(QStringLiteral("\")\" is missing"));
            return false;
        }
        return true;
    }

    bool operand(E::Operand &result)
    {
        const UntilToken &token = current();
        if (token.kind == UntilToken::Name && token.text == QLatin1String("age")
            && isFollowedBy("(")) {
            return age(result);
        }
        bool good = true;
        switch (token.kind) {
        case UntilToken::Number:
            good = number(token.text, result.literal);
            break;
        case UntilToken::Time:
            good = time(token.text, result);
            break;
        case UntilToken::Text:
            result.literal = token.text;
            break;
        case UntilToken::Position:
            good = position(token.text, result.selector);
            break;
        case UntilToken::Name:
            good = name(token.text, result);
            break;
        case UntilToken::End:
        case UntilToken::Sign:
            fail(QStringLiteral("a selector or a value is missing"));
            good = false;
            break;
        }
        at += good ? 1 : 0;
        return good;
    }

    bool number(const QString &text, QVariant &literal)
    {
        QString problem;
        for (const char *type : {"int64", "uint64", "float64"}) {
            if (valueFromText(*leafType(QLatin1String(type)), text, literal, problem)) {
                return true;
            }
        }
        fail(QStringLiteral("\"%1\" %2").arg(text, problem));
        return false;
    }

    bool time(const QString &text, E::Operand &result)
    {
        const std::optional<double> milliseconds
            = millisecondsFromText(text, millisecondsPerSecond);
        if (!milliseconds) {
            fail(
                QStringLiteral("\"%1\" is not a time such as 500ms, 5s, 2min, 1h or 7d").arg(text));
            return false;
        }
        result.literal = *milliseconds / millisecondsPerSecond;
        result.isTime = true;
        return true;
    }

    bool position(const QString &text, int &selector)
    {
        bool ok = false;
        selector = text.toInt(&ok);
        if (!ok || selector >= targets.size()) {
            fail(QStringLiteral("there is no selector #%1; the last one is #%2")
                     .arg(text)
                     .arg(targets.size() - 1));
            return false;
        }
        return true;
    }

    bool name(const QString &text, E::Operand &result)
    {
        QStringList positions;
        for (int i = 0; i < targets.size(); ++i) {
            if (targets.at(i).name == text) {
                positions.append(QStringLiteral("#%1").arg(i));
                result.selector = i;
            }
        }
        if (positions.size() > 1) {
            fail(QStringLiteral("\"%1\" may be %2; say which, or give labels (NAME=URL)")
                     .arg(text, positions.join(QLatin1String(" or "))));
            return false;
        }
        const bool isTrue = text == QLatin1String("true");
        if (positions.isEmpty() && (isTrue || text == QLatin1String("false"))) {
            result.literal = isTrue;
            return true;
        }
        if (positions.isEmpty()) {
            fail(QStringLiteral("no selector is called \"%1\"; texts stand in quotes").arg(text));
            return false;
        }
        return true;
    }

    const QVector<WatchTarget> &targets;
    QVector<E::Node> &nodes;
    QVector<UntilToken> tokens;
    int at = 0;
    int depth = 0;
    QString fault;
};

bool UntilExpression::parse(const QString &text, const QVector<WatchTarget> &targets,
                            UntilExpression &expression, QString &error)
{
    UntilExpression parsed;
    QString problem;
    if (!UntilParser(targets, parsed).parse(text, problem)) {
        error = QStringLiteral("--until \"%1\", %2").arg(text, problem);
        return false;
    }
    expression = parsed;
    return true;
}
