#pragma once

// What the port driver's test library has been told by SetProcessInformation, in
// the plain types of the system's.
struct ProcessInformation {
    int calls = 0;
    void* process = nullptr;
    int informationClass = 0;
    unsigned size = 0;
    // Of the last call, when its size is that of these.
    struct PowerThrottling {
        unsigned version = 0;
        unsigned controlMask = 0;
        unsigned stateMask = 0;
    } powerThrottling;
};
