#include "macsim/run/driveserver.h"

#include <algorithm>
#include <cerrno>

#include <QTimer>

namespace macsim {

namespace {

using driverecord::Answer;
using driverecord::Request;

QByteArray bytesOf(const Answer& answer)
{
    return { static_cast<const char*>(static_cast<const void*>(answer.data())),
             static_cast<int>(answer.size()) };
}

QByteArray errorAnswer(int error)
{
    Answer answer {};
    driverecord::putNumber(answer, driverecord::place::error, static_cast<quint32>(error));
    return bytesOf(answer);
}

QByteArray answerOf(const SimulatedDrive::Answer& outcome, quint32 mostData)
{
    const QByteArray data = outcome.data.left(static_cast<int>(mostData));
    const QByteArray sense = outcome.sense.left(static_cast<int>(driverecord::senseSize));
    Answer answer {};
    driverecord::putNumber(answer, driverecord::place::dataLength,
                           static_cast<quint32>(data.size()));
    answer[driverecord::place::status] = outcome.status;
    answer[driverecord::place::senseLength] = static_cast<quint8>(sense.size());
    std::copy(sense.begin(), sense.end(), answer.begin() + driverecord::place::sense);
    return bytesOf(answer) + data;
}

QString nameIn(const Request& request)
{
    const auto* name
        = static_cast<const char*>(static_cast<const void*>(&request[driverecord::place::name]));
    return QString::fromLatin1(name, static_cast<int>(qstrnlen(name, driverecord::nameSize)));
}

QByteArray commandIn(const Request& request)
{
    const auto* command
        = static_cast<const char*>(static_cast<const void*>(&request[driverecord::place::command]));
    return { command, static_cast<int>(driverecord::commandSize) };
}

} // namespace

DriveServer::DriveServer(SimulatedMac& mac, const Trace& trace)
    : m_mac(mac)
    , m_trace(trace)
{
}

bool DriveServer::takes(char firstByte)
{
    const auto operation = static_cast<quint8>(firstByte);
    return operation == driverecord::open || operation == driverecord::command;
}

void DriveServer::serve(QIODevice& socket)
{
    Request request {};
    if (socket.bytesAvailable() < static_cast<qint64>(request.size())) {
        return;
    }
    socket.read(static_cast<char*>(static_cast<void*>(request.data())),
                static_cast<qint64>(request.size()));
    const QString name = nameIn(request);
    if (request[0] == driverecord::open) {
        socket.write(openAnswer(name));
        return;
    }
    const SimulatedDrive* const drive = m_mac.drive(name);
    if (drive == nullptr || !drive->faults().hanging || drive->faults().unplugged) {
        socket.write(commandAnswer(name, request));
        return;
    }
    tell(name, SimulatedDrive::commandName(commandIn(request)), "hangs");
    if (drive->faults().delay.count() > 0) {
        // Whoever asks may be gone by then, and the timer with him.
        QTimer::singleShot(
            drive->faults().delay, Qt::PreciseTimer, &socket,
            [this, &socket, name, request] { socket.write(commandAnswer(name, request)); });
    }
}

QByteArray DriveServer::openAnswer(const QString& name)
{
    const SimulatedDrive* const drive = m_mac.drive(name);
    const int error = drive == nullptr ? ENOENT : drive->open();
    tell(name, QStringLiteral("open"), error == 0 ? "ok" : "refused");
    return errorAnswer(error);
}

QByteArray DriveServer::commandAnswer(const QString& name, const Request& request)
{
    SimulatedDrive* const drive = m_mac.drive(name);
    if (drive == nullptr) {
        return errorAnswer(ENODEV);
    }
    m_mac.advance();
    const QByteArray command = commandIn(request);
    const auto outcome = drive->execute(command, m_mac.temperature(drive->description()));
    tell(name, SimulatedDrive::commandName(command), outcome.word);
    return outcome.error != 0
        ? errorAnswer(outcome.error)
        : answerOf(outcome, driverecord::numberAt(request, driverecord::place::dataLength));
}

void DriveServer::tell(const QString& name, const QString& what, const char* word)
{
    m_trace.event(QStringLiteral("drive %1 %2 %3").arg(name, what, QLatin1String(word)));
}

} // namespace macsim
