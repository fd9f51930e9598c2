#include "macsim/run/runoptions.h"

#include <QCommandLineParser>

namespace macsim {

namespace {

constexpr double highestSpeed = 1000.0;
constexpr int longestLinger = 3600; // seconds

struct OptionRow {
    const char* name;
    const char* value; // name of its value, or empty for a switch
    const char* help;
};

constexpr OptionRow optionTable[] {
    { "machine", "M", "a machine's name (see \"macsim machines\") or the path of a .json file" },
    { "load", "PROFILE", "load profile or percentage at the start (idle)" },
    { "trace", "FILE", "writes a line for each key operation and event" },
    { "report", "FILE", "writes the machine's last state as JSON" },
    { "folder", "DIR", "uses this folder for settings and the machine's files, and keeps it" },
    { "wine", "DIR", "the command runs under Wine; its inpout32.dll is in this folder" },
    { "smcd", "FILE",
      "starts this service for the controller in the machine, and again if it ends" },
    { "speed", "N", "simulated seconds per second, for heat and fans (1)" },
    { "seed", "N", "seed of the noise on fan speeds (1)" },
    { "linger", "S",
      "waits up to S seconds after the command for its last port user to leave (0)" },
    { "status", "", "shows the machine once a second, also without a terminal" },
    { "quiet", "", "never shows it" },
};

} // namespace

QString RunOptions::help()
{
    QString text;
    for (const OptionRow& row : optionTable) {
        const QString option
            = QStringLiteral("--%1 %2").arg(QLatin1String(row.name), QLatin1String(row.value));
        text += QStringLiteral("  %1 %2\n").arg(option, -18).arg(QLatin1String(row.help));
    }
    return text;
}

std::optional<RunOptions> RunOptions::parse(const QStringList& arguments, QString& error)
{
    const int separator = static_cast<int>(arguments.indexOf(QStringLiteral("--")));
    RunOptions options;
    options.command = separator < 0 ? QStringList() : arguments.mid(separator + 1);

    QCommandLineParser parser;
    for (const OptionRow& row : optionTable) {
        parser.addOption(
            { QLatin1String(row.name), QLatin1String(row.help), QLatin1String(row.value) });
    }
    const QStringList own { QStringLiteral("macsim") };
    if (!parser.parse(own + arguments.mid(0, separator))) {
        error = parser.errorText();
        return std::nullopt;
    }
    const auto text = [&parser](const char* name) { return parser.value(QLatin1String(name)); };
    options.machine = text("machine");
    options.traceFile = text("trace");
    options.reportFile = text("report");
    options.folder = text("folder");
    options.wineFolder = text("wine");
    options.service = text("smcd");
    options.status = parser.isSet(QStringLiteral("status"));
    options.quiet = parser.isSet(QStringLiteral("quiet"));
    bool numbersValid = true;
    const auto isSet = [&parser](const char* name) { return parser.isSet(QLatin1String(name)); };
    if (isSet("load")) {
        options.load = text("load");
    }
    if (isSet("speed")) {
        options.speed = text("speed").toDouble(&numbersValid);
        numbersValid = numbersValid && options.speed > 0.0 && options.speed <= highestSpeed;
    }
    if (numbersValid && isSet("seed")) {
        options.seed = text("seed").toUInt(&numbersValid);
    }
    if (numbersValid && isSet("linger")) {
        options.lingerSeconds = text("linger").toInt(&numbersValid);
        numbersValid
            = numbersValid && options.lingerSeconds >= 0 && options.lingerSeconds <= longestLinger;
    }
    if (!numbersValid) {
        error = QStringLiteral("A number is missing or out of range");
    } else if (!parser.positionalArguments().isEmpty()) {
        error = QStringLiteral("Unexpected \"%1\"; the command stands after \"--\"")
                    .arg(parser.positionalArguments().first());
    } else if (options.machine.isEmpty()) {
        error = QStringLiteral("--machine is missing");
    } else if (options.command.isEmpty()) {
        error = QStringLiteral("The command is missing; it stands after \"--\"");
    }
    return error.isEmpty() ? std::optional(options) : std::nullopt;
}

} // namespace macsim
