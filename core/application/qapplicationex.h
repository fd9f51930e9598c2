#pragma once

#include <memory>

#include <QApplication>
#include <QString>

#include "core/application/file_version.h"

class ApplicationLook;
class LanguageStrings;
class QSettingsCache;
class QSystemNotification;

// The base of an application of this kit: version, settings and language. Lives
// on the stack of main, used on the GUI thread; the settings and the language may
// be read from any thread.
class QApplicationEx : public QApplication {
    Q_OBJECT

public:
    // Attributes of the kit, set before the object exists. Their numbers lie
    // outside Qt's range and never reach Qt's own attribute word.
    enum KitAttribute {
        FollowDarkModeAtStart = 50,
        KeepFollowingDarkMode = 51,
    };
    static void setKitAttribute(KitAttribute attribute, bool on = true);
    [[nodiscard]] static bool testKitAttribute(KitAttribute attribute);

    QApplicationEx(int& argc, char** argv, const QString& applicationName);
    ~QApplicationEx() override;

    [[nodiscard]] const core::FileVersion& fileVersion() const { return *m_fileVersion; }
    // Null until initSettings has run.
    [[nodiscard]] QSettingsCache* settings() const { return m_settings.get(); }
    // Null until the default language is set.
    [[nodiscard]] LanguageStrings* language() const { return m_language.get(); }

protected:
    void setSettings(std::unique_ptr<QSettingsCache> settings);
    // English from the resource; translations lie in the folder "languages"
    // beside the executable.
    void setDefaultLanguage(const QString& resourcePath);
    // A language, as LanguageStrings::load takes it; windows are laid out in its
    // direction.
    void loadLanguage(const QString& name);

private:
    std::unique_ptr<core::FileVersion> m_fileVersion;
    std::unique_ptr<ApplicationLook> m_look; // null unless it follows the system's
    std::unique_ptr<QSystemNotification> m_notification; // null unless it keeps following
    std::unique_ptr<QSettingsCache> m_settings;
    std::unique_ptr<LanguageStrings> m_language;
};
