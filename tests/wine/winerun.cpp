#include "tests/wine/winerun.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QTextStream>

namespace {

const QString wine = QStringLiteral("wine");
const QString wineServer = QStringLiteral("wineserver");
const QString program = QStringLiteral(WINDOWS_FOLDER "/Brisora.exe");
const QString portDriver = QStringLiteral(PORT_DRIVER_FOLDER "/inpout32.dll");
const QString gpuDriver = QStringLiteral(PORT_DRIVER_FOLDER "/nvapi.dll");
const QString endSessionProgram = QStringLiteral(END_SESSION_PROGRAM);

const QString settingsKey = QStringLiteral("HKEY_CURRENT_USER\\Software\\Orvane Software\\Brisora");

// Without Windows' own fonts any other one may stand for them, such as one whose
// lines are several times as high.
const QString fonts = QStringLiteral("[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n"
                                     "\"MS Shell Dlg\"=\"DejaVu Sans\"\n"
                                     "\"MS Shell Dlg 2\"=\"DejaVu Sans\"\n"
                                     "\"Tahoma\"=\"DejaVu Sans\"\n\n");

// Fills the registry, then gives its place to the program.
const QString startScript = QStringLiteral("wine regedit /S \"$1\" && shift && exec wine \"$@\"");

QString escaped(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    return text.replace(QLatin1Char('"'), QLatin1String("\\\""));
}

// The bytes of the texts in UTF-16, each one and the whole with a 0 at the end.
QString multipleTexts(const QStringList& texts)
{
    QStringList bytes;
    const auto append = [&bytes](ushort unit) {
        for (const int byte : { unit & 0xFF, unit >> 8 }) {
            bytes.append(QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')));
        }
    };
    for (const QString& text : texts) {
        for (const QChar character : text) {
            append(character.unicode());
        }
        append(0);
    }
    append(0);
    return QStringLiteral("hex(7):") + bytes.join(QLatin1Char(','));
}

QString registryText(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Int:
        return QStringLiteral("dword:%1").arg(value.toInt(), 8, 16, QLatin1Char('0'));
    case QMetaType::QStringList:
        return multipleTexts(value.toStringList());
    default:
        return QStringLiteral("\"%1\"").arg(escaped(value.toString()));
    }
}

} // namespace

QString WineRun::missing()
{
    for (const QString& file : { program, portDriver, gpuDriver, endSessionProgram }) {
        if (!QFile::exists(file)) {
            return QStringLiteral("There is no %1; tools/build.sh windows builds it").arg(file);
        }
    }
    const QString tool = VirtualDisplay::missingProgram();
    return tool.isEmpty() ? WinePrefix::missing() : tool + QStringLiteral(" is not installed");
}

QStringList WineRun::toThePorts()
{
    return { QStringLiteral("/skipcheck"), QStringLiteral("/inpout32") };
}

WineRun::WineRun(const VirtualDisplay& display)
    : MachineRun(QStringLiteral("MacBookPro11,3"))
    , m_display(display)
{
    setOptions({ QStringLiteral("--wine"), QFileInfo(portDriver).path() });
    setVariable(QStringLiteral("DISPLAY"), display.name());
    m_prefix.installLibrary(gpuDriver);
    const QStringList variables = m_prefix.variables();
    for (const QString& variable : variables) {
        setVariable(variable.section(QLatin1Char('='), 0, 0),
                    variable.section(QLatin1Char('='), 1));
    }
}

WineRun::~WineRun()
{
    const bool failed = QTest::currentTestFailed() && wasStarted();
    if (failed && isRunning()) {
        // A program that ends by itself leaves a complete log.
        static_cast<void>(endSession());
    }
    endWine();
    if (failed) {
        static_cast<void>(waitForEnd());
        tell(QString::fromUtf8(log()));
    }
}

void WineRun::endWine()
{
    if (!wasStarted()) {
        return;
    }
    static_cast<void>(runCommandBeside({ wineServer, QStringLiteral("-k") }));
    static_cast<void>(runCommandBeside({ wineServer, QStringLiteral("-w") }));
}

void WineRun::storeSetting(const QString& name, const QVariant& value)
{
    m_settings += QStringLiteral("\"%1\"=%2\n").arg(escaped(name), registryText(value));
}

void WineRun::storeActivePreset(const QStringList& modes)
{
    storeSetting(QStringLiteral("AppFirstRun"), 0);
    storeSetting(QStringLiteral("CustomPresets"),
                 QStringList { presetText(QStringLiteral("Mine"), modes) });
    storeSetting(QStringLiteral("ActivePreset"), QStringLiteral("Custom:0"));
}

bool WineRun::writeRegistryFile()
{
    QString text = QStringLiteral("Windows Registry Editor Version 5.00\n\n") + fonts;
    if (!m_settings.isEmpty()) {
        text += QStringLiteral("[%1]\n%2").arg(settingsKey, m_settings);
    }
    m_settings.clear();
    QFile file(path(QStringLiteral("settings.reg")));
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-16LE"); // in other files strings in "hex" are not UTF-16 either
    stream.setGenerateByteOrderMark(true);
    stream << text << Qt::flush;
    return stream.status() == QTextStream::Ok;
}

QMap<QString, QString> WineRun::storedSettings()
{
    const QString file = path(QStringLiteral("stored.reg"));
    QFile::remove(file);
    QMap<QString, QString> result;
    QFile stored(file);
    if (runCommandBeside(
            { wine, QStringLiteral("regedit"), QStringLiteral("/E"), file, settingsKey })
            != 0
        || !stored.open(QIODevice::ReadOnly)) {
        return result;
    }
    QTextStream lines(&stored);
    lines.setCodec("UTF-16");
    while (!lines.atEnd()) {
        // "Name"="text" or "Name"=dword:00000001
        const QString line = lines.readLine();
        if (line.startsWith(QLatin1Char('"'))) {
            const QString value = line.section(QLatin1Char('='), 1);
            result.insert(line.section(QLatin1Char('"'), 1, 1),
                          value.startsWith(QLatin1Char('"')) ? value.mid(1).chopped(1)
                                                             : value.section(QLatin1Char(':'), 1));
        }
    }
    return result;
}

bool WineRun::hasRegistryKey(const QString& key)
{
    return runCommandBeside({ wine, QStringLiteral("reg"), QStringLiteral("query"), key }) == 0;
}

bool WineRun::hasSettings() { return hasRegistryKey(settingsKey); }

bool WineRun::start(const QStringList& arguments)
{
    return writeRegistryFile()
        && startCommand(QStringList { QStringLiteral("/bin/sh"), QStringLiteral("-c"), startScript,
                                      QStringLiteral("sh"), path(QStringLiteral("settings.reg")),
                                      program }
                        + arguments);
}

int WineRun::runBeside(const QStringList& arguments)
{
    return runCommandBeside(QStringList { wine, program } + arguments);
}

bool WineRun::startFirst()
{
    const QString box = QStringLiteral("Exception");
    return start() && !waitForWindow(box).isEmpty() && waitFor([this, &box] {
               // It may not have the keyboard yet.
               return !isWindowVisible(box) || !isRunning() || !m_display.acceptBox();
           });
}

QString WineRun::waitForWindow(const QString& title)
{
    QString window;
    static_cast<void>(waitFor([this, &window, &title] {
        window = m_display.findWindow(title);
        return !window.isEmpty() || !isRunning();
    }));
    return window;
}

bool WineRun::isWindowVisible(const QString& title) const
{
    return !m_display.findWindow(title).isEmpty();
}

bool WineRun::closeWindows()
{
    return runCommandBeside({ wine, QStringLiteral("taskkill"), QStringLiteral("/im"),
                              QFileInfo(program).fileName() })
        == 0;
}

bool WineRun::endSession()
{
    return runCommandBeside({ wine, endSessionProgram }) == 0 && waitForEnd() && exitCode() == 0;
}

bool WineRun::logOff()
{
    return runCommandBeside({ wine, QStringLiteral("wineboot"), QStringLiteral("--end-session"),
                              QStringLiteral("--shutdown") })
        == 0
        && waitForEnd();
}

QByteArray WineRun::log() const
{
    const QString file = m_prefix.usersFile(QStringLiteral("Brisora.log"));
    return file.isEmpty() ? QByteArray() : contents(file);
}
