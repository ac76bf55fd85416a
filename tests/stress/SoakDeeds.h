// SPDX-License-Identifier: MIT
// What the soak does at random: each deed with its chance, its count and a line in the record.
#ifndef SOAKDEEDS_H
#define SOAKDEEDS_H

#include "SoakClient.h"
#include "SoakWorld.h"

#include <QMap>
#include <QScopedPointer>
#include <QString>
#include <QStringList>

#include <random>

/// The same seed does the same deeds in the same order.
class SoakDeeds
{
public:
    SoakDeeds(SoakWorld &world, SoakClient &client, quint32 seed);

    /// Does one deed that is possible now.
    void doNext();

    /// The bus and all publishers, with fresh values; a list that was made without a bus anew.
    void bringEverythingUp();

    void dropOtherClients() { hostileClient.reset(); }

    /// All publishers end cleanly.
    void endEverything();

    QString counts() const;
    QStringList lastDeeds() const { return record; }

private:
    struct Deed
    {
        const char *name;
        int chance; // of a hundred
        bool (SoakDeeds::*act)(); // false: not possible now
    };
    static const Deed deeds[];

    int random(int below);
    int randomSource(SoakSource::State state); // -1: none is in that state
    void note(const QString &text);

    bool killPublisher();
    bool quitPublisher();
    bool startPublisher();
    bool hangPublisher();
    bool resumePublisher();
    bool publishValues();
    bool replaceProperties();
    bool replaceDescription();
    bool replaceList();
    bool writeSetpoint();
    bool stopBus();
    bool startBus();
    bool answerHostilely();
    bool meetHostile();
    bool comeLate();
    bool killWriter();
    bool runEvents();

    QVector<SoakSelector> randomList();
    QString hostileText();

    SoakWorld &world;
    SoakClient &client;
    std::mt19937 generator;
    QScopedPointer<SelectorHandlerProcessValue> hostileClient;
    bool listMadeWithoutBus = false;
    qint64 number = 0;
    int lastSource = -1; // that the deed was done to; -1: to none
    QMap<QString, int> counted;
    QStringList record;
};

#endif
