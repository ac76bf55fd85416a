// SPDX-License-Identifier: MIT
// A connection that calls without manners: as much at once as the bus takes, and without reading.
#ifndef RUDECALLER_H
#define RUDECALLER_H

#include <QByteArray>
#include <QString>
#include <QVector>

struct DBusConnection;
struct DBusMessage;

class RudeCaller
{
public:
    struct Call
    {
        QByteArray service;
        QByteArray path;
        QByteArray interface;
        QByteArray member;
        QVector<QByteArray> texts;
        bool wantsAnswer = true;
    };

    /// What came back to one call.
    struct Answer
    {
        bool came = false;
        QByteArray error; ///< its name; empty for a return
        QByteArray text; ///< first argument, if it is a text
        int size = 0; ///< of that text
    };

    /// Calls to a service's object, whose name is "Controller" where none is given.
    static Call fetch(const QByteArray &service, bool wantsAnswer = true);
    static Call list(const QByteArray &service, const QByteArray &object = "Controller");

    explicit RudeCaller(const QString &address);
    ~RudeCaller();
    RudeCaller(const RudeCaller &) = delete;
    RudeCaller &operator=(const RudeCaller &) = delete;

    bool isConnected() const;

    /// Reads no more from now on, but for what comes first.
    void stopReading();
    void readAgain();

    /// Sends a call many times; returns when the bus daemon has taken all.
    void send(const Call &call, int count = 1);

    /// Reads until so many answers have come, to whatever calls; answers its pings meanwhile.
    QVector<Answer> takeAnswers(int count);

    /// Sends one call and reads until its answer; counts answers to earlier ones in otherAnswers.
    Answer ask(const Call &call);
    int otherAnswers = 0;

    /// The unique name of whoever has a name on the bus, or what the bus says.
    QByteArray ownerOf(const QByteArray &name);

private:
    static DBusMessage *make(const Call &call);
    bool readOnce(Answer &answer, unsigned &serial);

    DBusConnection *connection;
};

#endif
