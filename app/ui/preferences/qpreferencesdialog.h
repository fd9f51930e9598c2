#pragma once

#include "app/ui/modaldialogparameters.h"
#include "app/ui/preferences/preferenceshost.h"
#include "core/widgets/dialogext.h"
#include "core/widgets/qcocoapreferencesdialog.h"

class QSettingsCache;

// The preferences. There is no OK: each control takes effect at once.
class QPreferencesDialog : public Widgets::DialogExT<QCocoaPreferencesDialog> {
    Q_OBJECT

public:
    // Opens on the page with the given number, which then follows the user's choice.
    // The settings and the number must outlive the dialog.
    QPreferencesDialog(QWidget* parent, QSettingsCache& settings, const PreferencesHost& host,
                       const ModalDialogParametersFunction& parameters, int& lastPage);

Q_SIGNALS:
    void sensorsReloadRequired();

protected Q_SLOTS:
    void layoutChanged() override;
};
