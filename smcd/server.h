#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <vector>

#include "smcd/descriptor.h"
#include "smcd/peer.h"
#include "smcd/service.h"

namespace smcd {

// Takes the clients in and carries their packets to the service and back. Never waits
// for a client: one that doesn't take its replies is dropped. One request is served
// at a time, in turns; clients that are gone come before all requests.
class Server {
public:
    static constexpr std::size_t mostClients = 8;
    // Between two attempts to give fans back.
    static constexpr std::chrono::milliseconds retryInterval { 500 };

    // The service must outlive the server, and so must the descriptors: the one
    // where clients arrive, and the one that becomes readable when it has to end.
    // The group's members are served, and root.
    Server(Service& service, int listener, int stop, std::optional<std::uint32_t> group);

    // Until the end, with all fans given back that don't stay, if the controller takes
    // them. False when the system fails.
    [[nodiscard]] bool run();

private:
    using SteadyClock = std::chrono::steady_clock;

    struct Client {
        ClientId id = 0;
        Descriptor socket;
        bool isGone = false;
    };

    Service& m_service;
    const int m_listener;
    const int m_stop;
    const std::optional<std::uint32_t> m_group;
    std::vector<Client> m_clients;
    ClientId m_lastId = 0;
    std::size_t m_turn = 0; // of the client that is served next
    SteadyClock::time_point m_nextAttempt;

    [[nodiscard]] int patience() const;
    void takeIn();
    void serve(Client& client);
    void hearLastWords(Client& client);
    void removeGone();
    void giveBack();
    void end();
};

} // namespace smcd
