#pragma once

#include <QString>

#include "app/smc/selection_messages.h"

// The questions and messages of the transport's selection as modal boxes. Used
// on the GUI thread.
class SelectionBoxes final : public SMC::SelectionMessages {
public:
    BootCampAnswer askAboutBootCamp(const QString& title, const QString& text) override;
    void tellAboutBlockingSoftware(const QString& title, const QString& text) override;
};
