// SPDX-License-Identifier: MIT
// Asks a module's service for its objects, their instances and descriptions.
#include "InstanceListClient.h"

#include "BusNames.h"
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
    QDBusMessage answer;
    const BusQueryResult result = queryService(call, QStringLiteral("s"), answer, errorMessage);
    if (result != BusQueryResult::Ok) {
        return result;
    }
    QStringList names;
    const QStringList nodes = childNodes(answer.arguments().at(0).toString());
    for (const QString &node : nodes) {
        if (const std::optional<QString> name = BusNames::unescape(node)) {
            names += *name;
        }
    }
    names.sort();
    objects = names;
    return result;
}

BusQueryResult fetchInstances(const QString &moduleName, const QString &objectName,
                              QStringList &instances, QString &errorMessage)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::serviceOfModule(moduleName), BusNames::pathOfObject(objectName),
        BusNames::processDescriptionInterface(), QStringLiteral("ListInstances"));
    QDBusMessage answer;
    const BusQueryResult result = queryService(call, QStringLiteral("as"), answer, errorMessage);
    if (result == BusQueryResult::Ok) {
        instances = answer.arguments().at(0).toStringList();
        instances.sort();
    }
    return result;
}

BusQueryResult fetchDescription(const QString &moduleName, const QString &objectName,
                                const QString &instance, QString &description,
                                QString &errorMessage)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        BusNames::serviceOfModule(moduleName), BusNames::pathOfObject(objectName),
        BusNames::processDescriptionInterface(), QStringLiteral("GetProcessDataDescription"));
    call << instance << QString();
    QDBusMessage answer;
    const BusQueryResult result = queryService(call, QStringLiteral("s"), answer, errorMessage);
    if (result == BusQueryResult::Ok) {
        description = answer.arguments().at(0).toString();
    }
    return result;
}
