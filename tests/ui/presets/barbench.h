#pragma once

#include <functional>
#include <memory>

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QtTest>

#include "app/fancontrol/fanprofilelist.h"
#include "app/ui/presets/qwidgetprofiles.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qcocoabutton.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/interfacetexts.h"

inline const FanProfile fullBlast = constantPreset(6000, 6000, "Full blast");
inline const FanProfile unsaved = constantPreset(3333, 3333, "");

inline FanProfile automatic()
{
    return FanProfile({ FanControlMode::automatic(), FanControlMode::automatic() }, QString());
}

// What a menu shows, an entry after the other: "-" for a separator, a disabled entry
// in brackets, "*" before a checked one, ">" after one with a submenu.
inline QStringList contents(const QMenu* menu)
{
    QStringList result;
    const QList<QAction*> entries = menu->actions();
    for (const QAction* const entry : entries) {
        QString text = entry->text();
        if (entry->isSeparator()) {
            text = QStringLiteral("-");
        } else if (!entry->isEnabled()) {
            text = QStringLiteral("(%1)").arg(text);
        } else if (entry->isCheckable() && entry->isChecked()) {
            text.prepend(QLatin1Char('*'));
        }
        if (entry->menu() != nullptr) {
            text.append(QLatin1Char('>'));
        }
        result.append(text);
    }
    return result;
}

inline QAction* entryOf(const QMenu* menu, const char* text)
{
    const QList<QAction*> entries = menu->actions();
    for (QAction* const entry : entries) {
        if (entry->text() == QString::fromUtf8(text)) {
            return entry;
        }
    }
    qFatal("No entry '%s' in %s", text, qPrintable(contents(menu).join(QLatin1Char('|'))));
}

inline void clickOn(QMenu* menu, QAction* entry)
{
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
}

// The bar in a window, on a list of presets for two fans, wired as the main window
// does it.
class BarBench {
public:
    explicit BarBench(const std::vector<FanProfile>& custom = {})
        : settings(settingsFile.open())
        , list(*settings)
        , bar(new QWidgetProfiles(&window))
    {
        const FanProfile predefined[] = { automatic(), fullBlast };
        for (std::uint8_t id = 0; id < 2; ++id) {
            list.addPredefined({ predefined[id].mode(0), predefined[id].mode(1) }, id);
        }
        list.loadCustom();
        list.loadActive();
        for (const FanProfile& preset : custom) {
            list.setActiveProfile(preset);
            list.saveUnsavedProfile(preset.name());
        }
        list.setActiveProfile(list.defaultProfile());

        (new QHBoxLayout(&window))->addWidget(bar);
        bar->setProfiles(list);
        bar->setNameCallback([this](const QStringList& names, const QString& current) {
            askedNames = names;
            askedName = current;
            ++asked;
            return answer;
        });
        bar->translate();
        QObject::connect(&list, &QFanProfileList::profilesChanged, bar,
                         &QWidgetProfiles::slotProfilesChanged);
        QObject::connect(bar, &QWidgetProfiles::setActiveProfile, &list,
                         &QFanProfileList::setActiveProfile);
        QObject::connect(bar, &QWidgetProfiles::deleteProfile, &list,
                         &QFanProfileList::deleteProfile);
        QObject::connect(bar, &QWidgetProfiles::saveUnsavedProfile, &list,
                         &QFanProfileList::saveUnsavedProfile);
        QObject::connect(bar, &QWidgetProfiles::renameProfile, &list,
                         &QFanProfileList::renameProfile);
    }

    // The list with this preset active, shown by the bar.
    void activate(const FanProfile& preset) { list.setActiveProfile(preset); }

    void show()
    {
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window)) {
            qFatal("The window gets no keyboard");
        }
    }

    [[nodiscard]] QCocoaButtonActionMenu* buttonPresets() const
    {
        return bar->findChild<QCocoaButtonActionMenu*>(QStringLiteral("buttonPresets"));
    }
    [[nodiscard]] QCocoaButtonActionMenu* buttonActions() const
    {
        return bar->findChild<QCocoaButtonActionMenu*>(QStringLiteral("buttonActions"));
    }
    // What the user clicks on.
    [[nodiscard]] static QPushButton* inside(const QCocoaButtonActionMenu* button)
    {
        return button->findChild<QPushButton*>();
    }
    [[nodiscard]] QMenu* menuPresets() const
    {
        return bar->findChild<QMenu*>(QStringLiteral("menuPresets"));
    }
    [[nodiscard]] QMenu* menuActions() const
    {
        return bar->findChild<QMenu*>(QStringLiteral("menuActions"));
    }
    [[nodiscard]] QMenu* presetMenu(const char* name) const
    {
        return entryOf(menuPresets(), name)->menu();
    }
    [[nodiscard]] QStringList customNames() const
    {
        QStringList names;
        for (const FanProfile& preset : list.customProfiles()) {
            names.append(preset.name());
        }
        return names;
    }

    SettingsFile settingsFile;
    std::unique_ptr<QSettingsCache> settings;
    QFanProfileList list;
    QWidget window;
    QWidgetProfiles* const bar;
    QString answer; // to the question for a name
    QStringList askedNames;
    QString askedName;
    int asked = 0;
};

inline const FanProfile quiet = constantPreset(2000, 2100, "Quiet");
inline const FanProfile loud = constantPreset(5000, 5100, "Loud");

// The process of a test of the bar: the English texts, and sensors for presets.
class BarTest : public QObject {
    Q_OBJECT

protected:
    [[nodiscard]] InterfaceTexts& texts() const { return *m_texts; }

private Q_SLOTS:
    void init()
    {
        m_texts = std::make_unique<InterfaceTexts>();
        m_sensors = std::make_unique<KnownSensors>();
    }
    void cleanup()
    {
        m_sensors.reset();
        m_texts.reset();
    }

private:
    std::unique_ptr<InterfaceTexts> m_texts;
    std::unique_ptr<KnownSensors> m_sensors;
};
