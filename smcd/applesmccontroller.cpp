#include "smcd/applesmccontroller.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fstream>
#include <system_error>
#include <utility>

#include "smcd/controlbits.h"
#include "smcd/writerules.h"

namespace smcd {

namespace {

constexpr const char* driverName = "applesmc";
constexpr int attempts = 3; // at a view of the table that others move, too

constexpr const char* countFile = "key_count";
constexpr const char* indexFile = "key_at_index";
constexpr const char* nameFile = "key_at_index_name";
constexpr const char* typeFile = "key_at_index_type";
constexpr const char* lengthFile = "key_at_index_data_length";
constexpr const char* valueFile = "key_at_index_data";

std::optional<std::uint32_t> numberIn(const std::string& text)
{
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

// A name as the driver prints it, with a line break.
std::optional<Key> nameIn(const std::string& text)
{
    Key key {};
    if (text.size() < key.size()) {
        return std::nullopt;
    }
    std::copy_n(text.begin(), key.size(), key.begin());
    return key;
}

bool isBefore(const Key& left, const Key& right)
{
    return std::lexicographical_compare(
        left.begin(), left.end(), right.begin(), right.end(), [](char one, char other) {
            return static_cast<unsigned char>(one) < static_cast<unsigned char>(other);
        });
}

// The driver counts fans from 1.
std::string fanFile(std::size_t fan, const char* what)
{
    return "fan" + std::to_string(fan + 1) + '_' + what;
}

bool hasKeyTable(const std::filesystem::path& folder)
{
    std::error_code error;
    return std::filesystem::exists(folder / countFile, error);
}

} // namespace

std::optional<std::filesystem::path>
AppleSmcController::findFolder(const std::filesystem::path& sysroot)
{
    const std::filesystem::path sys = sysroot.string() + "/sys";
    const std::filesystem::path usual = sys / "devices/platform/applesmc.768";
    if (hasKeyTable(usual)) {
        return usual;
    }
    std::error_code error;
    std::filesystem::directory_iterator monitors(sys / "class/hwmon", error);
    for (; !error && monitors != std::filesystem::directory_iterator(); monitors.increment(error)) {
        const std::filesystem::path monitor = monitors->path();
        for (const std::filesystem::path& folder : { monitor, monitor / "device" }) {
            std::string name;
            std::ifstream(folder / "name") >> name;
            if (name == driverName && hasKeyTable(folder)) {
                return folder;
            }
        }
    }
    return std::nullopt;
}

AppleSmcController::AppleSmcController(std::unique_ptr<AttributeFiles> files)
    : m_files(std::move(files))
{
}

std::uint32_t AppleSmcController::keyCount(std::uint32_t& count)
{
    std::string text;
    if (const std::uint32_t error = m_files->read(countFile, text); error != 0) {
        return error == ENOENT ? ENODEV : error; // the driver has been unloaded
    }
    const std::optional<std::uint32_t> number = numberIn(text);
    count = number.value_or(0);
    return number ? 0 : EIO;
}

std::uint32_t AppleSmcController::readAt(std::uint32_t index, const char* file,
                                         std::string& contents)
{
    const std::uint32_t error = m_files->write(indexFile, std::to_string(index) + '\n');
    if (error != 0) {
        return error == ENOENT ? ENODEV : error;
    }
    return m_files->read(file, contents);
}

std::uint32_t AppleSmcController::keyByIndex(std::uint32_t index, Key& key)
{
    std::uint32_t count = 0;
    if (const std::uint32_t error = keyCount(count); error != 0) {
        return error;
    }
    if (index >= count) {
        return ENOENT;
    }
    std::string text;
    if (const std::uint32_t error = readAt(index, nameFile, text); error != 0) {
        return error;
    }
    const std::optional<Key> name = nameIn(text);
    key = name.value_or(Key {});
    return name ? 0 : EIO;
}

std::uint32_t AppleSmcController::indexOf(const Key& key, std::uint32_t& index)
{
    if (const auto known = m_indexes.find(key); known != m_indexes.end()) {
        index = known->second;
        return 0;
    }
    std::uint32_t count = 0;
    if (const std::uint32_t error = keyCount(count); error != 0) {
        return error;
    }
    std::uint32_t first = 0;
    std::uint32_t last = count;
    while (first < last) {
        const std::uint32_t middle = first + (last - first) / 2;
        Key found {};
        if (const std::uint32_t error = keyByIndex(middle, found); error != 0) {
            return error;
        }
        if (found == key) {
            m_indexes.emplace(key, middle);
            index = middle;
            return 0;
        }
        if (isBefore(found, key)) {
            first = middle + 1;
        } else {
            last = middle;
        }
    }
    return ENOENT;
}

std::uint32_t AppleSmcController::readOf(const Key& key, const char* file, std::string& contents)
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        std::uint32_t index = 0;
        if (const std::uint32_t error = indexOf(key, index); error != 0) {
            return error;
        }
        if (const std::uint32_t error = readAt(index, file, contents); error != 0) {
            return error;
        }
        // Somebody else may have turned the view to another key meanwhile.
        std::string name;
        if (m_files->read(nameFile, name) == 0 && nameIn(name) == key) {
            return 0;
        }
        m_indexes.erase(key);
    }
    return EIO;
}

std::uint32_t AppleSmcController::keyInfo(const Key& key, KeyInfo& info)
{
    std::string length;
    std::string type;
    std::uint32_t error = readOf(key, lengthFile, length);
    if (error == ENOENT) {
        info = {};
        return 0;
    }
    if (error == 0) {
        error = readOf(key, typeFile, type);
    }
    if (error != 0) {
        return error;
    }
    const std::optional<std::uint32_t> number = numberIn(length);
    const std::optional<Key> name = nameIn(type);
    if (!number || !name || *number > protocol::longestValue) {
        return EIO;
    }
    info.length = static_cast<std::uint8_t>(*number);
    info.type = *name;
    info.attributes = 0;
    return 0;
}

std::uint32_t AppleSmcController::readKey(const Key& key, std::span<std::uint8_t> value)
{
    std::string contents;
    if (const std::uint32_t error = readOf(key, valueFile, contents); error != 0) {
        return error;
    }
    if (contents.size() != value.size()) {
        return EIO;
    }
    std::copy(contents.begin(), contents.end(), value.begin());
    return 0;
}

std::uint32_t AppleSmcController::writeKey(const Key& key, Bytes value)
{
    if (key == maskKey) {
        return value.size() == maskLength ? writeMask(value[1]) : std::uint32_t { EINVAL };
    }
    const auto fan = static_cast<std::size_t>(static_cast<unsigned char>(key[1]) - '0');
    if (fan >= mostFans || key[0] != 'F') {
        return EACCES;
    }
    if (key == fanKey(fan, 'M', 'd')) {
        return value.size() == 1 ? writeMode(fan, value[0] != 0) : std::uint32_t { EINVAL };
    }
    return key == fanKey(fan, 'T', 'g') ? writeTarget(fan, value) : std::uint32_t { EACCES };
}

std::uint32_t AppleSmcController::writeMask(std::uint8_t bits)
{
    for (std::size_t fan = 0; fan < maskFans; ++fan) {
        const std::uint32_t error = writeMode(fan, (bits >> fan & 1) != 0);
        // The bits beyond the fans are clear.
        if (error == ENOENT && fan > 0) {
            return bits >> fan == 0 ? 0 : error;
        }
        if (error != 0) {
            return error;
        }
    }
    return 0;
}

std::uint32_t AppleSmcController::writeMode(std::size_t fan, bool isManual)
{
    return m_files->write(fanFile(fan, "manual"), isManual ? "1\n" : "0\n");
}

std::uint32_t AppleSmcController::writeTarget(std::size_t fan, Bytes value)
{
    const std::optional<double> speed = speedOf(value);
    if (!speed || !std::isfinite(*speed) || *speed < 0.0 || *speed > 0xFFFF) {
        return EINVAL;
    }
    const auto rpm = static_cast<std::uint32_t>(*speed);
    return m_files->write(fanFile(fan, "output"), std::to_string(rpm) + '\n');
}

} // namespace smcd
