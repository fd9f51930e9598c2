#include "tests/support/processgroup.h"

#include <csignal>

#include <sys/prctl.h>
#include <sys/types.h>
#include <unistd.h>

ProcessGroup::~ProcessGroup() { killAll(); }

void ProcessGroup::sendSignal(int number)
{
    if (processId() > 0) {
        ::kill(static_cast<pid_t>(processId()), number);
    }
}

void ProcessGroup::killAll()
{
    if (processId() > 0) {
        ::kill(static_cast<pid_t>(-processId()), SIGKILL);
        waitForFinished();
    }
}

void ProcessGroup::setupChildProcess()
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}
