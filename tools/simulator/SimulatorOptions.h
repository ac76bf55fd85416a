// SPDX-License-Identifier: MIT
// The simulator's command line.
#ifndef SIMULATOROPTIONS_H
#define SIMULATOROPTIONS_H

#include <QString>
#include <QStringList>

struct SimulatorOptions
{
    QStringList fileNames;
    QString scenario; ///< file name; empty: none
    int interval = 100; ///< milliseconds between two steps
    QStringList run; ///< steps for a simulator that runs already; empty: be one
    int timeout = 0; ///< milliseconds for all of these; 0: not given
    bool systemServices = false;
    bool control = false; ///< serve the control interface, also without a scenario
    bool verbose = false;
    bool help = false;
    bool version = false;
};

/// @param arguments  with the program's name first
/// @param error      receives one sentence; left alone on success
bool parseSimulatorOptions(const QStringList &arguments, SimulatorOptions &options, QString &error);

QString simulatorHelp();

#endif
