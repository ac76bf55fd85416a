// SPDX-License-Identifier: MIT
// A description's text, read and checked once for all who have the same text.
#include "PreparedDescription.h"

#include "BackgroundWork.h"

#include <QMutex>
#include <QMutexLocker>
#include <QVector>
#include <QWeakPointer>

#include <algorithm>
#include <cstring>

namespace {

constexpr int manyLeaves = 10'000; // takes about a millisecond to destroy

// Knows all that are alive, and keeps none alive.
class KnownDescriptions
{
public:
    static KnownDescriptions &all()
    {
        // Never destroyed: bus threads read descriptions to the last.
        static auto &known = *new KnownDescriptions;
        return known;
    }

    PreparedDescriptionPointer find(const QString &text)
    {
        const QMutexLocker lock(&mutex);
        for (const Known &each : std::as_const(entries)) {
            if (each.size != text.size()) {
                continue;
            }
            PreparedDescriptionPointer alive = each.description.toStrongRef();
            if (!alive.isNull() && alive->text == text) {
                return alive;
            }
        }
        return {};
    }

    void add(const PreparedDescriptionPointer &description)
    {
        const QMutexLocker lock(&mutex);
        entries.erase(std::remove_if(entries.begin(), entries.end(),
                                     [](const Known &each) { return each.description.isNull(); }),
                      entries.end());
        entries.append({description->text.size(), description});
    }

private:
    struct Known
    {
        int size;
        QWeakPointer<const PreparedDescription> description;
    };

    QMutex mutex;
    QVector<Known> entries;
};

void destroy(const PreparedDescription *description)
{
    const bool isLarge
        = description->content.has_value() && description->content->leaves.size() > manyLeaves;
    if (isLarge) {
        BackgroundWork::run([description] { delete description; });
    } else {
        delete description;
    }
}

QByteArray utf8Of(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    bytes.squeeze(); // Qt takes room for the worst, three bytes a character; the tree keeps it
    return bytes;
}

}

PreparedDescriptionPointer prepareDescription(const QString &text)
{
    KnownDescriptions &known = KnownDescriptions::all();
    PreparedDescriptionPointer found = known.find(text);
    if (!found.isNull()) {
        return found;
    }
    auto *const fresh = new PreparedDescription;
    fresh->text = text;
    fresh->token = descriptionToken(text);
    fresh->content = parseDescription(utf8Of(text), DescriptionForm::Published, fresh->error);
    found.reset(fresh, destroy);
    known.add(found);
    return found;
}

QString descriptionToken(const QString &text)
{
    // Two lanes, each mixed as splitmix64 does: as fast as memory is read.
    constexpr quint64 seeds[] = {0x9e3779b97f4a7c15U, 0xc2b2ae3d27d4eb4fU};
    constexpr quint64 factor = 0xbf58476d1ce4e5b9U;
    constexpr int shift = 29;
    quint64 lanes[] = {seeds[0], seeds[1]};
    const auto *bytes = reinterpret_cast<const char *>(text.constData());
    size_t left = size_t(text.size()) * sizeof(QChar);
    int lane = 0;
    while (left > 0) {
        quint64 word = 0;
        const size_t taken = std::min(left, sizeof(word));
        std::memcpy(&word, bytes, taken);
        lanes[lane] = (lanes[lane] ^ word) * factor;
        lanes[lane] ^= lanes[lane] >> shift;
        bytes += taken;
        left -= taken;
        lane ^= 1;
    }
    constexpr int hexadecimal = 16;
    return QStringLiteral("same-text:%1:%2:%3")
        .arg(text.size())
        .arg(lanes[0], hexadecimal, hexadecimal, QLatin1Char('0'))
        .arg(lanes[1], hexadecimal, hexadecimal, QLatin1Char('0'));
}
