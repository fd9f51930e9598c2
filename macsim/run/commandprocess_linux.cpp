#include "macsim/run/commandprocess.h"

#include <csignal>

#include <sys/prctl.h>
#include <sys/types.h>

namespace macsim {

CommandProcess::CommandProcess(QObject* parent)
    : QProcess(parent)
{
    setProcessChannelMode(QProcess::ForwardedChannels);
    setInputChannelMode(QProcess::ForwardedInputChannel);
}

void CommandProcess::sendSignal(int number)
{
    if (processId() > 0) {
        ::kill(static_cast<pid_t>(processId()), number);
    }
}

void CommandProcess::setupChildProcess() { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }

} // namespace macsim
