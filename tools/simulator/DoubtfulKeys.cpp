// SPDX-License-Identifier: MIT
// Keys of a description file that are unknown, but look like known ones.
#include "DoubtfulKeys.h"

#include "NearMiss.h"

#include <QHash>
#include <QJsonArray>

namespace {

constexpr int deepestLevel = 64; // what descriptions may have at most

const QStringList &documentKeys()
{
    static const QStringList keys{
        QStringLiteral("format"),   QStringLiteral("license"), QStringLiteral("description"),
        QStringLiteral("module"),   QStringLiteral("object"),  QStringLiteral("instance"),
        QStringLiteral("elements"), QStringLiteral("session"), QStringLiteral("buffer")};
    return keys;
}

const QStringList &elementKeys()
{
    static const QStringList keys{
        QStringLiteral("name"),     QStringLiteral("elements"),    QStringLiteral("type"),
        QStringLiteral("capacity"), QStringLiteral("offset"),      QStringLiteral("readOnly"),
        QStringLiteral("minimum"),  QStringLiteral("maximum"),     QStringLiteral("unit"),
        QStringLiteral("simulate"), QStringLiteral("description"), QStringLiteral("selectorType")};
    return keys;
}

/// Goes through a document, and counts each key once however many leaves have it.
class Search
{
public:
    void look(const QJsonObject &document)
    {
        lookAt(document, documentKeys(), QString());
        lookBelow(document, QString(), 1);
    }

    QStringList sentences() const
    {
        QStringList all;
        for (const Doubt &doubt : doubts) {
            const QString others = doubt.count == 1
                ? QString()
                : QStringLiteral(" and %1 more").arg(doubt.count - 1);
            const QString place = doubt.place.isEmpty()
                ? QString()
                : QStringLiteral("%1%2: ").arg(doubt.place, others);
            all.append(QStringLiteral("%1unknown key \"%2\"; %3")
                           .arg(place, doubt.key, didYouMean(doubt.key, doubt.known)));
        }
        return all;
    }

private:
    struct Doubt
    {
        QString place; ///< the first
        QString key;
        QStringList known; ///< what the key can have been meant to be
        int count = 0;
    };

    void lookBelow(const QJsonObject &group, const QString &prefix, int level)
    {
        const QJsonArray elements = group.value(QLatin1String("elements")).toArray();
        for (const QJsonValue &value : elements) {
            const QJsonObject element = value.toObject();
            const QString path = prefix + element.value(QLatin1String("name")).toString();
            const bool isGroup = element.contains(QLatin1String("elements"));
            lookAt(element, elementKeys(),
                   (isGroup ? QStringLiteral("group \"%1\"") : QStringLiteral("leaf \"%1\""))
                       .arg(path));
            if (isGroup && level < deepestLevel) {
                lookBelow(element, path + QLatin1Char('/'), level + 1);
            }
        }
    }

    void lookAt(const QJsonObject &object, const QStringList &known, const QString &place)
    {
        const QStringList present = object.keys();
        for (const QString &key : present) {
            if (!known.contains(key)) {
                note(key, known, present, place);
            }
        }
    }

    void note(const QString &key, const QStringList &known, const QStringList &present,
              const QString &place)
    {
        const auto earlier = numbers.constFind(key);
        if (earlier != numbers.constEnd()) {
            ++doubts[*earlier].count;
            return;
        }
        const auto seen = misses.constFind(key);
        QStringList free
            = seen != misses.constEnd() ? *seen : *misses.insert(key, nearMisses(key, known));
        for (const QString &taken : present) {
            free.removeAll(taken); // who has both means both
        }
        if (!free.isEmpty()) {
            numbers.insert(key, doubts.size());
            doubts.append({place, key, free, 1});
        }
    }

    QHash<QString, QStringList> misses; // of all unknown keys so far
    QVector<Doubt> doubts;
    QHash<QString, int> numbers; // positions in there, by key
};

} // namespace

QStringList doubtfulKeys(const QJsonObject &document)
{
    Search search;
    search.look(document);
    return search.sentences();
}
