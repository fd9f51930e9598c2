#pragma once

#include <functional>
#include <memory>
#include <string>

#include "smcd/controller.h"
#include "smcd/fanholders.h"
#include "smcd/forcedfans.h"
#include "smcd/keyreader.h"
#include "smcd/writerules.h"

namespace smcd {

// What the service does with the requests of its clients, and with their fans when
// they are gone. Knows nothing of sockets. One thread.
class Service {
public:
    // Takes a line for the journal.
    using Journal = std::function<void(const std::string& line)>;

    // The note must outlive the service.
    Service(ControllerFactory factory, ForcedFans& note, Journal journal);

    // Owes the controller what a predecessor has left behind.
    void start();
    // The packet that answers a client's packet.
    [[nodiscard]] protocol::Packet answer(ClientId client, Bytes packet);
    // Of a client that is gone and can't be answered: only its wish that its fans
    // stay is heard.
    void hearLast(ClientId client, Bytes packet);
    void left(ClientId client);
    // Everybody is taken for gone.
    void leaveAll();

    // Whether there are fans to give back, and the attempt to do so.
    [[nodiscard]] bool owes() const;
    void giveBack();

private:
    // What exists while the controller is within reach.
    struct Access {
        explicit Access(std::unique_ptr<Controller> way);

        std::unique_ptr<Controller> controller;
        KeyReader reader;
        WriteRules rules;
    };

    ControllerFactory m_factory;
    ForcedFans& m_note;
    Journal m_journal;
    std::unique_ptr<Access> m_access;
    std::string m_lastReason; // why there was no access
    FanHolders m_holders;
    ControlBits m_noted; // what the note holds
    bool m_isNoteLost = false; // it couldn't be understood

    [[nodiscard]] Access* access();
    [[nodiscard]] protocol::Reply execute(ClientId client, Bytes packet);
    [[nodiscard]] protocol::Reply executeOnKey(ClientId client, const protocol::Call& call);
    [[nodiscard]] std::uint32_t write(Access& access, ClientId client, const protocol::Call& call);
    [[nodiscard]] bool note();
    void findForced(Access& access);
    [[nodiscard]] bool giveMaskBack(Access& access);
    [[nodiscard]] bool giveModeBack(Access& access, std::size_t fan);
};

} // namespace smcd
