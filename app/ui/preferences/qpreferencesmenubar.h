#pragma once

#include <memory>

#include "app/ui/modaldialogparameters.h"
#include "core/widgets/qpreferencespage.h"

class QSettingsCache;

namespace Ui {
class PreferencesMenuBar;
}

// What the tray icon shows: the choice of a sensor. The other choices of the form
// have no effect on these systems' trays and stay hidden.
class QPreferencesMenubar : public QPreferencesPage {
    Q_OBJECT

public:
    QPreferencesMenubar(QWidget* parent, QSettingsCache& settings,
                        ModalDialogParametersFunction parameters);
    ~QPreferencesMenubar() override;

    [[nodiscard]] QString getTitle() const override;
    [[nodiscard]] QIcon getIcon() const override;
    // Takes fresh sensors as well.
    void updateLayout() override;

private:
    void fillSensors();
    void changeSensor(int index);

    const std::unique_ptr<Ui::PreferencesMenuBar> m_ui;
    QSettingsCache& m_settings;
    const ModalDialogParametersFunction m_makeParameters;
    ModalDialogParameters m_parameters;
};
