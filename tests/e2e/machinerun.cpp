#include "tests/e2e/machinerun.h"

#include <cmath>

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace {

constexpr int pollInterval = 20; // milliseconds
constexpr int longestExcerpt = 20000; // characters of a trace after a failure
constexpr int controlTimeout = 10000; // milliseconds

// Tells what it will be surrounded by, and lets the machine be changed before
// the command takes this shell's place.
const QString holdScript
    = QStringLiteral("env -0 > \"$HOME/environment\" && mv \"$HOME/environment\" \"$HOME/ready\" "
                     "&& read -r line && exec \"$@\"");

} // namespace

MachineRun::MachineRun(const QString& machine)
    : m_machine(machine)
{
    if (!m_folder.isValid()) {
        qFatal("No temporary folder: %s", qPrintable(m_folder.errorString()));
    }
}

MachineRun::~MachineRun() = default;

QByteArray MachineRun::contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void MachineRun::tell(const QString& log) const
{
    qInfo("Standard error: %s", qPrintable(m_standardError));
    qInfo("Log: %s", qPrintable(log));
    qInfo("Trace: %s", contents(path(QStringLiteral("trace"))).right(longestExcerpt).constData());
}

QString MachineRun::path(const QString& name) const { return m_folder.filePath(name); }

void MachineRun::setVariable(const QString& name, const QString& value)
{
    m_set.append(name + QLatin1Char('=') + value);
}

QString MachineRun::presetText(const QString& name, const QStringList& modes)
{
    const QString text = name + QLatin1Char('|') + modes.join(QLatin1Char('|'));
    return QString::fromLatin1(text.toUtf8().toBase64());
}

QStringList MachineRun::surrounded(const QStringList& command) const
{
    QStringList words { QStringLiteral("env") };
    for (const QString& name : m_unset) {
        words << QStringLiteral("-u") << name;
    }
    const QStringList shell { QStringLiteral("/bin/sh"), QStringLiteral("-c"), holdScript,
                              QStringLiteral("sh") };
    return words + m_set + shell + command;
}

bool MachineRun::startCommand(const QStringList& command)
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
                                QStringLiteral("--report"),  path(QStringLiteral("report")) };
    m_process = std::make_unique<ProcessGroup>();
    m_process->start(QStringLiteral(MACSIM_PROGRAM),
                     options + m_options + QStringList { QStringLiteral("--") }
                         + surrounded(command));
    return m_process->waitForStarted() && release();
}

bool MachineRun::release()
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

bool MachineRun::isRunning() const
{
    return m_process && m_process->state() != QProcess::NotRunning;
}

int MachineRun::runCommandBeside(const QStringList& command)
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
    if (environment.isEmpty()) {
        return -1;
    }
    ProcessGroup second;
    second.setProcessEnvironment(environment);
    second.start(command.first(), command.mid(1));
    return second.waitForFinished() && second.exitStatus() == QProcess::NormalExit
        ? second.exitCode()
        : -1;
}

bool MachineRun::control(const QStringList& verb, QString* answer)
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

QJsonObject MachineRun::state()
{
    QString text;
    return control({ QStringLiteral("state") }, &text)
        ? QJsonDocument::fromJson(text.toUtf8()).object()
        : QJsonObject();
}

QString MachineRun::askCommand(const QString& line, int milliseconds)
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

void MachineRun::collectOutput()
{
    m_standardOutput += m_process->readAllStandardOutput();
    m_standardError += QString::fromUtf8(m_process->readAllStandardError());
}

const TraceLog& MachineRun::traceLog()
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

bool MachineRun::waitFor(const std::function<bool()>& condition, int milliseconds)
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

bool MachineRun::waitForSpeed(int fan, int rpm)
{
    constexpr double tolerance = 30.0; // RPM; speeds are never quite still
    return waitFor([this, fan, rpm] {
        const QJsonArray fans = state()[QLatin1String("fans")].toArray();
        return std::abs(fans[fan][QLatin1String("actual")].toDouble() - rpm) < tolerance;
    });
}

int MachineRun::waitForLine(const LineTest& test, std::size_t from, int milliseconds)
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

bool MachineRun::waitUntilLoaded()
{
    // The load reads each speed once, the update task from then on.
    return waitFor([this] {
               return trace::count(traceLog(), trace::read("F0Ac")) >= 3 || !isRunning();
           })
        && isRunning();
}

void MachineRun::sendSignal(int number) { m_process->sendSignal(number); }

bool MachineRun::waitForEnd(int milliseconds)
{
    const bool ended = waitFor([this] { return !isRunning(); }, milliseconds);
    collectOutput();
    return ended && m_process->exitStatus() == QProcess::NormalExit;
}

QJsonObject MachineRun::report() const
{
    return QJsonDocument::fromJson(contents(path(QStringLiteral("report")))).object();
}

QStringList MachineRun::leftovers(bool withProtocolErrors) const
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
