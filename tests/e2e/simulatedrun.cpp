#include "tests/e2e/simulatedrun.h"

#include <csignal>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSettings>
#include <QTest>

namespace {

constexpr int pollInterval = 20; // milliseconds
constexpr int longestExcerpt = 20000; // characters of a trace after a failure
constexpr int controlTimeout = 10000; // milliseconds

// Tells what it will be surrounded by, and lets the machine be changed before
// the program takes this shell's place.
const QString holdScript
    = QStringLiteral("env -0 > \"$HOME/environment\" && mv \"$HOME/environment\" \"$HOME/ready\" "
                     "&& read -r line && exec \"$@\"");

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

SimulatedRun::SimulatedRun(const QString& machine)
    : m_machine(machine)
{
    if (!m_folder.isValid()) {
        qFatal("No temporary folder: %s", qPrintable(m_folder.errorString()));
    }
}

SimulatedRun::~SimulatedRun()
{
    if (QTest::currentTestFailed() && m_process) {
        // A program that ends by itself leaves a complete log.
        sendSignal(SIGTERM);
        static_cast<void>(waitForEnd());
        qInfo("Standard error: %s", qPrintable(m_standardError));
        qInfo("Log: %s", qPrintable(log()));
        qInfo("Trace: %s",
              contents(path(QStringLiteral("trace"))).right(longestExcerpt).constData());
    }
}

QString SimulatedRun::program() { return QStringLiteral(BRISORA_PROGRAM); }

QString SimulatedRun::steeredProgram() { return QStringLiteral(STEERED_PROGRAM); }

QString SimulatedRun::path(const QString& name) const { return m_folder.filePath(name); }

void SimulatedRun::setVariable(const QString& name, const QString& value)
{
    m_set.append(name + QLatin1Char('=') + value);
}

QString SimulatedRun::settingsFile() const
{
    return path(QStringLiteral("config/Orvane Software/Brisora.conf"));
}

void SimulatedRun::storeSetting(const QString& key, const QVariant& value)
{
    QDir().mkpath(QFileInfo(settingsFile()).path());
    QSettings settings(settingsFile(), QSettings::NativeFormat);
    settings.setValue(key, value);
}

QVariant SimulatedRun::storedSetting(const QString& key) const
{
    return QSettings(settingsFile(), QSettings::NativeFormat).value(key);
}

QString SimulatedRun::presetText(const QString& name, const QStringList& modes)
{
    const QString text = name + QLatin1Char('|') + modes.join(QLatin1Char('|'));
    return QString::fromLatin1(text.toUtf8().toBase64());
}

void SimulatedRun::storeActivePreset(const QStringList& modes)
{
    storeSetting(QStringLiteral("AppFirstRun"), 0);
    storeSetting(QStringLiteral("CustomPresets"),
                 QStringList { presetText(QStringLiteral("Mine"), modes) });
    storeSetting(QStringLiteral("ActivePreset"), QStringLiteral("Custom:0"));
}

QStringList SimulatedRun::command(const QString& program, const QStringList& arguments) const
{
    QStringList words { QStringLiteral("env") };
    for (const QString& name : m_unset) {
        words << QStringLiteral("-u") << name;
    }
    const QStringList shell { QStringLiteral("/bin/sh"), QStringLiteral("-c"), holdScript,
                              QStringLiteral("sh") };
    return words + m_set + shell + QStringList { program } + arguments;
}

bool SimulatedRun::start(const QStringList& arguments, const QString& otherProgram)
{
    m_trace.clear();
    m_traceRead = 0;
    m_standardOutput.clear();
    m_standardError.clear();
    for (const char* leftOver : { "home/ready", "trace", "report" }) {
        QFile::remove(path(QLatin1String(leftOver)));
    }
    const QStringList options { QStringLiteral("run"),       QStringLiteral("--quiet"),
                                QStringLiteral("--machine"), m_machine,
                                QStringLiteral("--load"),    m_load,
                                QStringLiteral("--speed"),   QString::number(m_speed),
                                QStringLiteral("--folder"),  m_folder.path(),
                                QStringLiteral("--trace"),   path(QStringLiteral("trace")),
                                QStringLiteral("--report"),  path(QStringLiteral("report")),
                                QStringLiteral("--") };
    m_process = std::make_unique<ProcessGroup>();
    m_process->start(QStringLiteral(MACSIM_PROGRAM),
                     options
                         + command(otherProgram.isEmpty() ? program() : otherProgram, arguments));
    return m_process->waitForStarted() && release();
}

bool SimulatedRun::release()
{
    const QString ready = path(QStringLiteral("home/ready"));
    if (!waitFor([this, &ready] { return QFile::exists(ready) || !isRunning(); }) || !isRunning()) {
        return false;
    }
    for (const QStringList& verb : qAsConst(m_verbsBeforeStart)) {
        if (!control(verb)) {
            return false;
        }
    }
    m_verbsBeforeStart.clear();
    return m_process->write("\n") == 1;
}

bool SimulatedRun::isRunning() const
{
    return m_process && m_process->state() != QProcess::NotRunning;
}

int SimulatedRun::runBeside(const QStringList& arguments, const QString& otherProgram)
{
    QProcessEnvironment environment;
    const auto variables = contents(path(QStringLiteral("home/ready"))).split('\0');
    for (const QByteArray& variable : variables) {
        const auto equals = static_cast<int>(variable.indexOf('='));
        if (equals > 0) {
            environment.insert(QString::fromLocal8Bit(variable.left(equals)),
                               QString::fromLocal8Bit(variable.mid(equals + 1)));
        }
    }
    ProcessGroup second;
    second.setProcessEnvironment(environment);
    second.start(otherProgram.isEmpty() ? program() : otherProgram, arguments);
    return second.waitForFinished() && second.exitStatus() == QProcess::NormalExit
        ? second.exitCode()
        : -1;
}

bool SimulatedRun::control(const QStringList& verb, QString* answer)
{
    QProcess process;
    process.start(QStringLiteral(MACSIM_PROGRAM),
                  QStringList { QStringLiteral("ctl"), QStringLiteral("--socket"),
                                path(QStringLiteral("macsim.sock")) }
                      + verb);
    if (!process.waitForFinished(controlTimeout)) {
        process.kill();
        process.waitForFinished();
        return false;
    }
    if (answer != nullptr) {
        *answer = QString::fromUtf8(process.readAllStandardOutput());
    }
    const bool done = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!done) {
        qWarning("%s: %s", qPrintable(verb.join(QLatin1Char(' '))),
                 process.readAllStandardError().constData());
    }
    return done;
}

QJsonObject SimulatedRun::state()
{
    QString text;
    return control({ QStringLiteral("state") }, &text)
        ? QJsonDocument::fromJson(text.toUtf8()).object()
        : QJsonObject();
}

QString SimulatedRun::ask(const QString& line, int milliseconds)
{
    m_process->write(line.toUtf8() + '\n');
    if (!waitFor(
            [this] {
                collectOutput();
                return m_standardOutput.contains('\n') || !isRunning();
            },
            milliseconds)) {
        return {};
    }
    const auto end = static_cast<int>(m_standardOutput.indexOf('\n'));
    if (end < 0) {
        return {};
    }
    const QString answer = QString::fromUtf8(m_standardOutput.left(end));
    m_standardOutput.remove(0, end + 1);
    return answer;
}

void SimulatedRun::collectOutput()
{
    m_standardOutput += m_process->readAllStandardOutput();
    m_standardError += QString::fromUtf8(m_process->readAllStandardError());
}

const TraceLog& SimulatedRun::traceLog()
{
    QFile file(path(QStringLiteral("trace")));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(m_traceRead)) {
        return m_trace;
    }
    const QByteArray news = file.readAll();
    int begin = 0;
    for (int end = 0; (end = static_cast<int>(news.indexOf('\n', begin))) >= 0; begin = end + 1) {
        const QByteArray line = news.mid(begin, end - begin);
        const auto parsed = TraceLine::parse(QString::fromUtf8(line));
        if (!parsed) {
            qFatal("Not a line of a trace: %s", line.constData());
        }
        m_trace.push_back(*parsed);
    }
    m_traceRead += begin;
    return m_trace;
}

bool SimulatedRun::waitFor(const std::function<bool()>& condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QTest::qWait(pollInterval);
    }
    return true;
}

int SimulatedRun::waitForLine(const LineTest& test, std::size_t from, int milliseconds)
{
    int index = -1;
    const bool found = waitFor(
        [this, &test, &index, from] {
            const bool mayComeStill = isRunning();
            index = trace::indexOf(traceLog(), test, from);
            return index >= 0 || !mayComeStill;
        },
        milliseconds);
    return found ? index : -1;
}

bool SimulatedRun::waitUntilLoaded()
{
    // The load reads each speed once, the update task from then on.
    return waitFor([this] {
               return trace::count(traceLog(), trace::read("F0Ac")) >= 3 || !isRunning();
           })
        && isRunning();
}

void SimulatedRun::sendSignal(int number) { m_process->sendSignal(number); }

bool SimulatedRun::waitForEnd(int milliseconds)
{
    const bool ended = waitFor([this] { return !isRunning(); }, milliseconds);
    collectOutput();
    return ended && m_process->exitStatus() == QProcess::NormalExit;
}

bool SimulatedRun::terminate()
{
    sendSignal(SIGTERM);
    return waitForEnd() && exitCode() == 0;
}

QJsonObject SimulatedRun::report() const
{
    return QJsonDocument::fromJson(contents(path(QStringLiteral("report")))).object();
}

QStringList SimulatedRun::leftovers(bool withProtocolErrors) const
{
    const QJsonObject last = report();
    if (last.isEmpty()) {
        return { QStringLiteral("no report") };
    }
    QStringList result;
    const int bits = last[QLatin1String("controlBits")].toInt(-1);
    if (bits != 0) {
        result.append(QStringLiteral("control bits %1").arg(bits));
    }
    const QJsonArray fans = last[QLatin1String("fans")].toArray();
    for (const QJsonValue& fan : fans) {
        const int outside = fan[QLatin1String("targetsOutsideLimits")].toInt(-1);
        if (outside != 0) {
            result.append(QStringLiteral("%1 targets outside the limits of %2")
                              .arg(outside)
                              .arg(fan[QLatin1String("name")].toString()));
        }
    }
    const int errors = last[QLatin1String("protocolErrors")][QLatin1String("total")].toInt(-1);
    if (withProtocolErrors && errors != 0) {
        result.append(QStringLiteral("%1 protocol errors").arg(errors));
    }
    return result;
}

QString SimulatedRun::log() const
{
    return QString::fromUtf8(contents(path(QStringLiteral("tmp/Brisora.log"))));
}
