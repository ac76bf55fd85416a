// SPDX-License-Identifier: MIT
// Names of services, objects and interfaces on the bus, and how other names fit into them.
#ifndef BUSNAMES_H
#define BUSNAMES_H

#include <QString>

#include <optional>

/// Threads: any, also at the same time.
namespace BusNames {

/// Where an escaped name is to stand.
enum class Element {
    ServiceName, ///< part of a bus name: must not begin with a digit
    ObjectPath, ///< part of an object path: may begin with a digit
};

/// Turns any text into one element of a bus name or object path.
///
/// Letters and digits of ASCII stand for themselves, except a leading digit in a bus name. Every
/// other byte of the UTF-8 text, "_" and "-" too, becomes "_" and two lower-case hexadecimal
/// digits, so that different texts never share a name. The empty text becomes "_".
QString escape(const QString &text, Element element);

/// Undoes escape(); nothing when the text is no result of it.
std::optional<QString> unescape(const QString &escaped);

/// Bus name of a module's service. A name that would exceed the 255 characters that D-Bus allows is
/// cut and ends in "__" and a hash of the module.
QString serviceOfModule(const QString &moduleName);

/// Undoes serviceOfModule(); nothing for any other name, and for one that was cut.
std::optional<QString> moduleOfService(const QString &service);

/// Path of an object of a module.
QString pathOfObject(const QString &objectName);

const QString &pathOfAllObjects();
const QString &processDescriptionInterface();
const QString &processDescriptionChangedSignal();
const QString &propertyChangedSignal();

const QString &statusManagerService();
const QString &statusManagerPath();
const QString &statusManagerInterface();
const QString &startupReadySignal();
const QString &readyProperty();

const QString &informationManagerService();
const QString &informationManagerPath();
const QString &informationManagerInterface();
const QString &providerListChangedSignal();

const QString &daemonService();
const QString &daemonPath();
const QString &daemonInterface();
const QString &propertiesInterface();
const QString &propertiesChangedSignal();

/// Error of a fetch for an instance that the service does not have.
const QString &unknownInstanceError();

/// Error of a call with arguments of the wrong kind.
const QString &invalidArgumentsError();
}

#endif
