#include "tests/macsim/macbench.h"

#include "macsim/model/smcvalue.h"

using namespace macsim;

namespace {

MachineDescription described(const QString& name)
{
    QString error;
    auto machine = MachineDescription::load(name, error);
    if (!machine) {
        qFatal("%s", qPrintable(error));
    }
    return *machine;
}

} // namespace

MacBench::MacBench(const QString& machine, const QString& load)
    : trace(clock, [this](const QByteArray& line) { lines.append(QString::fromUtf8(line)); })
    , mac(described(machine), clock, { LoadProfile::fromText(load).value(), 1.0, 1 })
    , controller(mac, clock, trace)
    , verbs(mac, controller, trace, [this](bool onBattery) {
        powerSwitches.append(onBattery ? QStringLiteral("battery") : QStringLiteral("ac"));
        return true;
    })
{
}

bool MacBench::send(quint16 port, quint8 byte)
{
    controller.write(port, byte);
    clock.advance(controller.faults().byteTime);
    const quint8 status = controller.read(PortController::commandPort);
    return (status & PortController::statusBusy) == 0
        && (status & PortController::statusAccepted) != 0;
}

bool MacBench::start(quint8 command, const QByteArray& argument)
{
    bool taken = send(PortController::commandPort, command);
    for (const char byte : argument) {
        taken = taken && send(PortController::dataPort, static_cast<quint8>(byte));
    }
    return taken;
}

QByteArray MacBench::exchange(quint8 command, const QByteArray& argument, quint8 length)
{
    QByteArray bytes;
    if (!start(command, argument) || !send(PortController::dataPort, length)) {
        return bytes;
    }
    while (bytes.size() < length && (controller.read(PortController::commandPort) & 0x0F) == 0x05) {
        bytes.append(static_cast<char>(controller.read(PortController::dataPort)));
        clock.advance(controller.faults().byteTime);
    }
    return bytes;
}

QByteArray MacBench::read(const QByteArray& key, quint8 length)
{
    return exchange(PortController::readCommand, key, length);
}

QByteArray MacBench::info(const QByteArray& key)
{
    return exchange(PortController::infoCommand, key, 6);
}

bool MacBench::write(const QByteArray& key, const QByteArray& value)
{
    if (!start(PortController::writeCommand, key)
        || !send(PortController::dataPort, static_cast<quint8>(value.size()))) {
        return false;
    }
    for (const char byte : value) {
        if ((controller.read(PortController::commandPort) & 0x0F) != 0x04) {
            return false;
        }
        controller.write(PortController::dataPort, static_cast<quint8>(byte));
        clock.advance(controller.faults().byteTime);
    }
    return true;
}

double MacBench::fanSpeed(int fan)
{
    mac.advance();
    return mac.fan(fan).actual;
}

double MacBench::temperature(const QString& source)
{
    mac.advance();
    const auto& sources = mac.description().heatSources;
    for (std::size_t index = 0; index < sources.size(); ++index) {
        if (sources[index].name == source) {
            return mac.sources()[index].temperature;
        }
    }
    qFatal("No heat source %s", qPrintable(source));
}

void MacBench::passSeconds(double seconds)
{
    clock.advance(std::chrono::microseconds(static_cast<qint64>(seconds * 1e6)));
    mac.advance();
}

quint64 MacBench::errors(ProtocolError error) const { return controller.counters().errors(error); }

QStringList MacBench::events() const
{
    QStringList result;
    for (const QString& line : lines) {
        result.append(line.section(QLatin1Char(' '), 1));
    }
    return result;
}
