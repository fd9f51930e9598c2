#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QByteArray>

#include "app/fancontrol/fanprofile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The bytes are what stands behind the base64 of a stored preset for two fans.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FanProfile::setFanCount(2);
    FanControlMode::setSensorNameFunction(
        [](const QString& key) { return key.startsWith(QLatin1Char('T')) ? key : QString(); });

    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    static_cast<void>(FanProfile::fromString(QString::fromLatin1(bytes)));
    const FanProfile profile = FanProfile::fromString(QString::fromLatin1(bytes.toBase64()));
    if (profile.modeCount() == 0) {
        return 0;
    }
    // What can be read once can be read again, and means the same.
    const FanProfile again = FanProfile::fromString(profile.toString());
    if (!profile.isValid() || !again.isValid() || !again.hasSameModes(profile)
        || again.name() != profile.name()) {
        std::abort();
    }
    return 0;
}
