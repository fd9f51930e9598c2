#include "macsim/run/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace macsim {

int terminalWidth()
{
    winsize size {};
    const bool isTerminal
        = ::isatty(STDERR_FILENO) == 1 && ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0;
    return isTerminal ? size.ws_col : 0;
}

} // namespace macsim
