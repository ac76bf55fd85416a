// SPDX-License-Identifier: MIT
// Faults of a published buffer: its file's permissions, a writer that dies in the middle.
#ifndef BUFFERFAULTS_H
#define BUFFERFAULTS_H

#include <QByteArray>
#include <QString>

/// Changes the mode of the buffer's file.
///
/// @param description  as clients fetch it
/// @param error        receives one sentence; left alone on success
bool changeBufferMode(const QByteArray &description, uint mode, QString &error);

/// A writer takes the writers' lock, fills half of the copy that is not valid, and dies by SIGKILL.
///
/// @param leaf      path
/// @param byClient  a process made for it dies; else this one, and nothing returns
/// @param error     receives one sentence; left alone on success
bool dieInWrite(const QByteArray &description, const QString &leaf, bool byClient, QString &error);

#endif
