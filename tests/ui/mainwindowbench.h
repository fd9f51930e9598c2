#pragma once

#include <memory>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QTextDocument>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/fancontrolmainwindow.h"
#include "app/ui/tables/qtablefanscontrolwidget.h"
#include "app/ui/tables/qtablefansrpmwidget.h"
#include "app/ui/tables/qtableviewfans.h"
#include "app/ui/tables/qtableviewsensors.h"
#include "core/language/languagestrings.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/support/interfacetexts.h"
#include "tests/ui/tray/traybench.h"

// What the window takes for the log of this run.
inline const QString logText = QStringLiteral("first line\nsecond line\n");

// The process of a test of the window, with the texts of the given language: its
// file's base name.
class WindowProcess {
public:
    explicit WindowProcess(const QString& languageName = QStringLiteral("English"))
    {
        EngineMachine::prepareProcess();
        m_texts.load(languageName);
        s_current = this;
    }
    WindowProcess(const WindowProcess&) = delete;
    WindowProcess& operator=(const WindowProcess&) = delete;
    ~WindowProcess() { s_current = nullptr; }

    // The one that lives; there must be one.
    [[nodiscard]] static WindowProcess& current() { return *s_current; }

    // What a test changes it puts back.
    [[nodiscard]] InterfaceTexts& texts() { return m_texts; }
    [[nodiscard]] const LanguageStrings& language() const { return m_texts.strings(); }

    // A request to quit that no event loop has taken would end the next dialog.
    static void takeQuitRequest()
    {
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
    }

private:
    inline static WindowProcess* s_current = nullptr;

    InterfaceTexts m_texts;
};

// The window on an engine of a machine that the test may change before.
class WindowBench {
public:
    QFanControlMainWindow& make(const QString& model = QStringLiteral("MacBookPro11,3"))
    {
        if (!machine.smc->isOpen()) {
            machine.open();
        }
        // As the program's start leaves it.
        machine.settings.setInt(SettingsKeys::fahrenheit, 0);
        MainWindowHost host;
        host.productTitle = QStringLiteral("Brisora 1.2.3");
        host.machineName = model;
        host.isPassive = isPassive;
        host.readLog = [] { return logText; };
        host.now = [this] { return now; };
        host.hasWriteAccess = [this] { return machine.hasWriteAccess.load(); };
        host.installWriteAccess = [this](QString& error) {
            error = installError;
            machine.hasWriteAccess = installError.isEmpty();
            return installError.isEmpty();
        };
        host.showWriteAccessError
            = [this](const QString& error, QWidget*) { shownErrors.append(error); };
        host.preferences.isAutostart = [] { return false; };
        host.preferences.setAutostart = [](bool) {};
        host.preferences.language
            = []() -> const LanguageStrings& { return WindowProcess::current().language(); };
        host.preferences.loadLanguage
            = [](const QString& name) { WindowProcess::current().texts().load(name); };
        host.isTrayAvailable = [this] { return hasTray; };
        host.makeTrayPlatform = [this] { return std::make_unique<FakeTrayPlatform>(tray); };
        window = std::make_unique<QFanControlMainWindow>(*machine.engine, machine.settings,
                                                         std::move(host));
        return *window;
    }

    // The window once the load is over and both tasks wait for their next pass.
    QFanControlMainWindow& makeLoaded()
    {
        make();
        [this] {
            QTRY_COMPARE(fans()->model()->rowCount(), 2);
            QTRY_COMPARE(machine.clock.timedWaits(), 2);
        }();
        return *window;
    }

    // Lets the engine's next passes come.
    bool letTimePass()
    {
        machine.clock.advance(EngineContext::passInterval);
        return true;
    }

    template <typename Widget> [[nodiscard]] Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] QTableViewFans* fans() const { return find<QTableViewFans>("tableFans"); }
    [[nodiscard]] QTableViewSensors* sensors() const
    {
        return find<QTableViewSensors>("tableSensors");
    }
    [[nodiscard]] QList<int> paneSizes() const { return find<QSplitter>("splitter")->sizes(); }

    // What the cells of a fan show: "2000 — 2500 — 6000", "Custom..."
    [[nodiscard]] QString rpmText(int fan) const
    {
        QTextDocument document;
        document.setHtml(fans()->getRpmCell(fan)->text());
        return document.toPlainText().simplified();
    }
    [[nodiscard]] QString controlText(int fan) const { return fans()->getControlCell(fan)->text(); }
    // A segment of the fan's control: 0 is automatic.
    [[nodiscard]] QToolButton* segment(int fan, int number) const
    {
        return fans()->getControlCell(fan)->findChildren<QToolButton*>().value(number);
    }

    // The row of the sensor with this key; -1 without one.
    [[nodiscard]] int sensorRow(const char* key) const
    {
        const auto* sensor = machine.sensor(key);
        const auto* const model = sensors()->model();
        for (int row = 0; sensor != nullptr && row < model->rowCount(); ++row) {
            if (model->index(row, 0).data().toString() == sensor->displayName()) {
                return row;
            }
        }
        return -1;
    }
    [[nodiscard]] QString sensorText(const char* key) const
    {
        return sensors()->model()->index(sensorRow(key), 1).data().toString();
    }

    EngineMachine machine;
    bool isPassive = false;
    bool hasTray = true;
    QString installError; // empty: write access can be installed
    QStringList shownErrors;
    QDateTime now = QDateTime(QDate(2026, 3, 1), QTime(12, 0));
    FakeTrayPlatform::Record tray;
    std::unique_ptr<QFanControlMainWindow> window;
};
