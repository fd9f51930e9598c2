#pragma once

#include <memory>

#include "app/ui/preferences/preferenceshost.h"
#include "core/widgets/qpreferencespage.h"

class QSettingsCache;

namespace Ui {
class PreferencesGeneral;
}

// The start at logon, checks for updates, and the language.
class QPreferencesGeneral : public QPreferencesPage {
    Q_OBJECT

public:
    QPreferencesGeneral(QWidget* parent, QSettingsCache& settings, const PreferencesHost& host);
    ~QPreferencesGeneral() override;

    [[nodiscard]] QString getTitle() const override;
    [[nodiscard]] QIcon getIcon() const override;
    void updateLayout() override;

private:
    void changeAutostart(bool enable);
    void changeLanguage();

    const std::unique_ptr<Ui::PreferencesGeneral> m_ui;
    QSettingsCache& m_settings;
    const PreferencesHost m_host;
};
