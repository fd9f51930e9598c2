#pragma once

#include <memory>
#include <optional>

#include <QStringList>

#include "app/smc/platform_win.h"
#include "tests/support/fakesmcplatform.h"

using SMC::Transport;
using Answer = SMC::SelectionMessages::BootCampAnswer;

inline const QString vanguardKey
    = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Riot Vanguard");
inline const QString faceitKey
    = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
                     "{1419E44C-0EF4-4822-9194-9F1A4D43973D}_is1");

// What the system tells, and what was done to the user and the transports.
struct World {
    QString releaseId;
    bool halDriverExists = false;
    std::optional<int> signingYear;
    std::optional<std::uint64_t> size;
    QStringList softwareKeys;

    Answer answer = Answer::Ignore;
    QList<Transport> opening; // the transports that can be opened

    QStringList events; // "HAL", "MMIO", "InpOut32", "ask", "tell", "key <name>"
    QString title;
    QString text;
    FakeSmcPlatform* lastTransport = nullptr;

    // An old driver on a system that it crashes.
    void setOldDriver()
    {
        releaseId = QStringLiteral("1903");
        halDriverExists = true;
        signingYear = 2012;
        size = 30000;
    }
};

class WorldFacts final : public SMC::TransportFacts {
public:
    explicit WorldFacts(World& world)
        : m_world(world)
    {
    }
    QString releaseId() override { return m_world.releaseId; }
    bool halDriverExists() override { return m_world.halDriverExists; }
    std::optional<int> halDriverSigningYear() override { return m_world.signingYear; }
    std::optional<std::uint64_t> halDriverSize() override { return m_world.size; }
    bool softwareKeyExists(const QString& key) override
    {
        m_world.events << QStringLiteral("key ") + key.section(QLatin1Char('\\'), -1);
        return m_world.softwareKeys.contains(key);
    }

private:
    World& m_world;
};

class WorldMessages final : public SMC::SelectionMessages {
public:
    explicit WorldMessages(World& world)
        : m_world(world)
    {
    }
    Answer askAboutBootCamp(const QString& title, const QString& text) override
    {
        take(QStringLiteral("ask"), title, text);
        return m_world.answer;
    }
    void tellAboutBlockingSoftware(const QString& title, const QString& text) override
    {
        take(QStringLiteral("tell"), title, text);
    }

private:
    void take(const QString& event, const QString& title, const QString& text)
    {
        m_world.events << event;
        m_world.title = title;
        m_world.text = text;
    }

    World& m_world;
};

inline QString nameOf(Transport transport)
{
    switch (transport) {
    case Transport::MMIO:
        return QStringLiteral("MMIO");
    case Transport::HAL:
        return QStringLiteral("HAL");
    case Transport::InpOut32:
        return QStringLiteral("InpOut32");
    }
    return {};
}

inline std::unique_ptr<SMC::PlatformWin> makeSelector(World& world)
{
    return std::make_unique<SMC::PlatformWin>(
        std::make_unique<WorldFacts>(world), std::make_unique<WorldMessages>(world),
        [&world](Transport transport) {
            auto platform = std::make_unique<FakeSmcPlatform>();
            platform->setOpens(world.opening.contains(transport));
            world.events << nameOf(transport);
            world.lastTransport = platform.get();
            return platform;
        });
}

inline QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QStringLiteral(", "));
}

inline const QStringList bothKeys
    = { QStringLiteral("key Riot Vanguard"),
        QStringLiteral("key {1419E44C-0EF4-4822-9194-9F1A4D43973D}_is1") };
