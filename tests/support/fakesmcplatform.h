#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "app/smc/platform.h"

// A controller in memory behind the transport interface. Keys are sorted as a
// real table is. Writes land in the table and in the record; results follow
// invertedWrites. Thread-safe, so that engine tests may look while tasks run.
class FakeSmcPlatform final : public SMC::Platform {
public:
    struct Key {
        std::string type;
        std::vector<std::uint8_t> value;
    };
    struct Write {
        std::string key;
        std::vector<std::uint8_t> value;
        bool operator==(const Write&) const = default;
    };

    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, SMC::KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;

    // The table. "#KEY" follows by itself unless it was set.
    void setKey(const std::string& name, const std::string& type, std::vector<std::uint8_t> value);
    void removeKey(const std::string& name);
    [[nodiscard]] std::vector<std::uint8_t> keyValue(const std::string& name) const;

    // Forms of the values that the program knows.
    void setFanSpeed(const std::string& name, std::uint16_t rpm); // fpe2
    void setTemperature(const std::string& name, double celsius); // sp78
    // A fan with speeds, identifier and, unless forcedMask is false, "FS! ".
    void addFan(int index, const std::string& fanName, std::uint16_t current, std::uint16_t min,
                std::uint16_t max);

    // Behaviour.
    void setOpens(bool opens);
    void setInvertedWrites(bool inverted);
    void setFailing(const std::string& name, bool failing); // read, write and info fail
    void loseWrites(int count); // the next ones look well and change nothing
    void setMute(bool mute); // everything fails

    // Record, since the start or the last clear. reads() has one entry per read.
    [[nodiscard]] std::vector<Write> writes() const;
    [[nodiscard]] std::vector<Write> writesOf(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> reads() const;
    [[nodiscard]] int infoCount(const std::string& name) const;
    [[nodiscard]] int indexCount() const;
    [[nodiscard]] bool isOpen() const;
    void clearRecord();

private:
    [[nodiscard]] std::vector<std::uint8_t> keyCountValue() const;

    mutable std::mutex m_mutex;
    std::map<std::string, Key> m_keys;
    std::set<std::string> m_failing;
    bool m_opens = true;
    bool m_open = false;
    bool m_invertedWrites = false;
    bool m_mute = false;
    int m_lostWrites = 0;
    std::vector<Write> m_writes;
    std::vector<std::string> m_reads;
    std::map<std::string, int> m_infos;
    int m_indexCount = 0;
};
