#pragma once

// Answers --help and --version on standard output, where the system's programs
// do so, and tells whether it did. Needs no application object.
[[nodiscard]] bool handleHelpSwitches(int argc, char** argv);
