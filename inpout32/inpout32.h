#pragma once

// Access to the controller's two ports, 0x300 and 0x304; every other port is
// refused. Each thread gets its permission when it first needs it. All functions
// may be called from any thread; the caller keeps exchanges apart.
extern "C" {

// 1 when the calling thread may use the ports, else 0; the reason goes to
// standard error, once per process. Looks again at each call.
unsigned IsInpOutDriverOpen();

// Writes the low byte of value. Does nothing without permission.
void Out32(short port, short value);

// The byte that the port gives; 0 without permission.
short Inp32(short port);

// Why the last request for permission was refused; for a person. Empty when none
// was. Valid until the calling thread asks again.
const char* InpOutRefusal();
}
