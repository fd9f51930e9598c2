#pragma once

#include <QString>

namespace SMC {

// What the choice of a transport asks and tells the user. Texts are markup with
// links that open in the browser; titles are plain. Called on the thread that
// opens the transport, and returns when the user has answered.
class SelectionMessages {
public:
    enum class BootCampAnswer {
        Help, // use the ports instead of the old driver
        Ignore, // go on with the old driver
        Abort, // end the program; also for a closed box
    };

    SelectionMessages() = default;
    SelectionMessages(const SelectionMessages&) = delete;
    SelectionMessages& operator=(const SelectionMessages&) = delete;
    virtual ~SelectionMessages() = default;

    // A warning with the buttons Help, Ignore and Abort.
    [[nodiscard]] virtual BootCampAnswer askAboutBootCamp(const QString& title, const QString& text)
        = 0;
    // A message with the button OK.
    virtual void tellAboutBlockingSoftware(const QString& title, const QString& text) = 0;
};

} // namespace SMC
