// SPDX-License-Identifier: MIT
// Reading and checking of description files.
#include "DescriptionFile.h"

#include "DoubtfulKeys.h"
#include "SpellingHint.h"

#include <QFile>
#include <QJsonDocument>

namespace {

QString lineAndColumn(const QByteArray &content, int offset)
{
    const QByteArray before = content.left(offset);
    const int line = before.count('\n') + 1;
    const int column = offset - before.lastIndexOf('\n');
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

bool readName(const QJsonObject &document, const QString &key, QString &name, QString &error)
{
    const QJsonValue value = document.value(key);
    if (!value.isString()) {
        const QString problem
            = QStringLiteral("the key \"%1\" must be there and hold a text").arg(key);
        error = value.isUndefined() ? withLookAlike(problem, key, document.keys()) : problem;
        return false;
    }
    name = value.toString();
    return true;
}

bool readMotions(DescriptionFile &result, const QJsonObject &document, QString &error)
{
    const QVector<LeafTemplate> leaves = leafTemplates(document);
    for (const LeafTemplate &leaf : leaves) {
        if (!leaf.simulated) {
            continue;
        }
        QString problem;
        auto motion = createMotion(leaf, leaves, problem);
        if (!motion) {
            error = QStringLiteral("leaf \"%1\": %2").arg(leaf.path, problem);
            return false;
        }
        result.movingLeaves.push_back({leaf, std::move(motion)});
    }
    return true;
}

} // namespace

bool readFile(const QString &fileName, QByteArray &content, QString &error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return false;
    }
    content = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return false;
    }
    return true;
}

bool parseDescriptionFile(const QString &fileName, const QByteArray &content,
                          DescriptionFile &result, QString &error)
{
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(content, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("%1: %2: %3")
                    .arg(fileName, lineAndColumn(content, parseError.offset),
                         parseError.errorString());
        return false;
    }
    const QJsonObject document = json.object();
    QString problem;
    DescriptionFile parsed;
    if (!readName(document, QStringLiteral("module"), parsed.source.module, problem)
        || !readName(document, QStringLiteral("object"), parsed.source.object, problem)
        || !readName(document, QStringLiteral("instance"), parsed.source.instance, problem)
        || !readMotions(parsed, document, problem)) {
        error = QStringLiteral("%1: %2").arg(fileName, problem);
        return false;
    }
    parsed.doubts = doubtfulKeys(document);
    parsed.description = withoutSimulation(document);
    result = std::move(parsed);
    return true;
}
