// SPDX-License-Identifier: MIT
// Values that follow from their times, so that a reader sees at once what does not belong together.
#include "TornReads.h"

#include "BufferAttachment.h"
#include "Slot.h"

#include <cstdio>
#include <cstring>
#include <iostream>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace {

constexpr quint32 textCapacity = 100;
constexpr int statusCount = 6;
constexpr quint32 multiplier = 2654435761U; // spreads neighbouring times over all bits

bool inputEnded()
{
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) != 0;
}

QString descriptionFromInput()
{
    std::string line;
    std::getline(std::cin, line);
    return QString::fromStdString(line);
}

void say(const QByteArray &line)
{
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

QByteArray letters(qint64 time)
{
    return QByteArray(int(time % (textCapacity + 1)), char('a' + time % 26));
}

int publish(const QString &module)
{
    BufferSource source(tornLeaves(), module);
    if (!source.buffer) {
        say(source.error.toUtf8());
        return 1;
    }
    qint64 time = 2;
    const auto publishAll = [&] {
        QVector<QPair<int, ProcessValue>> values;
        for (int leaf = 0; leaf < tornLeafCount; ++leaf) {
            values += {leaf, tornValue(leaf, time)};
        }
        time += 2;
        return source.buffer->publish(values, source.error);
    };
    const bool published = publishAll();
    say(QJsonDocument(source.document).toJson(QJsonDocument::Compact));
    while (published && (time % 1000 != 0 || !inputEnded())) {
        publishAll(); // false when its turn took too long
    }
    return published ? 0 : 1;
}

QString urlOf(const QString &text, int leaf)
{
    const QString module
        = QJsonDocument::fromJson(text.toUtf8()).object().value("module").toString();
    return QString("processdata://%1/Tank/1/leaf%2").arg(module).arg(leaf);
}

int write()
{
    const QString text = descriptionFromInput();
    const BufferClient client(text);
    QVector<QSharedPointer<ProcessDataValue>> leaves;
    for (int leaf = 0; leaf < tornLeafCount; ++leaf) {
        leaves += client.leaf(urlOf(text, leaf));
    }
    for (qint64 time = 1; time % 1000 != 1 || !inputEnded(); time += 2) {
        for (int leaf = 0; leaf < tornLeafCount; ++leaf) {
            leaves.at(leaf)->setValue(tornValue(leaf, time)); // false when its turn took too long
        }
    }
    return 0;
}

// Changes numbers where they stand: the copy that the sequence names, and the sequence stays.
int tear()
{
    QString error;
    const auto description
        = parseDescription(descriptionFromInput().toUtf8(), DescriptionForm::Published, error);
    const auto memory = description ? attachBuffer(*description, error) : nullptr;
    if (memory.isNull()) {
        say(error.toUtf8());
        return 1;
    }
    char *slot = memory->at(description->leaves.at(0).offset);
    for (qint64 time = 1; time % 1000 != 1 || !inputEnded(); time += 2) {
        const ProcessValue value = tornValue(0, time);
        const double number = value.getValue().toDouble();
        NumberCopy copy{{quint32(value.getErrorType()), sizeof(number), time}, {}};
        std::memcpy(copy.payload, &number, sizeof(number));
        const quint32 sequence = slotSequence(slot, __ATOMIC_ACQUIRE);
        storeSlotWords(slot + slotCopyOffset(sequence, sizeof(number)), &copy,
                       sizeof(copy) / sizeof(SlotWord));
    }
    return 0;
}

} // namespace

QJsonArray tornLeaves()
{
    return {leaf("leaf0", "float64"),
            leaf("leaf1", "uint64"),
            leaf("leaf2", "int32"),
            leaf("leaf3", "bool"),
            leaf("leaf4", "string", {{"capacity", int(textCapacity)}}),
            leaf("leaf5", "bytes", {{"capacity", int(textCapacity)}})};
}

ProcessValue tornValue(int leaf, qint64 time)
{
    const auto status = ProcessDataDefinitions::ErrorTypes(time % statusCount);
    switch (leaf) {
    case 0:
        return ProcessValue(QVariant(double(time) * 0.5), status, time);
    case 1:
        return ProcessValue(QVariant(quint64(time) * multiplier), status, time);
    case 2:
        return ProcessValue(QVariant(int(quint32(time) * multiplier)), status, time);
    case 3:
        return ProcessValue(QVariant(time / 2 % 2 == 0), status, time);
    case 4:
        return ProcessValue(QVariant(QString::fromLatin1(letters(time))), status, time);
    default:
        return ProcessValue(QVariant(letters(time)), status, time);
    }
}

bool belongsTogether(int leaf, const ProcessValue &value)
{
    const qint64 time = value.getTimestamp();
    if (value.getErrorType() != time % statusCount) {
        return false;
    }
    if (leaf == 0) { // the one that is read most, without a variant to compare with
        return value.getValue().toDouble() == double(time) * 0.5;
    }
    return value.getValue() == tornValue(leaf, time).getValue();
}

int runWriter(const QString &kind, const QString &argument)
{
    if (kind == "publish") {
        return publish(argument);
    }
    return kind == "tear" ? tear() : write();
}
