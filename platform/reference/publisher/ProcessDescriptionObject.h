// SPDX-License-Identifier: MIT
// One object of a module on the bus: answers fetches of its instances' descriptions.
#ifndef PROCESSDESCRIPTIONOBJECT_H
#define PROCESSDESCRIPTIONOBJECT_H

#include "ServedCall.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

/// Threads: belongs to the thread in which it answers.
class ProcessDescriptionObject : public QObject, public ServedObject
{
    Q_OBJECT

public:
    /// @param source  names module and object in error messages
    explicit ProcessDescriptionObject(QString source, QObject *parent = nullptr);

    void setDescription(const QString &instanceName, const QString &text);
    void removeDescription(const QString &instanceName);
    QStringList instances() const { return descriptions.keys(); }

    QString introspection() const override;
    BusAnswer answer(const ServedCall &call) override;
    qint64 answerSize(const ServedCall &call) const override;

private:
    struct Description
    {
        QByteArray text; // as it goes over the bus
        QString token;
    };

    BusAnswer describe(const ServedCall &call) const;
    BusAnswer answerFetch(const ServedCall &call);
    static bool isKnownTo(const ServedCall &call, const Description &description);

    const QString source;
    QMap<QString, Description> descriptions;
};

#endif
