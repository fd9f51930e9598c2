#include "macsim/run/terminationsignals.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>

namespace macsim {

namespace {

constexpr std::array handledSignals { SIGINT, SIGTERM, SIGHUP };

std::array<int, 2> pipeEnds { -1, -1 };

struct Message {
    unsigned char number;
    unsigned char sentToGroup;
};

void handleSignal(int number, siginfo_t* information, void*)
{
    const int savedError = errno;
    const Message message { static_cast<unsigned char>(number),
                            static_cast<unsigned char>(information->si_code == SI_KERNEL) };
    static_cast<void>(::write(pipeEnds[1], &message, sizeof(message)) + 0);
    errno = savedError;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qFatal("No pipe for signals");
    }
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readPipe(); });
    struct sigaction action { };
    action.sa_sigaction = handleSignal;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    for (const int number : handledSignals) {
        ::sigaction(number, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals()
{
    for (const int number : handledSignals) {
        std::signal(number, SIG_DFL);
    }
    m_notifier.reset();
    for (int& end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

void TerminationSignals::readPipe()
{
    Message message {};
    while (::read(pipeEnds[0], &message, sizeof(message)) == sizeof(message)) {
        Q_EMIT received(message.number, message.sentToGroup != 0);
    }
}

} // namespace macsim
