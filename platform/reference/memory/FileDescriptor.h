// SPDX-License-Identifier: MIT
// Owns a file descriptor; system calls repeated when a signal interrupts them.
#ifndef FILEDESCRIPTOR_H
#define FILEDESCRIPTOR_H

#include <QString>

#include <cerrno>
#include <unistd.h>

/// Closes a descriptor at the end of its scope.
class FileDescriptor
{
public:
    explicit FileDescriptor(int number = -1)
        : number(number)
    {
    }
    ~FileDescriptor()
    {
        if (number >= 0) {
            close(number); // never repeated: Linux has let go of the number also after EINTR
        }
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    bool isValid() const { return number >= 0; }
    int get() const { return number; }

private:
    const int number;
};

/// Calls again for as long as a signal interrupts a call that reports by -1 and errno.
template <typename Call> auto repeatOnSignal(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// errno's text.
inline QString errorText(int error)
{
    return qt_error_string(error); // reentrant, unlike strerror
}

#endif
