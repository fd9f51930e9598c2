#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QIcon>
#include <QString>

// A snapshot of the machine for a modal dialog, which so never touches the
// engine's live objects.
struct ModalDialogParameters {
    struct Sensor {
        QString name;
        QString key; // the persistent one
        QIcon icon;
        std::int32_t minTemperature = 0; // degrees Celsius, offered for a fan that
        std::int32_t maxTemperature = 0; // follows the sensor
    };
    struct Fan {
        QString name;
        QString id; // the fan's index, in decimal
        QIcon icon;
        std::uint16_t current = 0; // RPM; 65535 while unread
        std::uint16_t min = 0;
        std::uint16_t max = 0;
    };

    std::vector<Sensor> sensors; // in display order
    std::vector<Fan> fans; // by id
    std::function<QString()> techInfo; // the technical report; reads the controller
};

// Makes a new snapshot at each call.
using ModalDialogParametersFunction = std::function<ModalDialogParameters()>;
