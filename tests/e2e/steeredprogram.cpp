// The program's own application object, engine and window, driven by lines on
// the standard input instead of a user. Each line is answered by one line.

#include <algorithm>
#include <iostream>
#include <string>
#include <utility>

#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QStringList>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QWindow>

#include "app/app.h"
#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/ui/fancontrolmainwindow.h"
#include "resources/resources.h"

namespace {

// How long the event loop has stood still at most, in milliseconds.
class LoopWatch {
public:
    LoopWatch()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(interval);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { note(); });
        m_sinceTick.start();
        m_timer.start();
    }

    // The longest stall since the last call.
    qint64 take()
    {
        note();
        return std::exchange(m_longest, 0);
    }

private:
    static constexpr int interval = 10;

    void note() { m_longest = std::max(m_longest, m_sinceTick.restart() - interval); }

    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longest = 0;
};

class Steering {
public:
    explicit Steering(QBrisoraApp& application)
        : m_application(application)
        , m_engine(*application.fanControl())
    {
    }

    QString execute(const QStringList& words)
    {
        const QString verb = words.value(0);
        if (verb == QLatin1String("preset")) {
            return choosePreset(words.value(1).toInt());
        }
        if (verb == QLatin1String("mode")) {
            return chooseMode(words.mid(1));
        }
        if (verb == QLatin1String("active")) {
            return activePreset();
        }
        if (verb == QLatin1String("values")) {
            return values();
        }
        if (verb == QLatin1String("sensors")) {
            return sensors();
        }
        if (verb == QLatin1String("report")) {
            return m_engine.getTechInfo().replace(QLatin1Char('\n'), QLatin1Char(';'));
        }
        if (verb == QLatin1String("stall")) {
            return QString::number(m_watch.take());
        }
        if (verb == QLatin1String("sleep")) {
            m_engine.slotEnteringSleepMode();
            return QStringLiteral("ok");
        }
        if (verb == QLatin1String("wake")) {
            m_engine.slotWakeUp();
            return QStringLiteral("ok");
        }
        if (verb == QLatin1String("reload")) {
            m_engine.slotSensorsReload();
            return QStringLiteral("ok");
        }
        if (verb == QLatin1String("where")) {
            return where(words.value(1), words.mid(2));
        }
        if (verb == QLatin1String("shows")) {
            return shows(words.value(1));
        }
        if (verb == QLatin1String("exit")) {
            QTimer::singleShot(0, m_application.mainWindow(), &QFanControlMainWindow::slotExit);
            return QStringLiteral("ok");
        }
        return QStringLiteral("What is \"%1\"?").arg(verb);
    }

private:
    // By id: 0 is Automatic, 1 is Full Blast.
    QString choosePreset(int id)
    {
        const auto presets = m_engine.profiles()->predefinedProfiles();
        const auto wanted = std::find_if(presets.begin(), presets.end(),
                                         [id](const auto& preset) { return preset.id() == id; });
        if (wanted == presets.end()) {
            return QStringLiteral("none");
        }
        m_engine.changeActiveProfile(*wanted);
        return QStringLiteral("ok");
    }

    // A fan's number and a mode, as presets hold it.
    QString chooseMode(const QStringList& words)
    {
        const FanControlMode mode = FanControlMode::fromString(words.value(1));
        if (mode.type() == FanControlInvalid) {
            return QStringLiteral("none");
        }
        m_engine.setFanMode(static_cast<std::uint8_t>(words.value(0).toInt()), mode, false);
        return QStringLiteral("ok");
    }

    QString activePreset() const
    {
        const FanProfile active = m_engine.profiles()->activeProfile();
        QStringList parts { active.name() };
        for (std::uint8_t fan = 0; fan < active.modeCount(); ++fan) {
            parts.append(active.mode(fan).toString());
        }
        return parts.join(QLatin1Char('|'));
    }

    // "fan current min max" for each fan, "KEY value" for each sensor.
    QString values() const
    {
        QStringList parts;
        for (const FanRecord& fan : m_engine.getFans()) {
            const FanSpeeds speeds = fan.speeds();
            parts.append(QStringLiteral("fan %1 %2 %3")
                             .arg(QString::number(speeds.current), QString::number(speeds.min),
                                  QString::number(speeds.max)));
        }
        for (const auto* sensor : m_engine.sensorProvider()->getSensors()) {
            parts.append(
                QStringLiteral("%1 %2").arg(sensor->key(), QString::number(sensor->value())));
        }
        return parts.join(QLatin1Char(';'));
    }

    // "KEY name" for each sensor.
    QString sensors() const
    {
        QStringList parts;
        for (const auto* sensor : m_engine.sensorProvider()->getSensors()) {
            parts.append(sensor->key() + QLatin1Char(' ') + sensor->displayName());
        }
        return parts.join(QLatin1Char(';'));
    }

    // A visible widget by its object name, or null.
    static QWidget* visibleWidget(const QString& name)
    {
        const QWidgetList all = QApplication::allWidgets();
        const auto found = std::find_if(all.begin(), all.end(), [&name](const QWidget* widget) {
            return widget->objectName() == name && widget->isVisible();
        });
        return found != all.end() ? *found : nullptr;
    }

    // The centre, as "x y" of the display, of a widget that takes clicks now.
    // "segment FAN NUMBER" is a segment of the fan's control.
    static QString where(const QString& name, const QStringList& numbers)
    {
        const QWidget* widget = visibleWidget(name);
        if (name == QLatin1String("segment")) {
            const auto* const fans
                = qobject_cast<QTableView*>(visibleWidget(QStringLiteral("tableFans")));
            const auto* const cell = fans != nullptr
                ? fans->indexWidget(fans->model()->index(numbers.value(0).toInt(), 2))
                : nullptr;
            widget = cell != nullptr
                ? cell->findChildren<QToolButton*>().value(numbers.value(1).toInt())
                : nullptr;
        }
        if (widget == nullptr || !widget->isVisible() || !widget->isEnabled()
            || !widget->window()->windowHandle()->isExposed()) {
            return QStringLiteral("none");
        }
        // A wide button takes clicks on what it shows only, which stands at its left.
        const int shownWidth = std::min(widget->width(), widget->sizeHint().width());
        const QPoint centre
            = widget->mapToGlobal(QPoint(shownWidth / 2, widget->rect().center().y()));
        return QStringLiteral("%1 %2").arg(QString::number(centre.x()),
                                           QString::number(centre.y()));
    }

    // What a visible button, label or box shows.
    static QString shows(const QString& name)
    {
        const QWidget* const widget = visibleWidget(name);
        const QVariant text = widget != nullptr
            ? (widget->property("currentText").isValid() ? widget->property("currentText")
                                                         : widget->property("text"))
            : QVariant();
        return text.isValid() ? text.toString() : QStringLiteral("none");
    }

    QBrisoraApp& m_application;
    QFanControl& m_engine;
    LoopWatch m_watch;
};

} // namespace

int main(int argc, char* argv[])
{
    initResources();
    QBrisoraApp application(argc, argv);
    if (const auto code = application.initialize(); code != QBrisoraApp::Success) {
        return code;
    }
    application.showMainWindow();

    Steering steering(application);
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&steering, &input] {
        std::string line;
        if (!std::getline(std::cin, line)) {
            input.setEnabled(false);
            return;
        }
        const QStringList words = QString::fromStdString(line).split(QLatin1Char(' '));
        std::cout << steering.execute(words).toStdString() << std::endl;
    });
    return QBrisoraApp::exec();
}
