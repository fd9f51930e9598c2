#pragma once

#include <memory>

#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/preferences/qpreferencesdialog.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qpreferencespage.h"
#include "tests/support/interfacetexts.h"

// The preferences on an application that is all here.
class PreferencesBench {
public:
    PreferencesBench()
    {
        settings.removeStorage();
        host.isAutostart = [this] { return autostart; };
        host.setAutostart = [this](bool on) { autostart = on && !refuses; };
        host.language = [this]() -> const LanguageStrings& { return texts.strings(); };
        host.loadLanguage = [this](const QString& name) { texts.load(name); };
        host.openTranslationPage = [this] { ++translationPages; };
    }
    PreferencesBench(const PreferencesBench&) = delete;
    PreferencesBench& operator=(const PreferencesBench&) = delete;

    QPreferencesDialog& make()
    {
        dialog = std::make_unique<QPreferencesDialog>(
            nullptr, settings, host, [this] { return parameters; }, lastPage);
        return *dialog;
    }

    template <typename Widget> [[nodiscard]] Widget* find(const char* name) const
    {
        return dialog->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] QToolButton* button(int page) const
    {
        auto* const bar = dialog->findChild<QToolBar*>();
        return qobject_cast<QToolButton*>(bar->widgetForAction(bar->actions().value(page)));
    }
    [[nodiscard]] QPreferencesPage* visiblePage() const
    {
        const auto pages = dialog->findChildren<QPreferencesPage*>();
        QPreferencesPage* visible = nullptr;
        for (auto* const page : pages) {
            visible = page->isHidden() ? visible : page;
        }
        return visible;
    }

    InterfaceTexts texts;
    QSettingsCache settings { QStringLiteral("Orvane Software"), QStringLiteral("Brisora") };
    PreferencesHost host;
    ModalDialogParameters parameters;
    int lastPage = 0;
    bool autostart = false;
    bool refuses = false;
    int translationPages = 0;
    std::unique_ptr<QPreferencesDialog> dialog;
};

inline ModalDialogParameters::Sensor sensor(const char* name, const char* key)
{
    return { QLatin1String(name), QLatin1String(key), QIcon(), 40, 80 };
}
