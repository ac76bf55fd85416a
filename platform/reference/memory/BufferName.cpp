// SPDX-License-Identifier: MIT
// Names of shared-memory buffers: /processdata.<module>_<object>_<instance>.<generation>
#include "BufferName.h"

#include <QCryptographicHash>

#include <climits>

namespace {

constexpr int longestGeneration = 16; // digits of maximumGeneration
constexpr int hashSize = 32;
constexpr int roomForSource = NAME_MAX - int(sizeof(bufferNameBegin) - 1) - 1 - longestGeneration
    - int(sizeof(lifeNameEnd) - 1);
constexpr int roomBesideHash = roomForSource - 1 - hashSize;

bool isPlain(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')
        || (byte >= '0' && byte <= '9') || byte == '-';
}

bool isHexDigit(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f');
}

QByteArray escaped(char byte)
{
    return '_' + QByteArray(1, byte).toHex();
}

// "20" after a separating "_" would read as an escaped blank, so its first byte is escaped as well.
bool looksEscaped(const QByteArray &text)
{
    return text.size() >= 2 && isHexDigit(text.at(0)) && isHexDigit(text.at(1))
        && !isPlain(QByteArray::fromHex(text.left(2)).at(0));
}

QByteArray escapedPart(const QString &part)
{
    const QByteArray text = part.toUtf8();
    QByteArray result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const char byte = text.at(i);
        const bool plain = isPlain(byte) && !(i == 0 && looksEscaped(text));
        result += plain ? QByteArray(1, byte) : escaped(byte);
    }
    return result;
}

}

QByteArray bufferNamePrefix(const SourceName &name)
{
    const QByteArray source = escapedPart(name.module) + '_' + escapedPart(name.object) + '_'
        + escapedPart(name.instance);
    if (source.size() <= roomForSource) {
        return bufferNameBegin + source + '.';
    }
    const QByteArray hash
        = QCryptographicHash::hash(source, QCryptographicHash::Sha256).toHex().left(hashSize);
    return bufferNameBegin + source.left(roomBesideHash) + '~' + hash + '.';
}

QByteArray bufferNameBeginOfModule(const QString &module)
{
    return bufferNameBegin + (escapedPart(module) + '_').left(roomBesideHash);
}

std::optional<quint64> generationOfFile(const QByteArray &fileName, const QByteArray &prefix)
{
    if (!fileName.startsWith(prefix)) {
        return std::nullopt;
    }
    const QByteArray digits = fileName.mid(prefix.size());
    bool ok = false;
    const quint64 generation = digits.toULongLong(&ok);
    if (!ok || generation > maximumGeneration || QByteArray::number(generation) != digits) {
        return std::nullopt;
    }
    return generation;
}

std::optional<quint64> generationOfName(const QByteArray &fileName)
{
    return generationOfFile(fileName, fileName.left(fileName.lastIndexOf('.') + 1));
}

QByteArray sharedMemoryPath(const QString &name)
{
    const QByteArray file = name.toUtf8().mid(1);
    if (!name.startsWith(QLatin1Char('/')) || file.isEmpty() || file.size() > NAME_MAX
        || file.contains('/') || file.contains('\0') || file == "." || file == "..") {
        return QByteArray();
    }
    return QByteArray(sharedMemoryDirectory) + '/' + file;
}
