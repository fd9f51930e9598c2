#include "tests/e2e/xsessionmanager.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include <QSocketNotifier>
#include <QStringList>

// Last: its macros would change what Qt declares.
#include <X11/SM/SMlib.h>

namespace {

struct FreeMemory {
    void operator()(char* text) const { std::free(text); }
};
using OwnedText = std::unique_ptr<char, FreeMemory>;

int acceptEveryHost(char* /*hostName*/) { return 1; }

} // namespace

class XSessionManager::Server {
public:
    Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    [[nodiscard]] QString address() const;
    void ask(bool sessionEnds);

    SmsConn client = nullptr; // none unless it has registered
    int pendingSaves = 0;

private:
    static Server& from(SmPointer data) { return *static_cast<Server*>(data); }

    // What the library calls; the pointers are those of SmsCallbacks.
    static int takeClient(SmsConn connection, SmPointer data, unsigned long* mask,
                          SmsCallbacks* callbacks, char** failure);
    static int registerClient(SmsConn connection, SmPointer data, char* previousId);
    static void noteSave(SmsConn connection, SmPointer data, int success);
    static void allowSecondPhase(SmsConn connection, SmPointer data);
    static void allowInteraction(SmsConn connection, SmPointer data, int dialogType);
    static void forgetClient(SmsConn connection, SmPointer data, int count, char** reasons);
    static void dropProperties(SmsConn connection, SmPointer data, int count, SmProp** properties);

    void accept(IceListenObj listener);
    void watch(int descriptor, const std::function<void()>& read);

    int m_listenerCount = 0;
    IceListenObj* m_listeners = nullptr;
    std::vector<std::unique_ptr<QSocketNotifier>> m_notifiers;
};

XSessionManager::Server::Server()
{
    // A program that is gone is none of this process's business, which the library
    // would end. The answers to reads tell of it as well.
    IceSetIOErrorHandler([](IceConn) {});
    std::array<char, 256> error {};
    const auto length = static_cast<int>(error.size());
    if (SmsInitialize("test", "1", takeClient, this, acceptEveryHost, length, error.data()) == 0
        || IceListenForConnections(&m_listenerCount, &m_listeners, length, error.data()) == 0) {
        qFatal("No session manager: %s", error.data());
    }
    for (int index = 0; index < m_listenerCount; ++index) {
        const IceListenObj listener = m_listeners[index];
        IceSetHostBasedAuthProc(listener, acceptEveryHost);
        watch(IceGetListenConnectionNumber(listener), [this, listener] { accept(listener); });
    }
}

XSessionManager::Server::~Server()
{
    m_notifiers.clear();
    IceFreeListenObjs(m_listenerCount, m_listeners);
}

QString XSessionManager::Server::address() const
{
    const OwnedText all(IceComposeNetworkIdList(m_listenerCount, m_listeners));
    // Only those that leave this machine alone.
    const QStringList addresses = QString::fromLatin1(all.get()).split(QLatin1Char(','));
    return addresses.filter(QStringLiteral("/.ICE-unix/")).join(QLatin1Char(','));
}

void XSessionManager::Server::ask(bool sessionEnds)
{
    ++pendingSaves;
    SmsSaveYourself(client, SmSaveBoth, sessionEnds ? 1 : 0, SmInteractStyleAny, 0);
    IceFlush(SmsGetIceConnection(client));
}

void XSessionManager::Server::watch(int descriptor, const std::function<void()>& read)
{
    auto notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), read);
    m_notifiers.push_back(std::move(notifier));
}

void XSessionManager::Server::accept(IceListenObj listener)
{
    IceAcceptStatus status = IceAcceptSuccess;
    const IceConn connection = IceAcceptConnection(listener, &status);
    if (connection == nullptr) {
        return;
    }
    watch(IceConnectionNumber(connection), [this, connection, notifier = m_notifiers.size()] {
        if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesSuccess) {
            m_notifiers[notifier]->setEnabled(false);
        }
    });
}

int XSessionManager::Server::takeClient(SmsConn /*connection*/, SmPointer data, unsigned long* mask,
                                        SmsCallbacks* callbacks, char** /*failure*/)
{
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask
        | SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask
        | SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask
        | SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    callbacks->register_client = { registerClient, data };
    callbacks->interact_request = { allowInteraction, data };
    callbacks->interact_done = { [](SmsConn, SmPointer, int) {}, data };
    callbacks->save_yourself_request = { [](SmsConn, SmPointer, int, int, int, int, int) {}, data };
    callbacks->save_yourself_phase2_request = { allowSecondPhase, data };
    callbacks->save_yourself_done = { noteSave, data };
    callbacks->close_connection = { forgetClient, data };
    callbacks->set_properties = { dropProperties, data };
    callbacks->delete_properties = { [](SmsConn, SmPointer, int, char**) {}, data };
    callbacks->get_properties = { [](SmsConn, SmPointer) {}, data };
    return 1;
}

int XSessionManager::Server::registerClient(SmsConn connection, SmPointer data, char* previousId)
{
    const OwnedText previous(previousId);
    const OwnedText id(previous ? nullptr : SmsGenerateClientID(connection));
    SmsRegisterClientReply(connection, previous ? previous.get() : id.get());
    // A new client saves its state first of all.
    ++from(data).pendingSaves;
    SmsSaveYourself(connection, SmSaveLocal, 0, SmInteractStyleNone, 0);
    from(data).client = connection;
    return 1;
}

void XSessionManager::Server::noteSave(SmsConn connection, SmPointer data, int /*success*/)
{
    --from(data).pendingSaves;
    SmsSaveComplete(connection);
    IceFlush(SmsGetIceConnection(connection));
}

void XSessionManager::Server::allowSecondPhase(SmsConn connection, SmPointer /*data*/)
{
    SmsSaveYourselfPhase2(connection);
}

void XSessionManager::Server::allowInteraction(SmsConn connection, SmPointer /*data*/,
                                               int /*dialogType*/)
{
    SmsInteract(connection);
}

void XSessionManager::Server::forgetClient(SmsConn connection, SmPointer data, int count,
                                           char** reasons)
{
    SmFreeReasons(count, reasons);
    from(data).client = nullptr;
    const IceConn ice = SmsGetIceConnection(connection);
    SmsCleanUp(connection);
    IceSetShutdownNegotiation(ice, 0);
}

void XSessionManager::Server::dropProperties(SmsConn /*connection*/, SmPointer /*data*/, int count,
                                             SmProp** properties)
{
    for (int index = 0; index < count; ++index) {
        SmFreeProperty(properties[index]);
    }
    std::free(properties);
}

XSessionManager::XSessionManager()
    : m_server(std::make_unique<Server>())
{
}

XSessionManager::~XSessionManager() = default;

QString XSessionManager::address() const { return m_server->address(); }

bool XSessionManager::hasIdleClient() const
{
    return m_server->client != nullptr && m_server->pendingSaves == 0;
}

void XSessionManager::saveYourself(bool sessionEnds) { m_server->ask(sessionEnds); }

void XSessionManager::cancelShutdown()
{
    SmsShutdownCancelled(m_server->client);
    IceFlush(SmsGetIceConnection(m_server->client));
}

void XSessionManager::die()
{
    SmsDie(m_server->client);
    IceFlush(SmsGetIceConnection(m_server->client));
}
