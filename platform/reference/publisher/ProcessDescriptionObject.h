// SPDX-License-Identifier: MIT
// One object of a module on the bus: answers fetches of its instances' descriptions.
#ifndef PROCESSDESCRIPTIONOBJECT_H
#define PROCESSDESCRIPTIONOBJECT_H

#include <QDBusVirtualObject>
#include <QMap>
#include <QString>

/// Threads: belongs to the thread in which it answers.
class ProcessDescriptionObject : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// @param source  names module and object in error messages
    explicit ProcessDescriptionObject(QString source, QObject *parent = nullptr);

    void setDescription(const QString &instanceName, const QString &text);
    void removeDescription(const QString &instanceName);
    bool hasDescription(const QString &instanceName) const;
    QStringList instances() const { return descriptions.keys(); }

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage answerFetch(const QDBusMessage &message) const;
    bool sendAnswer(const QDBusMessage &message, const QDBusConnection &connection);

    const QString source;
    QMap<QString, QString> descriptions;
};

#endif
