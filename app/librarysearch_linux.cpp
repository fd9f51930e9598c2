#include "app/librarysearch.h"

// The system doesn't look there.
void leaveOutCurrentFolder() { }
