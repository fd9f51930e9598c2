#pragma once

// Keeps the system from looking for libraries in the folder in which the program
// happens to be started. Called before any library is loaded by its name.
void leaveOutCurrentFolder();
