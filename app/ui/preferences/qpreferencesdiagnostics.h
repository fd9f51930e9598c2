#pragma once

#include <functional>
#include <memory>

#include "core/widgets/qpreferencespage.h"

class QSettingsCache;

namespace Ui {
class PreferencesDiagnostics;
}

// The log and the technical report. No dialog of this version shows it: the tray's
// menu copies the report.
class QPreferencesDiagnostics : public QPreferencesPage {
    Q_OBJECT

public:
    QPreferencesDiagnostics(QWidget* parent, QSettingsCache& settings, const QString& logFile,
                            std::function<QString()> techInfo);
    ~QPreferencesDiagnostics() override;

    [[nodiscard]] QString getTitle() const override;
    [[nodiscard]] QIcon getIcon() const override { return {}; }
    void updateLayout() override;

private:
    const std::unique_ptr<Ui::PreferencesDiagnostics> m_ui;
};
