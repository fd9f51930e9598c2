#pragma once

#include <memory>

#include <QApplication>
#include <QSplitter>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include "app/ui/fancontrolmainwindow.h"
#include "core/language/languagestrings.h"
#include "tests/fancontrol/enginemachine.h"

// What the window takes for the log of this run.
inline const QString logText = QStringLiteral("first line\nsecond line\n");

// The process of a test of the window, with the English texts.
class WindowProcess {
public:
    WindowProcess()
    {
        EngineMachine::prepareProcess();
        m_language = std::make_unique<LanguageStrings>(
            QStringLiteral(":/build/languages/English.xml"), QString());
        m_language->load(QString());
        LanguageStrings::setActive(m_language.get());
    }
    WindowProcess(const WindowProcess&) = delete;
    WindowProcess& operator=(const WindowProcess&) = delete;
    ~WindowProcess() { LanguageStrings::setActive(nullptr); }

    // A request to quit that no event loop has taken would end the next dialog.
    static void takeQuitRequest()
    {
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
    }

private:
    std::unique_ptr<LanguageStrings> m_language;
};

// The window on an engine of a machine that the test may change before.
class WindowBench {
public:
    QFanControlMainWindow& make(const QString& model = QStringLiteral("MacBookPro11,3"))
    {
        if (!machine.smc->isOpen()) {
            machine.open();
        }
        window = std::make_unique<QFanControlMainWindow>(
            *machine.engine, machine.settings,
            QFanControlMainWindow::Texts { QStringLiteral("Brisora 1.2.3"), model },
            [] { return logText; });
        return *window;
    }

    // The window once the load is over and both tasks wait for their next pass.
    QFanControlMainWindow& makeLoaded()
    {
        make();
        [this] {
            QTRY_COMPARE(fans()->rowCount(), 2);
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

    [[nodiscard]] QTableWidget* fans() const
    {
        return window->findChild<QTableWidget*>(QStringLiteral("tableFans"));
    }
    [[nodiscard]] QTableWidget* sensors() const
    {
        return window->findChild<QTableWidget*>(QStringLiteral("tableSensors"));
    }
    [[nodiscard]] QList<int> paneSizes() const
    {
        return window->findChild<QSplitter*>(QStringLiteral("splitter"))->sizes();
    }
    // The row of the sensor with this key; -1 without one.
    [[nodiscard]] int sensorRow(const char* key) const
    {
        const auto* sensor = machine.sensor(key);
        for (int row = 0; sensor != nullptr && row < sensors()->rowCount(); ++row) {
            if (sensors()->item(row, 0)->text() == sensor->displayName()) {
                return row;
            }
        }
        return -1;
    }
    [[nodiscard]] QString sensorText(const char* key) const
    {
        const auto* item = sensors()->item(sensorRow(key), 1);
        return item != nullptr ? item->text() : QString();
    }

    EngineMachine machine;
    std::unique_ptr<QFanControlMainWindow> window;
};
