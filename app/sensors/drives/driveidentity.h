#pragma once

#include <cstdint>
#include <span>

#include <QString>

#include "app/sensors/sensortype.h"

// What a drive tells about itself.
struct DriveIdentity {
    QString model;
    QString serial;
    QString firmwareRevision;
    bool isSolidState = false;
    // Whether the drive says that its self-monitoring is there and on. A drive that
    // doesn't say so may have it all the same.
    bool isSmartEnabled = false;

    // Of the 512 bytes that an ATA drive answers to IDENTIFY DEVICE. Takes any
    // bytes: what is missing reads as 0. Never without a model when there is a
    // serial number.
    [[nodiscard]] static DriveIdentity parse(std::span<const std::uint8_t> identifyData);

    // The persistent identifier: the same at every port, different for two drives
    // of one model.
    [[nodiscard]] QString key() const;
    // Of an ATA drive.
    [[nodiscard]] SensorType type() const;
};
