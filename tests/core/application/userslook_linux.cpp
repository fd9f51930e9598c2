#include "tests/core/application/userslook.h"

#include "tests/support/privatebus.h"
#include "tests/support/systemmocks.h"

class UsersLook::Keeper {
public:
    void setDark(bool dark)
    {
        if (!m_portal) {
            m_portal = std::make_unique<PortalMock>(m_bus);
        }
        m_portal->change(dark ? 1 : 2);
    }

private:
    PrivateBus m_bus { PrivateBus::Kind::Session };
    std::unique_ptr<PortalMock> m_portal;
};

UsersLook::UsersLook()
    : m_keeper(std::make_unique<Keeper>())
{
}

UsersLook::~UsersLook() = default;

void UsersLook::setDark(bool dark) { m_keeper->setDark(dark); }
