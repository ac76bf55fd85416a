// SPDX-License-Identifier: MIT
// Asks a module's service for its objects, their instances and descriptions.
#include "InstanceListClient.h"

#include "BusNames.h"
#include "DescriptionReply.h"
#include "ServiceQuery.h"

#include <QXmlStreamReader>

namespace {

// Names of the nodes directly below the one that was asked.
QStringList childNodes(const QString &introspection)
{
    constexpr int depthOfChildren = 2;
    QStringList names;
    int depth = 0;
    QXmlStreamReader reader(introspection);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            ++depth;
            if (depth == depthOfChildren && reader.name() == QLatin1String("node")) {
                names += reader.attributes().value(QLatin1String("name")).toString();
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return names;
}
}

BusQueryResult fetchObjects(const QString &moduleName, QStringList &objects, QString &errorMessage)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::serviceOfModule(moduleName), BusNames::pathOfAllObjects(),
        QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
    QVariant introspection;
    const BusQueryResult result = askService(call, "s", introspection, errorMessage);
    if (result == BusQueryResult::Ok) {
        objects.clear();
        const QStringList nodes = childNodes(introspection.toString());
        for (const QString &node : nodes) {
            if (const std::optional<QString> name = BusNames::unescape(node)) {
                objects += *name;
            }
        }
        objects.sort();
    }
    return result;
}

BusQueryResult fetchInstances(const QString &moduleName, const QString &objectName,
                              QStringList &instances, QString &errorMessage)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::serviceOfModule(moduleName), BusNames::pathOfObject(objectName),
        BusNames::processDescriptionInterface(), QStringLiteral("ListInstances"));
    QVariant names;
    const BusQueryResult result = askService(call, "as", names, errorMessage);
    if (result == BusQueryResult::Ok) {
        instances = names.toStringList();
        instances.sort();
    }
    return result;
}

BusQueryResult fetchDescription(const QString &moduleName, const QString &objectName,
                                const QString &instance, QString &description,
                                QString &errorMessage)
{
    QVariant text;
    const BusQueryResult result
        = askService(descriptionCall(BusNames::serviceOfModule(moduleName),
                                     BusNames::pathOfObject(objectName), instance, QString()),
                     "s", text, errorMessage);
    if (result == BusQueryResult::Ok) {
        description = text.toString();
    }
    return result;
}
