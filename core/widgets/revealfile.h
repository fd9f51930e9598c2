#pragma once

#include <QString>

// Shows a file in the system's file manager. For a file that isn't there, and on a
// system whose file manager can't show a single one, the folder is opened, the
// former with fallback only. GUI thread.
void revealFile(const QString& path, bool fallback);

// The system's half of it: false when the file manager can't be asked.
[[nodiscard]] bool showInFileManager(const QString& path);
