// SPDX-License-Identifier: MIT
// A forked child that dies or stops at a chosen crash point of what it does.
#include "DoomedProcess.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int cameThrough = 77;

// Points that are left before the last one; negative: none is.
std::atomic<int> pointsLeft{-1};
std::atomic<int> lastSignal{SIGKILL};

[[noreturn]] void runChild(const std::function<DoomedProcess::Prepared()> &prepare, int point,
                           int input, int output)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const DoomedProcess::Prepared prepared = prepare();
    const bool told = write(output, prepared.news.constData(), size_t(prepared.news.size()))
        == prepared.news.size();
    close(output);
    char go = 0;
    if (!told || read(input, &go, 1) != 1) {
        _exit(EXIT_FAILURE);
    }
    pointsLeft = point;
    prepared.deed();
    _exit(cameThrough);
}

}

void crashPointReached();
void crashPointReached()
{
    if (pointsLeft >= 0 && pointsLeft-- == 0) {
        kill(getpid(), lastSignal);
        for (;;) {
            pause(); // the signal reaches every thread, this one perhaps not first
        }
    }
}

DoomedProcess::DoomedProcess(const std::function<Prepared()> &prepare, int point, Fate fate)
{
    int down[2];
    int up[2];
    if (pipe(down) == -1 || pipe(up) == -1) {
        std::perror("pipe");
        std::abort();
    }
    child = fork();
    if (child == 0) {
        close(down[1]);
        close(up[0]);
        lastSignal = fate == Stops ? SIGSTOP : SIGKILL;
        runChild(prepare, point, down[0], up[1]);
    }
    close(down[0]);
    close(up[1]);
    toChild = down[1];
    fromChild = up[0];
}

DoomedProcess::~DoomedProcess()
{
    close(toChild);
    close(fromChild);
    if (child > 0) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

QByteArray DoomedProcess::news() const
{
    QByteArray text;
    char part[4096];
    for (;;) {
        const ssize_t got = read(fromChild, part, sizeof(part));
        if (got <= 0) {
            return text;
        }
        text.append(part, int(got));
    }
}

int DoomedProcess::letGo()
{
    int status = 0;
    if (write(toChild, "g", 1) != 1 || waitpid(child, &status, WUNTRACED) != child) {
        std::abort();
    }
    if (!WIFSTOPPED(status)) {
        child = -1;
    }
    const bool cameToItsPoint
        = WIFSTOPPED(status) || (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    if (!cameToItsPoint && !(WIFEXITED(status) && WEXITSTATUS(status) == cameThrough)) {
        std::fprintf(stderr, "the child ended otherwise: status %x\n", unsigned(status));
        std::abort();
    }
    return status;
}

bool DoomedProcess::diesAtItsPoint()
{
    return WIFSIGNALED(letGo());
}

bool DoomedProcess::stopsAtItsPoint()
{
    return WIFSTOPPED(letGo());
}
