// SPDX-License-Identifier: MIT
// A child process that the kernel ends when the test dies first.
#ifndef DYINGPROCESS_H
#define DYINGPROCESS_H

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

class DyingProcess : public QProcess
{
protected:
    void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

#endif
