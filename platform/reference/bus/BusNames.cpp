// SPDX-License-Identifier: MIT
// Names of services, objects and interfaces on the bus, and how other names fit into them.
#include "BusNames.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QTextCodec>

namespace {

constexpr int maximumNameLength = 255;
constexpr int hashDigits = 32;

bool isLetter(char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

int hexDigit(char byte)
{
    if (isDigit(byte)) {
        return byte - '0';
    }
    constexpr int ten = 10;
    return byte >= 'a' && byte <= 'f' ? byte - 'a' + ten : -1;
}

// QString::fromUtf8 drops a leading byte order mark, and in Qt 5 ends at the first null byte.
QString decoded(const QByteArray &utf8)
{
    static QTextCodec *const codec = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return codec->toUnicode(utf8.constData(), utf8.size(), &state);
}

const QString &servicePrefix()
{
    static const QString text = QStringLiteral("com.orvalis.ProcessData.");
    return text;
}
}

QString BusNames::escape(const QString &text, Element element)
{
    if (text.isEmpty()) {
        return QStringLiteral("_");
    }
    const QByteArray bytes = text.toUtf8();
    QByteArray escaped;
    escaped.reserve(bytes.size());
    for (const char byte : bytes) {
        const bool digitAllowed = element == Element::ObjectPath || !escaped.isEmpty();
        if (isLetter(byte) || (isDigit(byte) && digitAllowed)) {
            escaped += byte;
        } else {
            escaped += '_';
            escaped += QByteArray(1, byte).toHex();
        }
    }
    return QString::fromLatin1(escaped);
}

std::optional<QString> BusNames::unescape(const QString &escaped)
{
    if (escaped == QLatin1String("_")) {
        return QString();
    }
    const QByteArray bytes = escaped.toLatin1();
    QByteArray text;
    for (int i = 0; i < bytes.size(); ++i) {
        if (isLetter(bytes.at(i)) || isDigit(bytes.at(i))) {
            text += bytes.at(i);
            continue;
        }
        const bool complete = bytes.at(i) == '_' && i + 2 < bytes.size();
        const int high = complete ? hexDigit(bytes.at(i + 1)) : -1;
        const int low = complete ? hexDigit(bytes.at(i + 2)) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        constexpr int bitsOfDigit = 4;
        text += static_cast<char>((high << bitsOfDigit) | low);
        i += 2;
    }
    const QString result = decoded(text);
    // Only what escape() writes has an original: no needless escapes, no invalid UTF-8.
    if (escape(result, Element::ObjectPath) != escaped
        && escape(result, Element::ServiceName) != escaped) {
        return std::nullopt;
    }
    return result;
}

QString BusNames::serviceOfModule(const QString &moduleName)
{
    QString name = servicePrefix() + escape(moduleName, Element::ServiceName);
    if (name.size() <= maximumNameLength) {
        return name;
    }
    const QByteArray hash
        = QCryptographicHash::hash(moduleName.toUtf8(), QCryptographicHash::Sha256).toHex();
    const QString ending = QStringLiteral("__") + QString::fromLatin1(hash.left(hashDigits));
    return name.left(maximumNameLength - ending.size()) + ending;
}

std::optional<QString> BusNames::moduleOfService(const QString &service)
{
    if (!service.startsWith(servicePrefix())) {
        return std::nullopt;
    }
    std::optional<QString> module = unescape(service.mid(servicePrefix().size()));
    return module && serviceOfModule(*module) == service ? module : std::nullopt;
}

QString BusNames::pathOfObject(const QString &objectName)
{
    return pathOfAllObjects() + QLatin1Char('/') + escape(objectName, Element::ObjectPath);
}

#define PROCESSDATA_BUS_NAME(function, text)                                                       \
    const QString &BusNames::function()                                                            \
    {                                                                                              \
        static const QString name = QStringLiteral(text);                                          \
        return name;                                                                               \
    }

PROCESSDATA_BUS_NAME(pathOfAllObjects, "/com/orvalis/ProcessData")
PROCESSDATA_BUS_NAME(processDescriptionInterface, "com.orvalis.ProcessDescription1")
PROCESSDATA_BUS_NAME(processDescriptionChangedSignal, "ProcessDataDescriptionChanged")
PROCESSDATA_BUS_NAME(propertyChangedSignal, "PropertyChanged")
PROCESSDATA_BUS_NAME(statusManagerService, "com.orvalis.SystemStatusManager")
PROCESSDATA_BUS_NAME(statusManagerPath, "/com/orvalis/SystemStatusManager")
PROCESSDATA_BUS_NAME(statusManagerInterface, "com.orvalis.SystemStatusManager1")
PROCESSDATA_BUS_NAME(startupReadySignal, "StartupReady")
PROCESSDATA_BUS_NAME(readyProperty, "Ready")
PROCESSDATA_BUS_NAME(informationManagerService, "com.orvalis.SystemInformationManager")
PROCESSDATA_BUS_NAME(informationManagerPath, "/com/orvalis/SystemInformationManager")
PROCESSDATA_BUS_NAME(informationManagerInterface, "com.orvalis.SystemInformationManager1")
PROCESSDATA_BUS_NAME(providerListChangedSignal, "ProviderListChanged")
PROCESSDATA_BUS_NAME(daemonService, "org.freedesktop.DBus")
PROCESSDATA_BUS_NAME(daemonPath, "/org/freedesktop/DBus")
PROCESSDATA_BUS_NAME(daemonInterface, "org.freedesktop.DBus")
PROCESSDATA_BUS_NAME(propertiesInterface, "org.freedesktop.DBus.Properties")
PROCESSDATA_BUS_NAME(propertiesChangedSignal, "PropertiesChanged")
PROCESSDATA_BUS_NAME(unknownInstanceError, "com.orvalis.Error.UnknownInstance")
PROCESSDATA_BUS_NAME(invalidArgumentsError, "org.freedesktop.DBus.Error.InvalidArgs")
