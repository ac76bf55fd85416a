// SPDX-License-Identifier: MIT
// The text of a description file as it is published.
#ifndef PUBLISHEDTEXT_H
#define PUBLISHEDTEXT_H

#include <QByteArray>

/// A description file's text without the simulator's own keys; numbers keep every digit. A text
/// that is no description is given back as it is: the publisher names what is wrong.
QByteArray withoutSimulationKeys(const QByteArray &content);

#endif
