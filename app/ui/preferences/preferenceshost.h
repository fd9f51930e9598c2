#pragma once

#include <functional>

#include <QString>

class LanguageStrings;

// What the preferences ask of the application around them. Called on the GUI
// thread.
struct PreferencesHost {
    std::function<bool()> isAutostart;
    std::function<void(bool)> setAutostart;

    // The language in use, and a change of it by a file's base name.
    std::function<const LanguageStrings&()> language;
    std::function<void(const QString& name)> loadLanguage;

    // Automatic checks for updates; empty functions where there are none.
    std::function<bool()> isUpdateCheckOn;
    std::function<void(bool)> setUpdateCheckOn;

    // The page where people translate the texts; without one there is no link.
    std::function<void()> openTranslationPage;

    bool isEGpuCapable = false; // the machine can have an external GPU
};
