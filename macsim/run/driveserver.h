#pragma once

#include <QIODevice>

#include "macsim/driverecord.h"
#include "macsim/model/simulatedmac.h"
#include "macsim/model/trace.h"

namespace macsim {

// Answers the drive face's records for the machine's drives. Each command leaves an
// event in the trace; one to a drive that hangs leaves one when it comes and one
// when it is answered, if ever.
class DriveServer {
public:
    // Both must outlive the server.
    DriveServer(SimulatedMac& mac, const Trace& trace);

    // Whether this first byte begins one of its records.
    [[nodiscard]] static bool takes(char firstByte);
    // Reads the record, once it is whole, and answers it on the socket, perhaps
    // later.
    void serve(QIODevice& socket);

private:
    SimulatedMac& m_mac;
    const Trace& m_trace;

    [[nodiscard]] QByteArray openAnswer(const QString& name);
    [[nodiscard]] QByteArray commandAnswer(const QString& name,
                                           const driverecord::Request& request);
    void tell(const QString& name, const QString& what, const char* word);
};

} // namespace macsim
