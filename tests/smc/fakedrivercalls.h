#pragma once

#include <deque>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QStringList>

#include "app/smc/driver_calls.h"

// A system whose drivers the test lays out. It notes every call with what was sent;
// each call to a driver is answered by what the test has put in.
class FakeDriverCalls final : public SMC::DriverCalls {
public:
    // What a driver does with a call: the bytes that it puts into the reply, as far as
    // there is room, how many it says that it has put there, and an error if it fails.
    struct Answer {
        QByteArray reply;
        std::optional<std::size_t> filled; // the reply's own size without a value
        std::uint32_t error = 0;
    };

    struct Interface {
        QString path;
        std::uint32_t enumerationError = 0;
        bool hasDetail = true;
    };

    QStringList& calls; // outlives this object
    std::map<QString, std::uint32_t> openErrors; // by path; others open
    std::vector<Interface> interfaces;
    bool listsInterfaces = true;
    bool endlessInterfaces = false;
    std::uint32_t managerError = 0;
    std::uint32_t serviceError = 0;
    std::uint32_t startError = 0;
    std::uint32_t controlError = 0;
    std::deque<Answer> answers;
    std::map<QString, FileVersion> files;

    explicit FakeDriverCalls(QStringList& notes)
        : calls(notes)
    {
    }

    Handle createFile(const QString& path, std::uint32_t desiredAccess, std::uint32_t shareMode,
                      std::uint32_t creationDisposition, std::uint32_t flagsAndAttributes) override
    {
        calls.append(QStringLiteral("open %1 %2 %3 %4 %5")
                         .arg(path, hex(desiredAccess), hex(shareMode), hex(creationDisposition),
                              hex(flagsAndAttributes)));
        const auto found = openErrors.find(path);
        return found == openErrors.end() ? device() : failed(found->second);
    }

    std::optional<std::size_t> deviceIoControl(Handle, std::uint32_t code,
                                               std::span<const std::uint8_t> request,
                                               std::span<std::uint8_t> reply) override
    {
        const QByteArray sent(static_cast<const char*>(static_cast<const void*>(request.data())),
                              static_cast<int>(request.size()));
        calls.append(QStringLiteral("control %1 [%2] %3")
                         .arg(hex(code), QString::fromLatin1(sent.toHex(' ')),
                              QString::number(reply.size())));
        if (answers.empty()) {
            qFatal("A call that nobody has an answer to");
        }
        const Answer answer = answers.front();
        answers.pop_front();
        if (answer.error != 0) {
            m_error = answer.error;
            return std::nullopt;
        }
        const auto size = std::min(reply.size(), static_cast<std::size_t>(answer.reply.size()));
        std::copy_n(answer.reply.begin(), size, reply.begin());
        return answer.filled.value_or(static_cast<std::size_t>(answer.reply.size()));
    }

    void closeHandle(Handle) override { calls.append(QStringLiteral("close")); }
    std::uint32_t lastError() override { return m_error; }

    Handle setupDiGetClassDevs(const SMC::InterfaceClass& interfaceClass,
                               std::uint32_t flags) override
    {
        calls.append(QStringLiteral("list %1-%2-%3 %4")
                         .arg(hex(interfaceClass.first), hex(interfaceClass.second),
                              hex(interfaceClass.third), hex(flags)));
        askedClass = interfaceClass;
        return listsInterfaces ? device() : failed(13);
    }

    bool setupDiEnumDeviceInterfaces(Handle, std::uint32_t index) override
    {
        ++enumerations;
        m_index = index;
        if (endlessInterfaces) {
            m_error = 5;
            return false;
        }
        m_error = index < interfaces.size() ? interfaces[index].enumerationError : 259;
        return m_error == 0;
    }

    std::optional<QString> setupDiGetDeviceInterfaceDetail(Handle) override
    {
        const Interface& current = interfaces.at(m_index);
        return current.hasDetail ? std::optional(current.path) : std::nullopt;
    }

    void setupDiDestroyDeviceInfoList(Handle) override
    {
        calls.append(QStringLiteral("end of list"));
    }

    Handle openSCManager(std::uint32_t desiredAccess) override
    {
        calls.append(QStringLiteral("manager ") + hex(desiredAccess));
        return managerError == 0 ? device() : failed(managerError);
    }

    Handle openService(Handle, const QString& name, std::uint32_t desiredAccess) override
    {
        calls.append(QStringLiteral("service %1 %2").arg(name, hex(desiredAccess)));
        return serviceError == 0 ? device() : failed(serviceError);
    }

    bool startService(Handle) override
    {
        calls.append(QStringLiteral("start"));
        m_error = startError;
        return startError == 0;
    }

    bool controlService(Handle, std::uint32_t control) override
    {
        calls.append(QStringLiteral("control service ") + hex(control));
        m_error = controlError;
        return controlError == 0;
    }

    void closeServiceHandle(Handle) override { calls.append(QStringLiteral("close service")); }

    void leaveFans(Handle) override { calls.append(QStringLiteral("leave fans")); }

    std::optional<FileVersion> fileVersion(const QString& path) override
    {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    }

    SMC::InterfaceClass askedClass;
    int enumerations = 0;

private:
    std::uint32_t m_error = 0;
    std::uint32_t m_index = 0;

    static QString hex(std::uint32_t number) { return QString::number(number, 16); }
    Handle device() { return this; }
    Handle failed(std::uint32_t error)
    {
        m_error = error;
        return nullptr;
    }
};
