#pragma once

#include <memory>

#include <QLabel>
#include <QTemporaryDir>

#include "app/settingskeys.h"
#include "app/ui/preferences/qpreferencesdiagnostics.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/interfacetexts.h"

// The page of the diagnostics.
class DiagnosticsBench {
public:
    DiagnosticsBench() { settings.removeStorage(); }

    QPreferencesDiagnostics& make()
    {
        page = std::make_unique<QPreferencesDiagnostics>(
            nullptr, settings, logFile, [] { return QStringLiteral("the report"); });
        page->updateLayout();
        return *page;
    }
    template <typename Widget> [[nodiscard]] Widget* find(const char* name) const
    {
        return page->findChild<Widget*>(QLatin1String(name));
    }

    InterfaceTexts texts;
    QTemporaryDir folder;
    QString logFile = folder.filePath(QStringLiteral("Brisora.log"));
    QSettingsCache settings { QStringLiteral("Orvane Software"), QStringLiteral("Brisora") };
    std::unique_ptr<QPreferencesDiagnostics> page;
};
