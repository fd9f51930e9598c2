#pragma once

#include <QByteArray>

#include "macsim/model/clock.h"
#include "macsim/model/protocolcounters.h"
#include "macsim/model/simulatedmac.h"
#include "macsim/model/trace.h"

namespace macsim {

// The controller's side of the byte protocol on its two ports, as a caller sees
// it: commands go to the command port, the key, the length and the value through
// the data port, and the status on the command port says how far it is. Every
// byte takes a moment during which the status says busy. A byte that is refused
// (the length for a key that doesn't exist, for instance) leaves a status in
// which it is neither busy nor accepted; a command starts afresh from any state.
class PortController {
public:
    static constexpr quint16 dataPort = 0x300;
    static constexpr quint16 commandPort = 0x304;

    static constexpr quint8 readCommand = 0x10;
    static constexpr quint8 writeCommand = 0x11;
    static constexpr quint8 indexCommand = 0x12;
    static constexpr quint8 infoCommand = 0x13;

    static constexpr quint8 statusDataReady = 0x01;
    static constexpr quint8 statusBusy = 0x02;
    static constexpr quint8 statusAccepted = 0x04;

    static constexpr std::chrono::microseconds normalByteTime { 300 };

    struct Faults {
        bool mute = false; // the status is 0 and nothing is taken
        bool busy = false; // the status is busy for ever
        quint32 loseEvery = 0; // every so many bytes one is lost; 0 for none
        std::chrono::microseconds byteTime = normalByteTime;
    };

    // All three must outlive the controller.
    PortController(SimulatedMac& mac, const Clock& clock, const Trace& trace);

    void write(quint16 port, quint8 value);
    [[nodiscard]] quint8 read(quint16 port);

    void setFaults(const Faults& faults);
    [[nodiscard]] const Faults& faults() const { return m_faults; }
    // Forgets an unfinished exchange, as a controller that has slept does.
    void reset();
    [[nodiscard]] const ProtocolCounters& counters() const { return m_counters; }

private:
    enum class State {
        Idle,
        Argument, // takes the four bytes of a key or an index
        Length,
        Sending, // has bytes for the caller
        Receiving, // takes the bytes of a value
        Empty, // a complete exchange without a value byte
        Refused,
    };

    SimulatedMac& m_mac;
    const Clock& m_clock;
    const Trace& m_trace;
    ProtocolCounters m_counters;
    Faults m_faults;

    State m_state = State::Idle;
    quint8 m_command = 0;
    QByteArray m_argument; // key, or index with the highest byte first
    QByteArray m_payload; // the value on its way
    int m_length = 0; // bytes of it that the exchange carries
    int m_sent = 0; // bytes of it that the caller has read
    bool m_lost = false; // the last byte was lost
    bool m_disturbed = false; // a fault had its hand in this exchange
    quint64 m_bytesSeen = 0; // counts for the losses
    std::chrono::microseconds m_busyUntil { 0 };

    [[nodiscard]] bool answers() const;
    [[nodiscard]] bool isBusy() const;
    [[nodiscard]] bool isUnderWay() const;
    [[nodiscard]] bool losesThisByte();
    [[nodiscard]] quint8 status() const;

    void takeCommand(quint8 command);
    void takeData(quint8 byte);
    void takeLength(quint8 length);
    void startRead(quint8 length);
    void startWrite(quint8 length);
    void startInfo(quint8 length);
    void startIndex(quint8 length);
    void send(const QByteArray& bytes, quint8 length);
    [[nodiscard]] quint8 giveData();
    void finishWrite();
    void abandon();
    void becomeBusy();
    void traceExchange(const char* result) const;
    void countError(ProtocolError error, const QString& text);
};

} // namespace macsim
