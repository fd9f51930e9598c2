#pragma once

// How often this program has called malloc so far, in all of its threads. Linking
// this replaces malloc, which the sanitizers want for themselves.
[[nodiscard]] long allocationCount();
