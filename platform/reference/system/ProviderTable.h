// SPDX-License-Identifier: MIT
// The registered providers: who they are, whose they are, and their list as JSON.
#ifndef PROVIDERTABLE_H
#define PROVIDERTABLE_H

#include <QJsonObject>
#include <QString>
#include <QVector>

/// Knows no bus. Each change reports whether the list differs from before.
class ProviderTable
{
public:
    enum class Change { None, Changed, Refused };

    /// Adds a provider at the end, or replaces the data of one in its place.
    ///
    /// @param owner  unique bus name of whoever registers
    /// @param error  receives one sentence when it is refused
    Change add(const QString &moduleName, const QString &additionalData, const QString &owner,
               QString &error);

    /// Removes a provider.
    Change remove(const QString &moduleName, const QString &owner, QString &error);

    /// Removes all providers of an owner that is gone.
    Change removeOwner(const QString &owner);

    Change clear();

    QString toJson() const;

private:
    struct Provider
    {
        QString moduleName;
        QString owner;
        QJsonObject additionalData;
    };

    int find(const QString &moduleName) const;

    QVector<Provider> providers; // in the order in which they registered
};

#endif
