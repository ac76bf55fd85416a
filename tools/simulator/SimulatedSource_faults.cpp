// SPDX-License-Identifier: MIT
// What a scenario does to one source.
#include "SimulatedSource.h"

#include "ProcessDataPublisher.h"
#include "PublishedText.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

// Only an object that holds the leaf is changed; the others stay as they are.
bool retypeLeaf(QJsonArray &elements, const QString &path, const QString &type, int capacity)
{
    const QString first = path.section(QLatin1Char('/'), 0, 0);
    const QString rest = path.section(QLatin1Char('/'), 1);
    for (int i = 0; i < elements.size(); ++i) {
        QJsonObject element = elements.at(i).toObject();
        if (element.value(QLatin1String("name")).toString() != first) {
            continue;
        }
        if (rest.isEmpty() && element.contains(QLatin1String("type"))) {
            element.insert(QStringLiteral("type"), type);
            if (capacity > 0) {
                element.insert(QStringLiteral("capacity"), capacity);
            }
            elements.replace(i, element);
            return true;
        }
        QJsonArray inner = element.value(QLatin1String("elements")).toArray();
        if (!rest.isEmpty() && retypeLeaf(inner, rest, type, capacity)) {
            element.insert(QStringLiteral("elements"), inner);
            elements.replace(i, element);
            return true;
        }
    }
    return false;
}

} // namespace

QStringList SimulatedSource::leafPaths() const
{
    QStringList paths;
    const QVector<LeafTemplate> leaves = leafTemplates(current.description);
    for (const LeafTemplate &leaf : leaves) {
        paths.append(leaf.path);
    }
    return paths;
}

QByteArray SimulatedSource::served() const
{
    return publisher->descriptionText();
}

void SimulatedSource::vanish()
{
    publisher.reset();
    tracks.clear();
}

bool SimulatedSource::comeBack(QString &error)
{
    return isPublished() || publish(error);
}

bool SimulatedSource::retype(const QString &path, const QString &type, int capacity, QString &error)
{
    QJsonObject document = QJsonDocument::fromJson(published).object();
    QJsonArray elements = document.value(QLatin1String("elements")).toArray();
    if (!retypeLeaf(elements, path, type, capacity)) {
        error
            = QStringLiteral("key \"leaf\": %1 has no leaf \"%2\"").arg(source().toString(), path);
        return false;
    }
    document.insert(QStringLiteral("elements"), elements);
    return replace(QJsonDocument(document).toJson(), error);
}

bool SimulatedSource::announce(int count, bool ofProperties, QString &error)
{
    const QByteArray text = withoutSimulationKeys(published);
    bool good = true;
    for (int i = 0; good && i < count; ++i) {
        good = ofProperties ? publisher->replacePropertiesText(text, &error)
                            : publisher->replaceDescriptionText(text, {}, &error);
    }
    return good;
}
