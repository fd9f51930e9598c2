// Leaves pictures of the window, of every dialog and of the tray's menu in a
// folder: for people who judge how they look.
//
//   brisora_gallery FOLDER light|dark [LANGUAGE]
//
// The scale is that of the environment: QT_SCALE_FACTOR.

#include <cstdio>
#include <functional>
#include <memory>

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QtTest>

#include "app/ui/dialogs/lastappliedmodes.h"
#include "app/ui/dialogs/qchangecontrolmodedialog.h"
#include "app/ui/dialogs/qinfodialog.h"
#include "app/ui/dialogs/qratemedialog.h"
#include "app/ui/preferences/qpreferencesdialog.h"
#include "app/ui/presets/qsaveeditprofiledialog.h"
#include "app/ui/tray/traydrawing.h"
#include "app/ui/typeicons.h"
#include "core/application/applicationlook.h"
#include "core/widgets/qmessageboxex.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"

namespace {

class Gallery {
public:
    explicit Gallery(const QString& folder)
        : m_folder(folder)
    {
    }

    // False once a picture could not be written.
    [[nodiscard]] bool isComplete() const { return m_complete; }

    void add(const QString& name, QWidget& widget)
    {
        widget.show();
        // Layouts and styles settle in the event loop.
        for (int round = 0; round < 5; ++round) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        }
        save(name, widget.grab());
    }

    void save(const QString& name, const QPixmap& picture)
    {
        m_complete = picture.save(m_folder.filePath(name + QLatin1String(".png"))) && m_complete;
    }

private:
    const QDir m_folder;
    bool m_complete = true;
};

ModalDialogParameters plausibleMachine()
{
    ModalDialogParameters parameters;
    const auto sensor = [](const char* name, const char* key, SensorType type) {
        return ModalDialogParameters::Sensor { QLatin1String(name), QLatin1String(key),
                                               sensorIcon(type), 40, 90 };
    };
    parameters.sensors = { sensor("CPU Proximity", "TC0P", SensorType::cpu),
                           sensor("GPU Diode", "TG0D", SensorType::gpu),
                           sensor("Airport Proximity", "TW0P", SensorType::airport) };
    parameters.fans = { { QStringLiteral("Left side"), QStringLiteral("0"),
                          fanIcon(FanLocationOther, false), 2500, 2000, 6156 },
                        { QStringLiteral("Disturbed"), QStringLiteral("1"),
                          fanIcon(FanLocationHdd, false), 2000, 2000, 2000 } };
    return parameters;
}

void addFanDialogs(Gallery& gallery, QSettingsCache& settings)
{
    const struct {
        const char* name;
        std::uint8_t fan;
        FanControlMode mode;
        const char* preset;
    } dialogs[] = {
        { "fan-constant", 0, FanControlMode::constant(3400), "" },
        { "fan-sensor", 0, FanControlMode::sensor(QStringLiteral("TG0D"), 45, 85),
          "Video editing" },
        { "fan-warning", 1, FanControlMode::automatic(), "" },
    };
    for (const auto& row : dialogs) {
        LastAppliedModes lastApplied;
        QChangeControlModeDialog dialog(nullptr, row.fan, plausibleMachine, row.mode,
                                        QLatin1String(row.preset), settings, lastApplied);
        gallery.add(QLatin1String(row.name), dialog);
    }
}

void addPreferences(Gallery& gallery, QSettingsCache& settings, const LanguageStrings& language)
{
    PreferencesHost host;
    host.isAutostart = [] { return true; };
    host.setAutostart = [](bool) {};
    host.language = [&language]() -> const LanguageStrings& { return language; };
    host.loadLanguage = [](const QString&) {};
    host.openTranslationPage = [] {};
    host.isEGpuCapable = true;
    for (int page = 0; page < 3; ++page) {
        int shown = page;
        QPreferencesDialog dialog(nullptr, settings, host, plausibleMachine, shown);
        gallery.add(QStringLiteral("preferences-%1").arg(page), dialog);
    }
}

// Shows a modal box of the window and takes its picture.
void addBox(Gallery& gallery, const QString& name, const std::function<void()>& run)
{
    QTimer::singleShot(200, qApp, [&gallery, name] {
        if (auto* const box = QApplication::activeModalWidget()) {
            gallery.add(name, *box);
            box->close();
        }
    });
    run();
}

void addWindow(Gallery& gallery)
{
    WindowBench bench;
    auto& window = bench.makeLoaded();
    bench.machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TG0P"), 45, 85),
                                     false);
    // This platform's screen is too small for the size that the window proposes.
    window.resize(window.sizeHint().expandedTo(QSize(821, 375)));
    bench.find<QSplitter>("splitter")->setSizes({ window.width() - 290, 290 });
    window.show();
    // Values come with the passes of the engine.
    for (int pass = 0; pass < 4; ++pass) {
        bench.letTimePass();
        QTest::qWait(100);
    }
    gallery.add(QStringLiteral("window"), window);
    const auto menus = window.findChildren<QMenu*>();
    for (auto* const menu : menus) {
        if (menu->parentWidget() != nullptr && qobject_cast<QMenu*>(menu->parentWidget()) == nullptr
            && !menu->actions().isEmpty() && !menu->objectName().isEmpty()) {
            menu->popup(QPoint(100, 100));
            gallery.add(menu->objectName(), *menu);
            menu->close();
        }
    }
    bench.machine.engine->setFanMode(1, FanControlMode::automatic(), false);
    addBox(gallery, QStringLiteral("new-preset"), [&window] { window.slotShowNewPresetTip(); });
    window.slotExit();
}

void addTrayIcons(Gallery& gallery)
{
    const int readings[] = { 5, 38, 46, 78, 100, 127 };
    const int sizes[] = { 16, 24, 32, 48 };
    QPixmap sheet(6 * 60, 4 * 60);
    sheet.fill(QApplication::palette().color(QPalette::Window));
    QPainter painter(&sheet);
    for (int column = 0; column < 6; ++column) {
        for (int row = 0; row < 4; ++row) {
            painter.drawImage(
                column * 60 + 6, row * 60 + 6,
                drawTrayReading(QString::number(readings[column]), sizes[row], sizes[row]));
        }
    }
    painter.end();
    gallery.save(QStringLiteral("tray-readings"), sheet);
}

} // namespace

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString look = arguments.value(2);
    if (look != QLatin1String("light") && look != QLatin1String("dark")) {
        std::fputs("Usage: brisora_gallery FOLDER light|dark [LANGUAGE]\n", stderr);
        return 2;
    }
    QDir().mkpath(arguments.value(1));
    const WindowProcess process(arguments.value(3, QStringLiteral("English")));
    ApplicationLook applicationLook(application);
    applicationLook.apply(look == QLatin1String("dark"));

    Gallery gallery(arguments.value(1));
    QTemporaryDir folder;
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    settings.setInt(SettingsKeys::fahrenheit, 0);
    addWindow(gallery);
    addFanDialogs(gallery, settings);
    addPreferences(gallery, settings, process.language());
    QSaveEditProfileDialog save(nullptr, { QStringLiteral("Video editing") }, {});
    gallery.add(QStringLiteral("save-preset"), save);
    QSaveEditProfileDialog rename(nullptr, {}, QStringLiteral("Video editing"));
    gallery.add(QStringLiteral("rename-preset"), rename);
    QInfoDialog about(nullptr, QInfoDialog::Info::current());
    gallery.add(QStringLiteral("about"), about);
    QRateMeDialog rate(nullptr);
    gallery.add(QStringLiteral("rate"), rate);
    addTrayIcons(gallery);
    return gallery.isComplete() ? 0 : 1;
}
