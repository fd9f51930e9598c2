#include "app/commandlinehelp.h"

// A program of windows has no standard output.
bool handleHelpSwitches(int /*argc*/, char** /*argv*/) { return false; }
