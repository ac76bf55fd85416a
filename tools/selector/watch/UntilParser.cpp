// SPDX-License-Identifier: MIT
// Parses conditions.
#include "Duration.h"
#include "LeafType.h"
#include "UntilExpression.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int deepestNesting = 64;

struct Token
{
    enum Kind { End, Sign, Number, Time, Text, Position, Name };

    Kind kind = End;
    QString text; ///< without quotes and #
    int place = 1; ///< 1-based, for people
};

// False at a character that begins nothing.
bool nextToken(const QString &text, int &position, Token &token)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\G\\s*(?<token>(?<sign>&&|\\|\\||[=!<>]=|[<>!()])"
                       "|(?<number>[-+]?(?:0[xX][0-9a-fA-F]+|(?:\\d+\\.?\\d*|\\.\\d+)"
                       "(?:[eE][-+]?\\d+)?)(?![\\p{L}\\p{N}_.]))"
                       "|(?<time>(?:\\d+\\.?\\d*|\\.\\d+)(?:ms|s|min|h)(?![\\p{L}\\p{N}_.]))"
                       "|\"(?<double>[^\"]*)\"|'(?<single>[^']*)'"
                       "|\\#(?<position>\\d+)"
                       "|(?<name>[\\p{L}_][\\p{L}\\p{N}_.-]*)"
                       "|(?<end>$))"),
        QRegularExpression::UseUnicodePropertiesOption);
    static const QVector<QPair<QString, Token::Kind>> groups{
        {QStringLiteral("sign"), Token::Sign},   {QStringLiteral("number"), Token::Number},
        {QStringLiteral("time"), Token::Time},   {QStringLiteral("double"), Token::Text},
        {QStringLiteral("single"), Token::Text}, {QStringLiteral("position"), Token::Position},
        {QStringLiteral("name"), Token::Name},   {QStringLiteral("end"), Token::End}};
    const QRegularExpressionMatch match = pattern.match(text, position);
    for (const auto &group : groups) {
        if (match.capturedStart(group.first) >= 0) {
            token = {group.second, match.captured(group.first),
                     match.capturedStart(QStringLiteral("token")) + 1};
            position = match.capturedEnd();
            return true;
        }
    }
    return false;
}

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
            || (current().kind != Token::End
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
            Token token;
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
        } while (tokens.constLast().kind != Token::End);
        return true;
    }

    const Token &current() const { return tokens.at(at); }

    bool take(const char *sign)
    {
        const bool found = current().kind == Token::Sign && current().text == QLatin1String(sign);
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
        if (current().kind == Token::Name && current().text == QLatin1String("changed")) {
            return changed();
        }
        return comparison();
    }

    bool isFollowedBy(const char *sign) const
    {
        const Token &next = tokens.at(std::min(at + 1, tokens.size() - 1));
        return next.kind == Token::Sign && next.text == QLatin1String(sign);
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
        const Token &token = current();
        if (token.kind == Token::Name && token.text == QLatin1String("age") && isFollowedBy("(")) {
            return age(result);
        }
        bool good = true;
        switch (token.kind) {
        case Token::Number:
            good = number(token.text, result.literal);
            break;
        case Token::Time:
            good = time(token.text, result);
            break;
        case Token::Text:
            result.literal = token.text;
            break;
        case Token::Position:
            good = position(token.text, result.selector);
            break;
        case Token::Name:
            good = name(token.text, result);
            break;
        case Token::End:
        case Token::Sign:
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
            fail(QStringLiteral("\"%1\" is not a time such as 500ms, 5s, 2min or 1h").arg(text));
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
    QVector<Token> tokens;
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
