#pragma once

#include <memory>

// The user's choice between a light and a dark look, as this system keeps it for
// the test program. Light at first; to be made before the application object.
class UsersLook {
public:
    UsersLook();
    UsersLook(const UsersLook&) = delete;
    UsersLook& operator=(const UsersLook&) = delete;
    ~UsersLook();

    // Needs the application object.
    void setDark(bool dark);

private:
    class Keeper;
    const std::unique_ptr<Keeper> m_keeper;
};
