// SPDX-License-Identifier: MIT
// What a scenario file says: the faults to make, by name and time.
#ifndef SCENARIO_H
#define SCENARIO_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// What one step does.
enum class Fault {
    ReplyNormally, ///< ends the five below
    ReplyLate,
    ReplyNever,
    ReplyError,
    ReplyText,
    ReplyHuge,
    Vanish,
    Return,
    Kill,
    KillInWrite,
    Retype,
    Storm,
    Permissions,
};

/// One step; keys that its fault does not take keep their defaults.
struct ScenarioStep
{
    QString name;
    Fault fault = Fault::ReplyNormally;
    int at = -1; ///< milliseconds after the start; -1: only when it is asked for
    QString source; ///< module/object/instance
    QString module;
    int delay = 0; ///< milliseconds
    int count = -1; ///< of fetches, -1 for all to come; of announcements
    QString error; ///< D-Bus name
    QString text;
    int bytes = 0;
    QString leaf; ///< path
    QString type;
    int capacity = 0; ///< bytes; 0: not given
    bool byClient = false; ///< the writer that dies
    bool ofProperties = false; ///< what a storm announces
    uint mode = 0; ///< of the buffer's file
    QJsonObject json; ///< as it was given
};

/// A whole file.
struct Scenario
{
    QVector<ScenarioStep> steps;

    const ScenarioStep *find(const QString &name) const;
    QStringList names() const;
};

/// Parses a scenario.
///
/// @param fileName  for messages
/// @param error     receives one sentence that names file and line, or file, step and key; left
///                  alone on success
bool parseScenario(const QString &fileName, const QByteArray &content, Scenario &result,
                   QString &error);

/// Parses one step by itself.
///
/// @param error  receives one sentence that names line or key; left alone on success
bool parseScenarioStep(const QByteArray &json, ScenarioStep &result, QString &error);

#endif
