// SPDX-License-Identifier: MIT
// Takes conditions apart into words.
#include "UntilTokens.h"

#include <QRegularExpression>
#include <QVector>

bool nextToken(const QString &text, int &position, UntilToken &token)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\G\\s*(?<token>(?<sign>&&|\\|\\||[=!<>]=|[<>!()])"
                       "|(?<number>[-+]?(?:0[xX][0-9a-fA-F]+|(?:\\d+\\.?\\d*|\\.\\d+)"
                       "(?:[eE][-+]?\\d+)?)(?![\\p{L}\\p{N}_.]))"
                       "|(?<time>(?:\\d+\\.?\\d*|\\.\\d+)(?:ms|s|min|h|d)(?![\\p{L}\\p{N}_.]))"
                       "|\"(?<double>[^\"]*)\"|'(?<single>[^']*)'"
                       "|\\#(?<position>\\d+)"
                       "|(?<name>[\\p{L}_][\\p{L}\\p{N}_.-]*)"
                       "|(?<end>$))"),
        QRegularExpression::UseUnicodePropertiesOption);
    static const QVector<QPair<QString, UntilToken::Kind>> groups{
        {QStringLiteral("sign"), UntilToken::Sign},
        {QStringLiteral("number"), UntilToken::Number},
        {QStringLiteral("time"), UntilToken::Time},
        {QStringLiteral("double"), UntilToken::Text},
        {QStringLiteral("single"), UntilToken::Text},
        {QStringLiteral("position"), UntilToken::Position},
        {QStringLiteral("name"), UntilToken::Name},
        {QStringLiteral("end"), UntilToken::End}};
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
