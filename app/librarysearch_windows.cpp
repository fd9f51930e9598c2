#include "app/librarysearch.h"

#include <windows.h>

void leaveOutCurrentFolder() { SetDllDirectoryW(L""); }
