#include "tests/e2e/virtualdisplay.h"

#include <QStandardPaths>

namespace {

constexpr int startTimeout = 15000; // milliseconds

const QString serverProgram = QStringLiteral("Xvfb");
const QString windowTool = QStringLiteral("xdotool");
const QString pictureTool = QStringLiteral("import");

} // namespace

QString VirtualDisplay::missingProgram()
{
    for (const QString& program : { serverProgram, windowTool, pictureTool }) {
        if (QStandardPaths::findExecutable(program).isEmpty()) {
            return program;
        }
    }
    return {};
}

bool VirtualDisplay::start()
{
    m_server.start(serverProgram,
                   { QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                     QStringLiteral("0"), QStringLiteral("1280x1024x24"),
                     QStringLiteral("-nolisten"), QStringLiteral("tcp") });
    while (m_server.waitForReadyRead(startTimeout)) {
        if (m_server.canReadLine()) {
            m_name = QLatin1Char(':') + QString::fromLatin1(m_server.readLine()).trimmed();
            return true;
        }
    }
    return false;
}

bool VirtualDisplay::runTool(const QString& program, const QStringList& arguments,
                             QString& output) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_name);
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.start(program, arguments);
    if (!tool.waitForFinished()) {
        return false;
    }
    output = QString::fromUtf8(tool.readAllStandardOutput());
    return tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0;
}

QString VirtualDisplay::findWindow(const QString& title) const
{
    // The tool's own search by name finds no window whose title is Qt's choice.
    QString found;
    if (!runTool(windowTool,
                 { QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                   QStringLiteral("--class"), QStringLiteral("brisora") },
                 found)) {
        return {};
    }
    const QStringList windows = found.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& window : windows) {
        QString name;
        if (runTool(windowTool, { QStringLiteral("getwindowname"), window }, name)
            && name.trimmed() == title) {
            return window;
        }
    }
    return {};
}

bool VirtualDisplay::acceptBox() const { return pressKeys({ QStringLiteral("Return") }); }

bool VirtualDisplay::click(const QPoint& place) const
{
    QString ignored;
    return runTool(windowTool,
                   { QStringLiteral("mousemove"), QStringLiteral("--sync"),
                     QString::number(place.x()), QString::number(place.y()),
                     QStringLiteral("click"), QStringLiteral("1") },
                   ignored);
}

bool VirtualDisplay::pressKeys(const QStringList& keys) const
{
    QString ignored;
    return runTool(windowTool, QStringList { QStringLiteral("key") } + keys, ignored);
}

bool VirtualDisplay::type(const QString& text) const
{
    QString ignored;
    return runTool(windowTool, { QStringLiteral("type"), text }, ignored);
}

bool VirtualDisplay::saveScreenshot(const QString& window, const QString& file) const
{
    QString ignored;
    return runTool(pictureTool, { QStringLiteral("-window"), window, file }, ignored);
}
