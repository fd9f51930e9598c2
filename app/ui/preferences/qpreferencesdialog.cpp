#include "app/ui/preferences/qpreferencesdialog.h"

#include "app/ui/preferences/qpreferencesgeneral.h"
#include "app/ui/preferences/qpreferencesmenubar.h"
#include "app/ui/preferences/qpreferencessensors.h"
#include "app/ui/texts.h"
#include "core/widgets/windowicon.h"

QPreferencesDialog::QPreferencesDialog(QWidget* parent, QSettingsCache& settings,
                                       const PreferencesHost& host,
                                       const ModalDialogParametersFunction& parameters,
                                       int& lastPage)
    : DialogExT(parent)
{
    setWindowIcon(::windowIcon());
    // All pages before the first button: Tab goes through a page and then the bar.
    auto* const general = new QPreferencesGeneral(this, settings, host);
    auto* const sensors = new QPreferencesSensors(this, settings, host.isEGpuCapable);
    auto* const menubar = new QPreferencesMenubar(this, settings, parameters);
    for (QPreferencesPage* const page :
         std::initializer_list<QPreferencesPage*> { general, sensors, menubar }) {
        addPage(page, true);
    }
    setBaseTitle(uiText("PreferencesWindow/title"));
    connect(sensors, &QPreferencesSensors::sensorsReloadRequired, this,
            &QPreferencesDialog::sensorsReloadRequired);
    connect(this, &QPreferencesDialog::currentPageChanged, this,
            [last = &lastPage](int page) { *last = page; });
    setCurrentPage(lastPage, false);
}

void QPreferencesDialog::layoutChanged()
{
    setBaseTitle(uiText("PreferencesWindow/title"));
    DialogExT::layoutChanged();
}
