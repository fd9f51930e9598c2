#include "app/smc/driver_calls.h"

#include <cerrno>
#include <cstdio>

#include <QFileInfo>

#include "app/smc/device_channel_linux.h"
#include "core/log/log.h"
#include "core/system_path.h"
#include "smcd/protocol/records.h"

namespace SMC {

namespace {

constexpr std::uint32_t noMoreItems = 259; // as the list of devices ends on Windows

// There is one device, whatever name it is opened by: the socket of the service that
// may touch the controller. That service looks after itself, and files have no
// versions here.
class DriverCallsLinux final : public DriverCalls {
public:
    Handle createFile(const QString&, std::uint32_t, std::uint32_t, std::uint32_t,
                      std::uint32_t) override
    {
        const Handle device = m_channel.open();
        m_error = m_channel.lastError();
        if (device == nullptr && (m_error == EACCES || m_error == EPERM)) {
            tellMissingPrivilege();
        }
        return device;
    }

    std::optional<std::size_t> deviceIoControl(Handle device, std::uint32_t code,
                                               std::span<const std::uint8_t> request,
                                               std::span<std::uint8_t> reply) override
    {
        const auto filled = m_channel.control(device, code, request, reply);
        m_error = m_channel.lastError();
        return filled;
    }

    void closeHandle(Handle handle) override { m_channel.close(handle); }

    std::uint32_t lastError() override { return m_error; }

    Handle setupDiGetClassDevs(const InterfaceClass&, std::uint32_t) override { return this; }

    bool setupDiEnumDeviceInterfaces(Handle, std::uint32_t index) override
    {
        m_error = noMoreItems;
        return index == 0 && QFileInfo::exists(socketPath());
    }

    std::optional<QString> setupDiGetDeviceInterfaceDetail(Handle) override { return socketPath(); }

    void setupDiDestroyDeviceInfoList(Handle) override { }

    Handle openSCManager(std::uint32_t) override
    {
        m_error = ENOSYS;
        return nullptr;
    }

    Handle openService(Handle, const QString&, std::uint32_t) override { return nullptr; }
    bool startService(Handle) override { return false; }
    bool controlService(Handle, std::uint32_t) override { return false; }
    void closeServiceHandle(Handle) override { }

    void leaveFans(Handle device) override
    {
        if (!m_channel.control(device, smcd::protocol::code::keepFans, {}, {})) {
            LOG_ERR("The fans can't be left as they are, error {}", m_channel.lastError());
        }
    }

    std::optional<FileVersion> fileVersion(const QString&) override { return std::nullopt; }

private:
    DeviceChannel m_channel;
    std::uint32_t m_error = 0;

    static QString socketPath()
    {
        const auto path = smcd::protocol::socketPath;
        return core::systemPath(QString::fromLatin1(path.data(), static_cast<int>(path.size())));
    }

    static void tellMissingPrivilege()
    {
        constexpr const char* text
            = "The SMC is served to members of the group \"brisora\" (\"sudo usermod -aG brisora "
              "USER\", then log in again)";
        LOG_ERR("{}", text);
        std::fprintf(stderr, "%s\n", text);
    }
};

} // namespace

std::unique_ptr<DriverCalls> makeDriverCalls() { return std::make_unique<DriverCallsLinux>(); }

} // namespace SMC
