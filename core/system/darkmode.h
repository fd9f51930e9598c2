#pragma once

// Whether the user has asked the system for a dark look. A system that doesn't
// tell counts as light. On Linux for the GUI thread: while the look is followed, it is
// what was told last, else this waits up to half a second for the desktop's answer.
// On Windows for any thread.
[[nodiscard]] bool isDarkModeEnabled();
