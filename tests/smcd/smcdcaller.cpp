// A client of the service in a process of its own. Each line on the standard input is
// a request, "CODE ROOM RECORD" with code and record in hexadecimal; the answer is a
// line "ok DATA" or "error NUMBER". "forever CODE ROOM RECORD" repeats it without an
// answer until the process is killed.

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

#include <QByteArray>

#include "app/smc/device_channel_linux.h"

namespace {

struct Request {
    std::uint32_t code = 0;
    std::size_t room = 0;
    std::string record;
};

Request parsed(std::istringstream& words)
{
    Request request;
    words >> std::hex >> request.code >> std::dec >> request.room >> request.record;
    return request;
}

std::string answer(SMC::DeviceChannel& channel, DeviceCalls::Handle device, const Request& request)
{
    const QByteArray record = QByteArray::fromHex(QByteArray::fromStdString(request.record));
    const std::vector<std::uint8_t> bytes(record.begin(), record.end());
    std::vector<std::uint8_t> reply(request.room);
    const auto filled = channel.control(device, request.code, bytes, reply);
    if (!filled) {
        return "error " + std::to_string(channel.lastError());
    }
    const QByteArray data(static_cast<const char*>(static_cast<const void*>(reply.data())),
                          static_cast<int>(*filled));
    return "ok " + data.toHex().toUpper().toStdString();
}

} // namespace

int main()
{
    SMC::DeviceChannel channel;
    const DeviceCalls::Handle device = channel.open();
    if (device == nullptr) {
        std::cout << "error " << channel.lastError() << std::endl;
        return 1;
    }
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        if (line.starts_with("forever ")) {
            words.ignore(line.find(' '));
            const Request request = parsed(words);
            for (;;) {
                static_cast<void>(answer(channel, device, request));
            }
        }
        std::cout << answer(channel, device, parsed(words)) << std::endl;
    }
}
