#pragma once

#include <memory>

#include <QDialog>
#include <QString>
#include <QStringList>

#include "core/widgets/dialogext.h"

class QPushButton;

namespace Ui {
class SaveEditProfileDialog;
}

// Asks for the name of a preset: of a new one when the current name is empty, else
// for another name of the preset that has the current one. Under an existing name
// a new preset may be saved, but no preset may be renamed to it, whatever its case.
class QSaveEditProfileDialog : public Widgets::DialogExT<QDialog> {
    Q_OBJECT

public:
    // The existing names are those of all custom presets, the one with the current
    // name included.
    QSaveEditProfileDialog(QWidget* parent, const QStringList& existingNames,
                           const QString& currentName);
    ~QSaveEditProfileDialog() override;

    // The name without blanks around it, once exec() has ended with Accepted. A name
    // of nothing but blanks is empty here, which means the same as Cancel.
    [[nodiscard]] const QString& resultName() const { return m_resultName; }

protected Q_SLOTS:
    void accept() override;
    void textChanged(const QString& text);

private:
    [[nodiscard]] bool isRenaming() const { return !m_currentName.isEmpty(); }
    void setUpSaving();
    void setUpRenaming();
    void addButtons();

    QPushButton* const m_buttonOK; // in the form's button box, which owns it
    const std::unique_ptr<Ui::SaveEditProfileDialog> m_ui;
    const QStringList m_existingNames;
    QString m_resultName;
    const QString m_currentName;
};
