// SPDX-License-Identifier: MIT
// Text of users, byte by byte.
#ifndef UTF8TEXT_H
#define UTF8TEXT_H

#include <QByteArray>
#include <QString>

#include <optional>

/// The text that the bytes spell in UTF-8, whatever the locale is; nothing when they do not. A
/// byte-order mark is a character like any other.
std::optional<QString> textFromUtf8(const QByteArray &bytes);

/// A file's lines: as above, but for a byte-order mark at its begin, which editors put there.
///
/// @param error  receives the number of the first line that is not UTF-8; left alone on success
std::optional<QString> fileTextFromUtf8(const QByteArray &bytes, QString &error);

#endif
