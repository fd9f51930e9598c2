#include "app/ui/dialogs/qchangecontrolmodedialog.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <memory>
#include <utility>

#include <QLayout>
#include <QPushButton>
#include <QStyle>

#include "app/fancontrol/fanspeeds.h"
#include "app/ui/dialogs/fixedsize.h"
#include "app/ui/dialogs/lastappliedmodes.h"
#include "app/ui/texts.h"
#include "core/widgets/qwidgethider.h"
#include "core/widgets/widgethelpers.h"
#include "ui_qchangecontrolmodedialog.h"

namespace {

// The least distance from the start to the maximum temperature.
constexpr int leastSpanCelsius = 8;
constexpr int leastSpanFahrenheit = 14;
constexpr int widestPresetName = 320; // pixels

FanControlMode openingMode(const FanControlMode& mode, const FanControlMode& lastApplied)
{
    return mode == FanControlMode::automatic() && lastApplied.type() != FanControlInvalid
        ? lastApplied
        : mode;
}

int boundedInt(std::uint32_t value)
{
    return static_cast<int>(
        std::min<std::uint32_t>(value, std::numeric_limits<std::int32_t>::max()));
}

// Without an own width a spin box would change with its range.
void fixWidth(QSpinBox* spin, int longestValue)
{
    spin->setRange(0, longestValue);
    spin->setFixedWidth(spin->sizeHint().width());
}

// An unread limit is no speed to offer; the range then is what is known.
std::pair<int, int> speedRange(const ModalDialogParameters::Fan& fan)
{
    const bool hasMin = fan.min != FanSpeeds::unread;
    const bool hasMax = fan.max != FanSpeeds::unread;
    if (hasMin && hasMax) {
        return { fan.min, fan.max };
    }
    int known = fan.current != FanSpeeds::unread ? fan.current : 0;
    if (hasMin || hasMax) {
        known = hasMin ? fan.min : fan.max;
    }
    return { known, known };
}

// Nothing reaches what can't be seen, the mouse wheel included.
void setShown(std::initializer_list<QWidget*> widgets, bool shown)
{
    for (QWidget* const widget : widgets) {
        setWidgetVisible(widget, shown);
        widget->setEnabled(shown);
    }
}

} // namespace

QChangeControlModeDialog::QChangeControlModeDialog(QWidget* parent, std::uint32_t fanId,
                                                   const ModalDialogParametersFunction& parameters,
                                                   const FanControlMode& mode,
                                                   const QString& presetName,
                                                   QSettingsCache& settings,
                                                   LastAppliedModes& lastAppliedModes)
    : DialogExT(parent, Qt::Sheet)
    , m_fanId(fanId)
    , m_mode(openingMode(mode, lastAppliedModes.mode(fanId)))
    , m_parameters(parameters())
    , m_presetName(presetName)
    , m_ui(std::make_unique<Ui::ChangeControlModeDialog>())
    , m_scale(settings)
    , m_lastAppliedModes(lastAppliedModes)
{
    m_ui->setupUi(this);
    const ModalDialogParameters::Fan& fan = m_parameters.fans.at(m_fanId);
    initSpeeds(fan);
    initSensors();
    initButtons();
    translate();
    alignControls();
    connectControls();
    OnFanControlChanged(false);
    showLimitsError(fan);

    m_ui->labelTitle->hide();
    setWindowTitle(uiText("FanControlDialog/title").arg(fan.name));
    setWindowIcon(fan.icon);
    fixSize(this);
}

QChangeControlModeDialog::~QChangeControlModeDialog() = default;

void QChangeControlModeDialog::initSpeeds(const ModalDialogParameters::Fan& fan)
{
    fixWidth(m_ui->spinConstant, 99999);
    const auto [lowest, highest] = speedRange(fan);
    m_ui->spinConstant->setRange(lowest, highest);
    m_ui->sliderRPM->setRange(lowest, highest);
    m_ui->sliderRPM->setPageStep(std::max((highest - lowest) / 10, 1));

    m_ui->radioConstant->setChecked(m_mode.type() == FanControlConstant || m_mode.isAutomatic());
    const int rpm
        = m_mode.type() == FanControlConstant ? boundedInt(m_mode.rpm()) : int { fan.current };
    m_ui->spinConstant->setValue(rpm);
    m_ui->sliderRPM->setValue(rpm);
}

void QChangeControlModeDialog::initSensors()
{
    for (QLabel* const unit : { m_ui->labelDegree1, m_ui->labelDegree2 }) {
        unit->setText(m_scale.temperatureUnit());
    }
    for (const auto& sensor : m_parameters.sensors) {
        m_ui->comboSensor->addItem(sensor.icon, sensor.name, sensor.key);
    }
    for (QSpinBox* const spin : { m_ui->spinIncrease, m_ui->spinMax }) {
        fixWidth(spin, 999);
        spin->setRange(m_scale.isFahrenheit() ? 68 : 20, m_scale.isFahrenheit() ? 212 : 100);
    }
    if (m_mode.type() != FanControlSensor) {
        return;
    }
    m_ui->radioSensor->setChecked(true);
    const int index = m_mode.sensorKey().isEmpty()
        ? -1
        : m_ui->comboSensor->findData(m_mode.sensorKey(), Qt::UserRole,
                                      Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index >= 0) {
        m_ui->comboSensor->setCurrentIndex(index);
        m_ui->spinIncrease->setValue(m_scale.toDisplayScale(m_mode.tempLow()));
        m_ui->spinMax->setValue(m_scale.toDisplayScale(m_mode.tempHigh()));
    }
}

void QChangeControlModeDialog::initButtons()
{
    auto* const cancel = new QPushButton(uiText("Common/buttonCancel"), this);
    cancel->setObjectName(QStringLiteral("buttonCancel"));
    m_buttonOK = new QPushButton(uiText("Common/buttonOK"), this);
    m_buttonOK->setObjectName(QStringLiteral("buttonOK"));
    m_buttonOK->setAutoDefault(true);
    m_ui->buttonBox->addButton(cancel, QDialogButtonBox::RejectRole);
    m_ui->buttonBox->addButton(m_buttonOK, QDialogButtonBox::AcceptRole);
    followButtonOrder(*m_ui->buttonBox);
    connect(m_buttonOK, &QPushButton::clicked, this, &QChangeControlModeDialog::OnApply);
    connect(cancel, &QPushButton::clicked, this, &QChangeControlModeDialog::OnCancel);
}

void QChangeControlModeDialog::translate()
{
    m_ui->radioConstant->setText(uiText("FanControlDialog/radioConstant"));
    m_ui->radioSensor->setText(uiText("FanControlDialog/radioSensor"));
    m_ui->labelIncrease->setText(uiText("FanControlDialog/staticIncrease"));
    m_ui->labelMax->setText(uiText("FanControlDialog/staticMax"));
    for (QWidget* const control :
         { static_cast<QWidget*>(m_ui->sliderRPM), static_cast<QWidget*>(m_ui->spinConstant) }) {
        control->setAccessibleName(m_ui->radioConstant->text());
    }
    m_ui->comboSensor->setAccessibleName(m_ui->radioSensor->text());

    if (m_presetName.isEmpty()) {
        m_ui->checkSaveProfile->hide();
        return;
    }
    auto* const check = m_ui->checkSaveProfile;
    const QString text = uiText("FanControlDialog/saveToCurrentPreset");
    // A check box is as wide as its text, and the dialog must fit on the screen.
    const QString shown
        = check->fontMetrics().elidedText(m_presetName, Qt::ElideMiddle, scaled(widestPresetName));
    if (shown != m_presetName) {
        check->setToolTip(QStringLiteral("<p>%1</p>").arg(m_presetName.toHtmlEscaped()));
    }
    check->setAccessibleName(text.arg(m_presetName));
    // A "&" in a preset's name is no mnemonic.
    check->setText(text.arg(QString(shown).replace(QLatin1Char('&'), QLatin1String("&&"))));
}

void QChangeControlModeDialog::connectControls()
{
    for (QRadioButton* const radio : { m_ui->radioConstant, m_ui->radioSensor }) {
        connect(radio, &QRadioButton::toggled, this,
                &QChangeControlModeDialog::OnFanControlChanged);
    }
    connect(m_ui->comboSensor, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &QChangeControlModeDialog::OnSensorChanged);
    connect(m_ui->spinIncrease, qOverload<int>(&QSpinBox::valueChanged), this,
            &QChangeControlModeDialog::OnIncreaseValueChanged);
    connect(m_ui->sliderRPM, &QSlider::valueChanged, m_ui->spinConstant, &QSpinBox::setValue);
    connect(m_ui->sliderRPM, &QSlider::valueChanged, this,
            &QChangeControlModeDialog::slotSliderChanged);
    connect(m_ui->spinConstant, qOverload<int>(&QSpinBox::valueChanged), m_ui->sliderRPM,
            &QSlider::setValue);
}

// What belongs to a radio button begins where its text begins.
void QChangeControlModeDialog::alignControls()
{
    const auto* const radio = m_ui->radioSensor;
    const int indent = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, radio)
        + style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, radio);
    m_ui->gridLayout->setColumnMinimumWidth(
        0, std::max(indent - m_ui->gridLayout->horizontalSpacing(), 0));
}

void QChangeControlModeDialog::showLimitsError(const ModalDialogParameters::Fan& fan)
{
    // Limits that are not known yet are read as soon as the fan is controlled.
    m_hasError = fan.min == fan.max && fan.min != FanSpeeds::unread;
    m_ui->labelFooter->setVisible(m_hasError);
    if (!m_hasError) {
        return;
    }
    m_buttonOK->setEnabled(false);
    m_ui->labelFooter->setText(
        QStringLiteral("<table><tr><td></td><td>%1</td><td valign=\"middle\">&nbsp;%2</td>"
                       "</tr></table>")
            .arg(QStringLiteral("<img src=\"%1\"/>").arg(QLatin1String(":/Resources/warning.png")),
                 uiText("FanControlDialog/statusWarning").arg(QString::number(fan.min))));
}

void QChangeControlModeDialog::OnFanControlChanged(bool checked)
{
    Q_UNUSED(checked)
    setShown({ m_ui->comboSensor, m_ui->spinConstant, m_ui->sliderRPM, m_ui->labelIncrease,
               m_ui->labelMax, m_ui->spinIncrease, m_ui->spinMax, m_ui->labelDegree1,
               m_ui->labelDegree2 },
             false);
    moveTabStop();
    m_buttonOK->setEnabled(!m_hasError);
    if (m_ui->radioConstant->isChecked()) {
        setShown({ m_ui->spinConstant, m_ui->sliderRPM }, true);
        m_ui->spinConstant->setFocus();
        m_ui->spinConstant->selectAll();
        return;
    }
    if (!m_ui->radioSensor->isChecked()) {
        m_buttonOK->setEnabled(false);
        return;
    }
    setShown({ m_ui->comboSensor, m_ui->labelIncrease, m_ui->labelMax, m_ui->spinIncrease,
               m_ui->spinMax, m_ui->labelDegree1, m_ui->labelDegree2 },
             true);
    m_ui->comboSensor->setFocus();
    OnSensorChanged(0);
}

// Tab stops at the choice that holds; from there arrow keys lead to the other one.
void QChangeControlModeDialog::moveTabStop()
{
    const auto policy = [](const QRadioButton* other) {
        return other->isChecked() ? Qt::ClickFocus : Qt::StrongFocus;
    };
    m_ui->radioConstant->setFocusPolicy(policy(m_ui->radioSensor));
    m_ui->radioSensor->setFocusPolicy(policy(m_ui->radioConstant));
}

void QChangeControlModeDialog::OnSensorChanged(int index)
{
    Q_UNUSED(index)
    const QString key = selectedSensorKey();
    if (key.isEmpty()) {
        return;
    }
    const bool isOpeningSensor = m_mode.type() == FanControlSensor && m_mode.sensorKey() == key;
    const auto& sensors = m_parameters.sensors;
    const auto sensor = std::find_if(sensors.begin(), sensors.end(),
                                     [&key](const auto& other) { return other.key == key; });
    if (!isOpeningSensor && sensor != sensors.end()) {
        m_ui->spinIncrease->setValue(m_scale.toDisplayScale(sensor->minTemperature));
        m_ui->spinMax->setValue(m_scale.toDisplayScale(sensor->maxTemperature));
    }
    // Also for a start that has not changed.
    OnIncreaseValueChanged(m_ui->spinIncrease->value());
}

void QChangeControlModeDialog::OnIncreaseValueChanged(int value)
{
    m_ui->spinMax->setMinimum(value
                              + (m_scale.isFahrenheit() ? leastSpanFahrenheit : leastSpanCelsius));
}

void QChangeControlModeDialog::slotSliderChanged() { m_ui->spinConstant->setFocus(); }

void QChangeControlModeDialog::OnApply(bool checked)
{
    Q_UNUSED(checked)
    const auto* const save = m_ui->checkSaveProfile;
    m_resultMode = chosenMode();
    m_saveToPreset = save->isVisible() && save->isChecked();
    m_lastAppliedModes.setMode(m_fanId, m_resultMode);
    accept();
}

void QChangeControlModeDialog::OnCancel(bool checked)
{
    Q_UNUSED(checked)
    reject();
}

QString QChangeControlModeDialog::selectedSensorKey() const
{
    return m_ui->radioSensor->isChecked() ? m_ui->comboSensor->currentData().toString() : QString();
}

FanControlMode QChangeControlModeDialog::chosenMode() const
{
    if (m_ui->radioConstant->isChecked()) {
        return FanControlMode::constant(static_cast<std::uint32_t>(m_ui->spinConstant->value()));
    }
    const QString key = selectedSensorKey();
    if (key.isEmpty()) {
        return {};
    }
    return FanControlMode::sensor(key, m_scale.fromDisplayScale(m_ui->spinIncrease->value()),
                                  m_scale.fromDisplayScale(m_ui->spinMax->value()));
}
