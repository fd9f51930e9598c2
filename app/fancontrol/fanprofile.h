#pragma once

#include <cstdint>

#include <QMetaType>
#include <QString>
#include <QVector>

#include "app/fancontrol/fancontrolmode.h"

// A preset: a name and one control mode per fan. A value class; copies share
// their modes until one is changed. Copies are made as assign() makes them, so
// that the copy of a predefined preset is a valid preset of its own.
class FanProfile {
public:
    FanProfile() = default;
    // A "|" in the name becomes a "-".
    FanProfile(const QVector<FanControlMode>& modes, const QString& name);
    FanProfile(const FanProfile& other);
    FanProfile& operator=(const FanProfile& other);
    virtual ~FanProfile() = default;

    [[nodiscard]] virtual QString name() const;
    // As in the constructor, a "|" becomes a "-".
    void setName(const QString& name);

    // Copies modes and name; an empty name becomes "UNSAVED".
    void assign(const FanProfile& other);

    // As many modes as the machine has fans, none invalid, and a name.
    [[nodiscard]] bool isValid() const;
    // Names play no part.
    [[nodiscard]] bool hasSameModes(const FanProfile& other) const;

    [[nodiscard]] int modeCount() const { return m_modes.size(); }
    // An invalid mode for a fan that the preset doesn't know.
    [[nodiscard]] FanControlMode mode(std::uint8_t fan) const;
    // Without effect for a fan that the preset doesn't know.
    void setMode(std::uint8_t fan, const FanControlMode& mode);

    // The stored form: base64 of "name|mode|mode|...". fromString gives an empty
    // preset for a text that can't be read.
    [[nodiscard]] QString toString() const;
    [[nodiscard]] static FanProfile fromString(const QString& text);

    // The number of fans that a valid preset has modes for; process-wide, set
    // when the predefined presets are made.
    [[nodiscard]] static std::uint8_t fanCount();
    static void setFanCount(std::uint8_t count);

private:
    QString m_name;
    QVector<FanControlMode> m_modes;
};

// A preset of the program's own, named in the interface's language.
class FanProfilePredefined : public FanProfile {
public:
    static constexpr std::uint8_t automaticId = 0;
    static constexpr std::uint8_t fullBlastId = 1;

    FanProfilePredefined(const QVector<FanControlMode>& modes, std::uint8_t id);

    [[nodiscard]] QString name() const override;
    [[nodiscard]] std::uint8_t id() const { return m_id; }

private:
    std::uint8_t m_id = static_cast<std::uint8_t>(-1);
};

Q_DECLARE_METATYPE(FanProfile)
