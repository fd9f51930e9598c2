#include "app/terminationsignals.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>

namespace {

constexpr std::array<int, 3> handledSignals { SIGTERM, SIGINT, SIGHUP };

// The write end of the pipe; the signal handler may use nothing else.
volatile std::sig_atomic_t pipeInput = -1;

extern "C" void forwardSignal(int /*signal*/)
{
    const int savedError = errno;
    const char byte = 0;
    // A full pipe holds the message already.
    [[maybe_unused]] const auto written = ::write(pipeInput, &byte, 1);
    errno = savedError;
}

} // namespace

class TerminationSignals::Handler {
public:
    Handler()
    {
        if (::pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
            qFatal("No pipe for signals");
        }
        pipeInput = m_pipe[1];
        struct sigaction action { };
        action.sa_handler = forwardSignal;
        action.sa_flags = SA_RESTART;
        for (std::size_t index = 0; index < handledSignals.size(); ++index) {
            ::sigaction(handledSignals[index], &action, &m_previous[index]);
            // Whoever started the program wants it to outlive this signal.
            if (m_previous[index].sa_handler == SIG_IGN) {
                ::sigaction(handledSignals[index], &m_previous[index], nullptr);
            }
        }
        // A reader of the output that has gone must not end the program: the fans
        // would stay forced.
        m_previousPipe = std::signal(SIGPIPE, SIG_IGN);
    }

    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    ~Handler()
    {
        for (std::size_t index = 0; index < handledSignals.size(); ++index) {
            ::sigaction(handledSignals[index], &m_previous[index], nullptr);
        }
        std::signal(SIGPIPE, m_previousPipe);
        pipeInput = -1;
        ::close(m_pipe[0]);
        ::close(m_pipe[1]);
    }

    [[nodiscard]] int output() const { return m_pipe[0]; }

    void drain() const
    {
        std::array<char, 16> bytes {};
        while (::read(m_pipe[0], bytes.data(), bytes.size()) > 0) { }
    }

private:
    std::array<int, 2> m_pipe { -1, -1 };
    std::array<struct sigaction, handledSignals.size()> m_previous {};
    void (*m_previousPipe)(int) = SIG_DFL;
};

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
    , m_handler(std::make_unique<Handler>())
{
    auto* notifier = new QSocketNotifier(m_handler->output(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        m_handler->drain();
        Q_EMIT terminationRequested();
    });
}

TerminationSignals::~TerminationSignals() = default;
