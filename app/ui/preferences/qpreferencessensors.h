#pragma once

#include <memory>

#include "core/widgets/qpreferencespage.h"

class QCheckBox;
class QLatin1String;
class QSettingsCache;

namespace Ui {
class PreferencesSensors;
}

// Which sensors are read, and how temperatures are shown.
class QPreferencesSensors : public QPreferencesPage {
    Q_OBJECT

public:
    QPreferencesSensors(QWidget* parent, QSettingsCache& settings, bool isEGpuCapable);
    ~QPreferencesSensors() override;

    [[nodiscard]] QString getTitle() const override;
    [[nodiscard]] QIcon getIcon() const override;
    void updateLayout() override;

Q_SIGNALS:
    // Other sensors are to be read from now on.
    void sensorsReloadRequired();

private:
    void connectBox(QCheckBox* box, QLatin1String key, void (QPreferencesSensors::*signal)());

    const std::unique_ptr<Ui::PreferencesSensors> m_ui;
    QSettingsCache& m_settings;
};
