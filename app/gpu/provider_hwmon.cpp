#include "app/gpu/provider_hwmon.h"

#include <array>

#include <QDir>
#include <QFile>

#include "app/gpu/drmfiles.h"
#include "app/sysinfo/machinefiles.h"
#include "app/sysinfo/pciids.h"
#include "core/log/log.h"
#include "core/system/hwmontemperature.h"
#include "core/system/kernelfile.h"
#include "core/system_path.h"

namespace GPU {

namespace {

constexpr qint64 longestAttribute = 64; // bytes

QByteArray readAttribute(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(longestAttribute) : QByteArray();
}

// Of the device's first sensor chip with a temperature; empty when there is none.
QString temperatureFile(const QDir& device)
{
    const QDir chips(device.filePath(QStringLiteral("hwmon")));
    const QStringList names = chips.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& name : names) {
        const QString path = chips.filePath(name + QStringLiteral("/temp1_input"));
        if (QFile::exists(path)) {
            return path;
        }
    }
    return QString();
}

} // namespace

ProviderHwmon::ProviderHwmon(const QStringList& pciIdPaths, QObject* parent)
    : Provider(parent)
    , m_pciIdPaths(pciIdPaths)
{
}

void ProviderHwmon::clear()
{
    Provider::clear();
    m_chips.clear();
}

bool ProviderHwmon::discoverGPUs()
{
    const QDir graphics(core::systemPath(QStringLiteral("/sys/class/drm")));
    const QStringList cards = DrmFiles::cards(graphics.entryList(QDir::Dirs));
    for (const QString& card : cards) {
        const QDir device(graphics.filePath(card + QStringLiteral("/device")));
        const QByteArray vendor = readAttribute(device.filePath(QStringLiteral("vendor")));
        const QString file = temperatureFile(device);
        if (!DrmFiles::isAmd(vendor) || file.isEmpty()) {
            continue;
        }
        const QString name = MachineFiles::pciDeviceName(
            vendor, readAttribute(device.filePath(QStringLiteral("device"))),
            PciIds::read(m_pciIdPaths));
        LOG_INFO("{}: {}, {}", card, core::log::singleLine(name), core::log::singleLine(file));
        m_chips.push_back(std::make_unique<Chip>(
            Chip { QFile::encodeName(file),
                   QFile::encodeName(device.filePath(QStringLiteral("power/runtime_status"))) }));
        addGpu(name, m_chips.back().get());
    }
    return getCount() > 0;
}

double ProviderHwmon::getTemperature(const Info* gpu)
{
    if (gpu == nullptr) {
        return 0.0;
    }
    Chip& chip = *static_cast<Chip*>(gpu->handle);
    std::array<char, 32> buffer {};
    if (!isRuntimeSuspended(readKernelFile(chip.runtimeStatusFile, buffer))) {
        chip.celsius = hwmonTemperature(readKernelFile(chip.temperatureFile, buffer)).value_or(0.0);
    }
    return chip.celsius;
}

} // namespace GPU
