#include "app/selectionboxes.h"

#include "core/widgets/qmessageboxlocalized.h"

SelectionBoxes::BootCampAnswer SelectionBoxes::askAboutBootCamp(const QString& title,
                                                                const QString& text)
{
    const auto button = QMessageBoxLocalized::warning(
        nullptr, title, text, QMessageBox::Help | QMessageBox::Ignore | QMessageBox::Abort,
        QMessageBox::Help);
    switch (button) {
    case QMessageBox::Help:
        return BootCampAnswer::Help;
    case QMessageBox::Ignore:
        return BootCampAnswer::Ignore;
    default:
        return BootCampAnswer::Abort;
    }
}

void SelectionBoxes::tellAboutBlockingSoftware(const QString& title, const QString& text)
{
    QMessageBoxLocalized::warning(nullptr, title, text);
}
