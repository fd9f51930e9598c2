// The program that the tests of runProcess start:
//   exit N    ends with the exit code N
//   length    ends with the length of its command line
//   wait E    sets the event E-started, waits for the event E, ends with 3
// Anything else ends with 99, and so does a wait without its events.

#include <cstdlib>
#include <string>

#include <windows.h>

namespace {

constexpr int notUnderstood = 99;

HANDLE openEvent(const std::string& name)
{
    return OpenEventA(EVENT_MODIFY_STATE | SYNCHRONIZE, FALSE, name.c_str());
}

int waitFor(const std::string& name)
{
    const HANDLE started = openEvent(name + "-started");
    const HANDLE awaited = openEvent(name);
    if (started == nullptr || awaited == nullptr) {
        return notUnderstood;
    }
    SetEvent(started);
    WaitForSingleObject(awaited, INFINITE);
    return 3;
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string operation = argc > 1 ? argv[1] : "";
    if (operation == "length") {
        return lstrlenW(GetCommandLineW());
    }
    if (argc != 3) {
        return notUnderstood;
    }
    if (operation == "exit") {
        return std::atoi(argv[2]);
    }
    return operation == "wait" ? waitFor(argv[2]) : notUnderstood;
}
