#include "app/ui/presets/qsaveeditprofiledialog.h"

#include <QPushButton>

#include "app/ui/texts.h"
#include "core/widgets/windowicon.h"
#include "ui_qsaveeditprofiledialog.h"

QSaveEditProfileDialog::QSaveEditProfileDialog(QWidget* parent, const QStringList& existingNames,
                                               const QString& currentName)
    : Widgets::DialogExT<QDialog>(parent, Qt::Sheet)
    , m_buttonOK(new QPushButton(this))
    , m_ui(std::make_unique<Ui::SaveEditProfileDialog>())
    , m_existingNames(existingNames)
    , m_currentName(currentName)
{
    m_ui->setupUi(this);
    addButtons();
    setWindowIcon(::windowIcon());
    setWindowTitle(uiText(isRenaming() ? "Presets/editPresetTitle" : "Presets/savePresetTitle"));
    m_ui->labelTitle->setText(windowTitle());
    m_ui->labelProfileName->setText(uiText("Presets/labelPresetName"));
    if (isRenaming()) {
        setUpRenaming();
    } else {
        setUpSaving();
    }
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    adjustSize();
}

QSaveEditProfileDialog::~QSaveEditProfileDialog() = default;

void QSaveEditProfileDialog::addButtons()
{
    m_buttonOK->setText(uiText("Common/buttonOK"));
    m_buttonOK->setObjectName(QStringLiteral("buttonOK"));
    m_buttonOK->setAutoDefault(true);
    auto* const buttonCancel = new QPushButton(uiText("Common/buttonCancel"), this);
    buttonCancel->setObjectName(QStringLiteral("buttonCancel"));
    m_ui->buttonBox->addButton(m_buttonOK, QDialogButtonBox::AcceptRole);
    m_ui->buttonBox->addButton(buttonCancel, QDialogButtonBox::RejectRole);
    connect(m_buttonOK, &QPushButton::clicked, this, &QSaveEditProfileDialog::accept);
    connect(buttonCancel, &QPushButton::clicked, this, &QSaveEditProfileDialog::reject);
}

void QSaveEditProfileDialog::setUpSaving()
{
    auto* const combo = m_ui->comboName;
    m_ui->editName->hide();
    m_ui->labelProfileName->setBuddy(combo);
    // A completed name would overwrite a preset that the user didn't name.
    combo->setCompleter(nullptr);
    combo->addItems(m_existingNames);
    combo->setCurrentIndex(-1);
    connect(combo, &QComboBox::currentTextChanged, this, &QSaveEditProfileDialog::textChanged);
    textChanged(combo->currentText());
}

void QSaveEditProfileDialog::setUpRenaming()
{
    auto* const edit = m_ui->editName;
    m_ui->comboName->hide();
    edit->setMinimumWidth(m_ui->comboName->sizeHint().width());
    m_ui->labelProfileName->setBuddy(edit);
    edit->setText(m_currentName);
    edit->selectAll();
    connect(edit, &QLineEdit::textChanged, this, &QSaveEditProfileDialog::textChanged);
    textChanged(edit->text());
}

void QSaveEditProfileDialog::accept()
{
    m_resultName
        = (isRenaming() ? m_ui->editName->text() : m_ui->comboName->currentText()).trimmed();
    Widgets::DialogExT<QDialog>::accept();
}

void QSaveEditProfileDialog::textChanged(const QString& text)
{
    // The current name in the same case is one of the existing names in most cases,
    // but doesn't have to be.
    const bool refused = text.isEmpty()
        || (isRenaming()
            && (text == m_currentName || m_existingNames.contains(text, Qt::CaseInsensitive)));
    m_buttonOK->setEnabled(!refused);
}
