// SPDX-License-Identifier: MIT
// A class with a binary interface in small; each change that the test of the gate makes is a macro.
#ifndef SAMPLE_H
#define SAMPLE_H

#include <QList>
#include <QString>
#include <QVector>

class SampleInside; // declared in the source file, so that it may change

class __attribute__((visibility("default"))) Sample
{
public:
#ifdef ENUMERATOR_INSERTED
    enum State { Idle, Paused, Running };
#elif defined(ENUMERATOR_APPENDED)
    enum State { Idle, Running, Paused };
#else
    enum State { Idle, Running };
#endif

    Sample();
    virtual ~Sample();
#ifdef VIRTUAL_INSERTED
    virtual void inserted();
#endif
    virtual State state() const;
#ifdef VIRTUAL_APPENDED
    virtual void appended();
#endif

#ifdef RESULT_CHANGED
    QList<int> indices() const;
#else
    QVector<int> indices() const;
#endif
#ifdef PARAMETER_CHANGED
    void rename(const QByteArray &name);
#else
    void rename(const QString &name);
#endif
#ifndef FUNCTION_REMOVED
    void clear();
#endif
#ifdef FUNCTION_ADDED
    void added();
#endif

private:
#ifdef MEMBER_INSERTED
    int inserted = 0;
#endif
    SampleInside *inside = nullptr;
#ifdef MEMBER_RETYPED
    QByteArray name;
#else
    QString name;
#endif
};

#endif
