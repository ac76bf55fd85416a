// SPDX-License-Identifier: MIT
// The registered providers: who they are, whose they are, and their list as JSON.
#include "ProviderTable.h"

#include "SystemInformationManagerRegistryDefinitions.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

#include <algorithm>

ProviderTable::Change ProviderTable::add(const QString &moduleName, const QString &additionalData,
                                         const QString &owner, QString &error)
{
    if (moduleName.isEmpty()) {
        error = QStringLiteral("a provider's module name must not be empty");
        return Change::Refused;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(additionalData.toUtf8(), &parseError);
    if (!document.isObject()) {
        const QString reason = parseError.error == QJsonParseError::NoError
            ? QStringLiteral("it is another JSON value")
            : parseError.errorString();
        error = QStringLiteral("the additional data of module \"%1\" must be a JSON object: %2")
                    .arg(moduleName, reason);
        return Change::Refused;
    }
    const int position = find(moduleName);
    if (position < 0) {
        providers += Provider{moduleName, owner, document.object()};
        return Change::Changed;
    }
    Provider &provider = providers[position];
    if (provider.owner != owner) {
        error = QStringLiteral("module \"%1\" is registered by another connection").arg(moduleName);
        return Change::Refused;
    }
    if (provider.additionalData == document.object()) {
        return Change::None;
    }
    provider.additionalData = document.object();
    return Change::Changed;
}

ProviderTable::Change ProviderTable::remove(const QString &moduleName, const QString &owner,
                                            QString &error)
{
    const int position = find(moduleName);
    if (position < 0) {
        error = QStringLiteral("module \"%1\" is not registered").arg(moduleName);
        return Change::Refused;
    }
    if (providers.at(position).owner != owner) {
        error = QStringLiteral("module \"%1\" is registered by another connection").arg(moduleName);
        return Change::Refused;
    }
    providers.removeAt(position);
    return Change::Changed;
}

ProviderTable::Change ProviderTable::removeOwner(const QString &owner)
{
    const int before = providers.size();
    providers.erase(
        std::remove_if(providers.begin(), providers.end(),
                       [&](const Provider &provider) { return provider.owner == owner; }),
        providers.end());
    return providers.size() == before ? Change::None : Change::Changed;
}

ProviderTable::Change ProviderTable::clear()
{
    if (providers.isEmpty()) {
        return Change::None;
    }
    providers.clear();
    return Change::Changed;
}

QString ProviderTable::toJson() const
{
    QJsonArray list;
    for (const Provider &provider : providers) {
        list += QJsonObject{
            {SystemInformationManagerRegistryDefinitions::getKeyModuleName(), provider.moduleName},
            {SystemInformationManagerRegistryDefinitions::getKeyAdditionalData(),
             provider.additionalData}};
    }
    return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Compact));
}

int ProviderTable::find(const QString &moduleName) const
{
    const auto found
        = std::find_if(providers.begin(), providers.end(),
                       [&](const Provider &provider) { return provider.moduleName == moduleName; });
    return found == providers.end() ? -1 : static_cast<int>(found - providers.begin());
}
