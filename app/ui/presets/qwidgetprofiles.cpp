#include "app/ui/presets/qwidgetprofiles.h"

#include <algorithm>
#include <utility>

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>

#include "app/fancontrol/fanprofilelist.h"
#include "app/ui/texts.h"
#include "core/widgets/qcocoabutton.h"
#include "core/widgets/widgethelpers.h"

namespace {

constexpr int longestName = 320; // scaled pixels; longer names are shortened
constexpr int buttonMargin = 30; // scaled pixels around the name in the button

// The name on one line, shortened in the middle when it is too long to be shown.
QString shownName(const QString& name, const QFontMetrics& metrics)
{
    QString line = name;
    std::replace_if(
        line.begin(), line.end(),
        [](QChar character) { return character.category() == QChar::Other_Control; },
        QLatin1Char(' '));
    return metrics.elidedText(line, Qt::ElideMiddle, scaled(longestName));
}

// For menus and buttons, which take "&" for the mark of a mnemonic.
QString withoutMnemonics(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

// The whole name for those that are shown shortened; empty for the others.
QString toolTipFor(const QString& name, const QString& shown)
{
    // As rich text it is broken into lines.
    return shown == name ? QString() : QStringLiteral("<p>%1</p>").arg(name.toHtmlEscaped());
}

// Gives an entry its text. The whole name stays with it as its data.
void nameEntry(QAction* entry, const QString& name, const QFontMetrics& metrics)
{
    const QString shown = shownName(name, metrics);
    entry->setText(withoutMnemonics(shown));
    entry->setToolTip(toolTipFor(name, shown));
    entry->setData(name);
}

QCocoaButtonActionMenu* newButton(const char* name, QWidget* parent)
{
    auto* const button = new QCocoaButtonActionMenu(parent);
    button->setObjectName(QLatin1String(name));
    button->setEnabled(false);
    return button;
}

QMenu* newMenu(const char* name, QWidget* parent)
{
    auto* const menu = new QMenu(parent);
    menu->setObjectName(QLatin1String(name));
    menu->setToolTipsVisible(true);
    return menu;
}

} // namespace

QWidgetProfiles::QWidgetProfiles(QWidget* parent)
    : QWidget(parent)
    , m_labelActive(new QLabel(this))
    , m_buttonPresets(newButton("buttonPresets", this))
    , m_buttonActions(newButton("buttonActions", this))
    , m_menuPresets(newMenu("menuPresets", this))
    , m_menuActions(newMenu("menuActions", this))
{
    m_labelActive->setObjectName(QStringLiteral("labelActive"));
    m_labelActive->setBuddy(m_buttonPresets);
    m_buttonActions->setTextAlignment(QCocoaButton::LeftAlignment);

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch();
    row->addWidget(m_labelActive);
    row->addWidget(m_buttonPresets);
    row->addWidget(m_buttonActions);
    row->addStretch();

    for (const QMenu* const menu : { m_menuPresets, m_menuActions }) {
        connect(menu, &QMenu::aboutToHide, this, &QWidgetProfiles::rebuildIfWaiting,
                Qt::QueuedConnection);
    }
}

QWidgetProfiles::~QWidgetProfiles() = default;

void QWidgetProfiles::setProfiles(const QFanProfileList& profiles) { m_profiles = &profiles; }

void QWidgetProfiles::setNameCallback(NameCallback callback)
{
    m_nameCallback = std::move(callback);
}

void QWidgetProfiles::translate()
{
    m_labelActive->setText(uiText("Presets/activePresetLabel"));
    if (!m_menuPresets->isEmpty()) {
        slotProfilesChanged();
    }
}

void QWidgetProfiles::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && !m_menuPresets->isEmpty()) {
        slotProfilesChanged();
    }
}

void QWidgetProfiles::slotProfilesChanged()
{
    if (m_profiles == nullptr || FanProfile::fanCount() == 0) {
        m_buttonPresets->setEnabled(false);
        m_buttonActions->setEnabled(false);
        return;
    }
    // What the user points at stays as it is.
    m_rebuildWaits = m_menuPresets->isVisible() || m_menuActions->isVisible();
    if (m_rebuildWaits) {
        return;
    }
    buildMenuActions();
    buildMenuPresets();
    fitButtonPresets();
}

void QWidgetProfiles::rebuildIfWaiting()
{
    if (m_rebuildWaits) {
        slotProfilesChanged();
    }
}

void QWidgetProfiles::buildMenuActions()
{
    const bool isUnsaved = m_profiles->isUnsaved();
    const bool isCustom = m_profiles->isActiveCustom();
    m_buttonActions->setEnabled(isUnsaved || isCustom);
    m_menuActions->clear();
    if (isUnsaved) {
        auto* const save
            = addEntry(m_menuActions, uiText("Presets/presetMenuSave") + QLatin1String("\tCtrl+S"),
                       [this] { slotSave(); });
        save->setShortcut(QKeySequence(QStringLiteral("Ctrl+S")));
        m_menuActions->addSeparator();
        addEntry(m_menuActions, uiText("Presets/presetMenuDiscard"), [this] { slotDiscard(); });
    } else if (isCustom) {
        addRenameAndDelete(m_menuActions, m_profiles->activeProfile());
    }
    m_buttonActions->setMenu(m_menuActions);
    m_buttonActions->setIcon(QIcon(QStringLiteral(":/Resources/profiles_action.png")));
}

void QWidgetProfiles::buildMenuPresets()
{
    m_menuPresets->clear();
    m_presetMenus.clear();
    // Of one entry only: a click does not take the mark from the active preset.
    m_activeEntry = std::make_unique<QActionGroup>(nullptr);
    m_activeName.clear();

    addPredefinedPresets();
    addCustomPresets();
    addUnsavedState();
    showActiveName();
}

void QWidgetProfiles::addPredefinedPresets()
{
    const bool isAutomatic = m_profiles->isActiveAutomatic();
    const bool isFullBlast = m_profiles->isActiveFullBlast();
    addHeading("Presets/presetMenuPredefined");
    for (const FanProfilePredefined& preset : m_profiles->predefinedProfiles()) {
        auto* const entry = addEntry(m_menuPresets, QString(),
                                     [this, preset] { Q_EMIT setActiveProfile(preset); });
        nameEntry(entry, preset.name(), m_menuPresets->fontMetrics());
        if ((isAutomatic && preset.id() == FanProfilePredefined::automaticId)
            || (isFullBlast && preset.id() == FanProfilePredefined::fullBlastId)) {
            markActive(entry, preset.name());
        }
    }
}

void QWidgetProfiles::addCustomPresets()
{
    const std::vector<FanProfile> presets = m_profiles->customProfiles();
    const int active = m_profiles->activeCustomIndex();
    m_menuPresets->addSeparator();
    addHeading("Presets/presetMenuCustom");
    for (std::size_t index = 0; index < presets.size(); ++index) {
        const FanProfile& preset = presets[index];
        auto menu = std::make_unique<QMenu>(m_menuPresets);
        m_menuPresets->addMenu(menu.get());
        nameEntry(menu->menuAction(), preset.name(), m_menuPresets->fontMetrics());
        if (static_cast<int>(index) == active) {
            markActive(menu->menuAction(), preset.name());
        } else {
            addEntry(menu.get(), uiText("Presets/presetMenuApply"),
                     [this, preset] { Q_EMIT setActiveProfile(preset); });
            menu->addSeparator();
        }
        addRenameAndDelete(menu.get(), preset);
        m_presetMenus.push_back(std::move(menu));
    }
    if (presets.empty() && (m_profiles->isActiveAutomatic() || m_profiles->isActiveFullBlast())) {
        auto* const create
            = addEntry(m_menuPresets, QString(), [this] { Q_EMIT showCreateNewPresetMessage(); });
        nameEntry(create, uiText("Presets/presetCreateNew"), m_menuPresets->fontMetrics());
    }
}

void QWidgetProfiles::addUnsavedState()
{
    if (!m_profiles->isUnsaved()) {
        return;
    }
    const QString name = uiText("Presets/presetCurrentUnsaved");
    nameEntry(m_menuActions->menuAction(), name, m_menuPresets->fontMetrics());
    m_menuPresets->addMenu(m_menuActions);
    markActive(m_menuActions->menuAction(), name);
}

void QWidgetProfiles::addHeading(const char* key)
{
    m_menuPresets->addAction(uiText(key))->setEnabled(false);
}

void QWidgetProfiles::addRenameAndDelete(QMenu* menu, const FanProfile& preset)
{
    addEntry(menu, uiText("Presets/presetMenuRename"), [this, preset] { slotRename(preset); });
    addEntry(menu, uiText("Presets/presetMenuDelete"),
             [this, preset] { Q_EMIT deleteProfile(preset); });
}

// The effect is queued, so that entry and menu are no longer at work if it frees them.
QAction* QWidgetProfiles::addEntry(QMenu* menu, const QString& text, std::function<void()> effect)
{
    auto* const entry = menu->addAction(text);
    connect(entry, &QAction::triggered, this, std::move(effect), Qt::QueuedConnection);
    return entry;
}

void QWidgetProfiles::markActive(QAction* entry, const QString& name)
{
    entry->setCheckable(true);
    entry->setChecked(true);
    m_activeEntry->addAction(entry);
    m_activeName = name;
}

void QWidgetProfiles::showActiveName()
{
    const QString shown = shownName(m_activeName, m_buttonPresets->fontMetrics());
    const QString title = uiText("Presets/presetMenuCurrent").arg(m_activeName);
    m_buttonPresets->setText(withoutMnemonics(shown));
    m_buttonPresets->setToolTip(toolTipFor(m_activeName, shown));
    m_buttonPresets->setAccessibleName(m_labelActive->text() + QLatin1Char(' ') + m_activeName);
    m_buttonPresets->setMenu(m_menuPresets);
    m_buttonPresets->setEnabled(true);
    m_menuPresets->setTitle(withoutMnemonics(title));
    m_buttonActions->setAccessibleName(title);
}

void QWidgetProfiles::fitButtonPresets()
{
    const QFontMetrics metrics = m_buttonPresets->fontMetrics();
    int widest = 0;
    const QList<QAction*> entries = m_menuPresets->actions();
    for (const QAction* const entry : entries) {
        // Separators and headings carry no name.
        const QString shown = shownName(entry->data().toString(), metrics);
        widest = std::max(widest, metrics.horizontalAdvance(shown));
    }
    m_buttonPresets->setFixedWidth(widest + scaled(buttonMargin));
}

void QWidgetProfiles::slotSave()
{
    const QString name = m_nameCallback(customNames(), QString());
    if (!name.isEmpty()) {
        Q_EMIT saveUnsavedProfile(name);
    }
}

void QWidgetProfiles::slotRename(FanProfile preset)
{
    const QString name = m_nameCallback(customNames(), preset.name());
    if (!name.isEmpty()) {
        Q_EMIT renameProfile(preset, name);
    }
}

void QWidgetProfiles::slotDiscard() { Q_EMIT setActiveProfile(m_profiles->defaultProfile()); }

QStringList QWidgetProfiles::customNames() const
{
    QStringList names;
    for (const FanProfile& preset : m_profiles->customProfiles()) {
        names.append(preset.name());
    }
    return names;
}
