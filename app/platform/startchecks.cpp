#include "app/platform/startchecks.h"

#include <QCheckBox>

#include "app/platform/platformhost.h"
#include "app/settingskeys.h"
#include "app/smc/options.h"
#include "app/sysinfo/machine_identity.h"
#include "app/sysinfo/sysinfo.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qmessageboxlocalized.h"
#include "core/widgets/windowicon.h"

namespace StartChecks {

bool isMachineAccepted(const PlatformHost& host, const ShowWarning& showWarning)
{
    if (isVirtualMachine(host.identity, host.systemInfo)) {
        warnOfVirtualMachine(host.settings);
        return false;
    }
    if (host.systemInfo.machineName().isEmpty()
        && !host.arguments.contains(QLatin1String("/skipcheck"))) {
        showWarning(host.productTitle,
                    QStringLiteral("Unsupported hardware detected. The program is able to run on "
                                   "Apple hardware only."));
        return false;
    }
    return true;
}

bool isVirtualMachine(MachineIdentity& identity, const SystemInfo& systemInfo)
{
    const QString manufacturer = identity.systemManufacturer();
    return manufacturer.contains(QLatin1String("Parallels"))
        || manufacturer.contains(QLatin1String("VMware"))
        || systemInfo.machineName().contains(QLatin1String("VMware"));
}

void warnOfVirtualMachine(QSettingsCache& settings)
{
    if (settings.getInt(SettingsKeys::noVmWarning, -1) == 1) {
        return;
    }
    QMessageBoxLocalized box;
    box.setIcon(QMessageBox::Warning);
    box.setStandardButtons(QMessageBox::Ok);
    box.setText(QStringLiteral("<b>Virtual machine detected</b>"));
    box.setInformativeText(QStringLiteral("Unable to start Brisora in a virtual machine."));
    box.setWindowIcon(windowIcon());
    auto* hideBox = new QCheckBox(QStringLiteral("Don't display this warning again"), &box);
    QObject::connect(hideBox, &QCheckBox::toggled, &box, [&settings](bool checked) {
        if (checked) {
            settings.setInt(SettingsKeys::noVmWarning, 1);
        }
    });
    box.setCheckBox(hideBox);
    box.exec();
}

void applyCommandLineOptions(const QStringList& arguments, bool startMinimized)
{
    if (startMinimized) {
        SMC::Options::set(SMC::Option::ExtraDelay, "2000");
    }
    if (arguments.contains(QLatin1String("/inpout32"))) {
        SMC::Options::set(SMC::Option::ForceInpOut32);
    }
}

void applyDriverOptions(const SystemInfo& systemInfo)
{
    SMC::Options::set(SMC::Option::UseMMIO);
    if (needsAlternativeDriver(systemInfo)) {
        SMC::Options::set(SMC::Option::NonPnpDriver);
    }
}

bool needsAlternativeDriver(const SystemInfo& systemInfo)
{
    return (systemInfo.family() == ModelFamily::iMacPro && systemInfo.modelNumber() == 11)
        || (systemInfo.family() == ModelFamily::MacPro && systemInfo.modelNumber() == 71);
}

} // namespace StartChecks
