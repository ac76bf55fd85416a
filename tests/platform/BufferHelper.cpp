// SPDX-License-Identifier: MIT
// Child process of the shared-memory tests: publishes, writes, dies or stops where a test tells it
// to.
#include "BufferAttachment.h"
#include "BufferFiles.h"
#include "BufferSource.h"
#include "OtherUser.h"
#include "SharedLock.h"
#include "Slot.h"

#include <csignal>
#include <cstdio>
#include <iostream>
#include <poll.h>
#include <string>

namespace {

void say(const QByteArray &line)
{
    std::fputs(line.constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

QString descriptionFromInput()
{
    std::string line;
    std::getline(std::cin, line);
    return QString::fromStdString(line);
}

QString setpointUrl(const QString &text)
{
    const QString module
        = QJsonDocument::fromJson(text.toUtf8()).object().value("module").toString();
    return QString("processdata://%1/Tank/1/setpoint").arg(module);
}

// Publishes "level" and "setpoint" until its input ends; a line of input is the next level.
int publish(const QString &module)
{
    BufferSource source(
        {leaf("level", "float64", {{"readOnly", true}}), leaf("setpoint", "float64")}, module);
    if (!source.buffer || !source.publish(0, ProcessValue(QVariant(1.5)))) {
        say(source.error.toUtf8());
        return 1;
    }
    say(QJsonDocument(source.document).toJson(QJsonDocument::Compact));
    std::string line;
    while (std::getline(std::cin, line)) {
        const bool published = source.publish(0, ProcessValue(QVariant(std::stod(line))));
        say(published ? "published" : source.error.toUtf8());
    }
    return 0;
}

// Publishes two leaves whose values follow from their times, as fast as it can, until its input
// ends.
int flood(const QString &module)
{
    BufferSource source({leaf("number", "uint64"), leaf("text", "string", {{"capacity", 100}})},
                        module);
    if (!source.buffer) {
        return 1;
    }
    say(QJsonDocument(source.document).toJson(QJsonDocument::Compact));
    pollfd input{STDIN_FILENO, POLLIN, 0};
    for (qint64 i = 1; i % 1000 != 0 || poll(&input, 1, 0) == 0; ++i) {
        const auto status = ProcessDataDefinitions::ErrorTypes(i % 6);
        const QString text(int(i % 100), QChar::fromLatin1(char('a' + i % 26)));
        source.buffer->publish({{0, ProcessValue(QVariant(quint64(i * 3)), status, i)},
                                {1, ProcessValue(QVariant(text), status, i)}},
                               source.error);
    }
    return 0;
}

// Takes the writers' lock, starts to fill a copy and gets the signal.
int holdLock(int signal)
{
    const QString text = descriptionFromInput();
    QString error;
    const auto description = parseDescription(text.toUtf8(), DescriptionForm::Published, error);
    const auto memory = description ? attachBuffer(*description, error) : nullptr;
    if (memory.isNull()) {
        say(error.toUtf8());
        return 1;
    }
    const WritersLockGuard lock(memory->header().writersLock);
    if (lock.error() != 0) {
        say("not locked");
        return 1;
    }
    char *slot = memory->at(description->leaves.last().offset);
    const quint32 next = slotSequence(slot, __ATOMIC_RELAXED) + 1;
    std::memset(slot + slotCopyOffset(next, 8), 0xee, 12);
    say("held");
    raise(signal);
    return 0;
}

// Attaches and tells what it can do.
int use()
{
    const QString text = descriptionFromInput();
    const BufferClient client(text);
    const auto leaf = client.leaf(setpointUrl(text));
    const bool readable = readLeaf(leaf).getErrorType() != ProcessDataDefinitions::NoValue;
    const bool written = leaf->setValue(ProcessValue(QVariant(44.0)));
    say(QByteArray(client.manager->isBufferValid() ? "valid" : "invalid")
        + (readable ? " readable" : " unreadable") + (written ? " written" : " refused"));
    return 0;
}

// Looks at a buffer's file and tries to remove it.
int removeBuffer(const QString &path)
{
    BufferFile file;
    QString error;
    inspectBufferFile(path, file);
    const char *state = file.state == BufferFile::Unreadable ? "unreadable"
        : file.state == BufferFile::Dead                     ? "dead"
                                                             : "other";
    const BufferRemoval removal = removeLeftover(file, error);
    const char *end = removal == BufferRemoval::Denied ? " denied"
        : removal == BufferRemoval::Kept               ? " kept"
                                                       : " removed";
    say(QByteArray(state) + (mayRemove(file) ? " removable" : " not-removable") + end);
    return 0;
}

// Writes "setpoint" as often as told.
int write(int count)
{
    const QString text = descriptionFromInput();
    const BufferClient client(text);
    const auto leaf = client.leaf(setpointUrl(text));
    int written = 0;
    for (int i = 0; i < count; ++i) {
        written += leaf->setValue(ProcessValue(QVariant(double(i)))) ? 1 : 0;
    }
    say(QByteArray::number(written));
    return 0;
}

}

int main(int argc, char **argv)
{
    const QString command = argc > 1 ? argv[1] : "";
    const QString argument = argc > 2 ? argv[2] : "";
    if (command == "publish") {
        return publish(argument);
    }
    if (command == "flood") {
        return flood(argument);
    }
    if (command == "die-with-lock") {
        return holdLock(SIGKILL);
    }
    if (command == "remove-as" && argc > 3) {
        return becomeUser(argument + ':' + argument) ? removeBuffer(argv[3]) : 1;
    }
    if (command == "stop-with-lock") {
        return holdLock(SIGSTOP);
    }
    if (command == "use") {
        return use();
    }
    if (command == "use-as" && argc > 3) {
        return becomeUser(argument + ':' + argv[3]) ? use() : 1;
    }
    if (command == "write") {
        return write(argument.toInt());
    }
    std::fputs(
        "usage: BufferHelper publish|flood|die-with-lock|stop-with-lock|use|use-as|write …\n",
        stderr);
    return 2;
}
