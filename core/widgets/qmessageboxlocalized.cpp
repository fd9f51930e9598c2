#include "core/widgets/qmessageboxlocalized.h"

#include <array>
#include <utility>

#include <QAbstractButton>
#include <QMap>

#include "core/language/languagestrings.h"
#include "core/widgets/windowicon.h"

namespace {

constexpr std::array<std::pair<QMessageBox::StandardButton, const char*>, 5> buttonKeys { {
    { QMessageBox::Ok, "core/QMessageBoxEx/buttonOK" },
    { QMessageBox::Cancel, "core/QMessageBoxEx/buttonCancel" },
    { QMessageBox::Close, "core/QMessageBoxEx/buttonClose" },
    { QMessageBox::Yes, "core/QMessageBoxEx/buttonYes" },
    { QMessageBox::No, "core/QMessageBoxEx/buttonNo" },
} };

// The texts of the buttons that have a translation.
QMap<QMessageBox::StandardButton, QString>& buttonTexts()
{
    static QMap<QMessageBox::StandardButton, QString> texts;
    return texts;
}

QMessageBox::StandardButton runBox(QMessageBox::Icon icon, QWidget* parent, const QString& title,
                                   const QString& text, QMessageBox::StandardButtons buttons,
                                   QMessageBox::StandardButton defaultButton)
{
    QMessageBoxLocalized box(parent);
    box.setIcon(icon);
    box.setWindowTitle(title);
    box.setText(text);
    box.setStandardButtons(buttons);
    box.setDefaultButton(defaultButton);
    box.setWindowIcon(windowIcon());
    box.exec();
    return box.standardButton(box.clickedButton());
}

} // namespace

QMessageBoxLocalized::QMessageBoxLocalized(QWidget* parent)
    : QMessageBox(parent)
{
    setAttribute(Qt::WA_QuitOnClose, false);
    for (const auto& [button, name] : buttonKeys) {
        const QString key = QLatin1String(name);
        const QString text = LanguageStrings::text(key);
        if (text != key) {
            buttonTexts().insert(button, text);
        }
    }
}

int QMessageBoxLocalized::exec()
{
    if (parentWidget() == nullptr) {
        setWindowIcon(::windowIcon());
    }
    if (buttons().isEmpty()) {
        // Else the box adds its own, too late for a translation.
        addButton(Ok);
    }
    for (auto entry = buttonTexts().cbegin(); entry != buttonTexts().cend(); ++entry) {
        if (auto* standard = button(entry.key())) {
            standard->setText(entry.value());
        }
    }
    return QMessageBox::exec();
}

QMessageBox::StandardButton QMessageBoxLocalized::critical(QWidget* parent, const QString& title,
                                                           const QString& text,
                                                           StandardButtons buttons,
                                                           StandardButton defaultButton)
{
    return runBox(Critical, parent, title, text, buttons, defaultButton);
}

QMessageBox::StandardButton QMessageBoxLocalized::warning(QWidget* parent, const QString& title,
                                                          const QString& text,
                                                          StandardButtons buttons,
                                                          StandardButton defaultButton)
{
    return runBox(Warning, parent, title, text, buttons, defaultButton);
}
