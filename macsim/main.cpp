// The simulated Mac's command line.

#include <cstdio>

#include <QCoreApplication>

#include "macsim/model/controlverbs.h"
#include "macsim/run/ctlclient.h"
#include "macsim/run/runsession.h"

namespace {

using namespace macsim;

constexpr int usageFailure = 2;

void print(const QString& text) { std::fputs(qPrintable(text), stdout); }

int fail(const QString& text, int code)
{
    std::fprintf(stderr, "macsim: %s\n", qPrintable(text));
    return code;
}

QString help()
{
    return QStringLiteral("Runs programs inside a simulated Mac.\n\n"
                          "macsim run --machine M [OPTIONS] -- COMMAND ARGS...\n")
        + RunOptions::help()
        + QStringLiteral("\nLoad profiles: %1, or a percentage.\n"
                         "The exit code is the command's, 128 and more for a signal, 125 when the\n"
                         "machine can't start, 127 when the command can't.\n\n"
                         "macsim ctl [--socket PATH] VERB ...   (default socket: $MACSIM_SOCKET)\n")
              .arg(LoadProfile::names().join(QStringLiteral(", ")))
        + ControlVerbs::help()
        + QStringLiteral("Short keys are filled up with blanks: FS! means \"FS! \".\n"
                         "The exit code is 0, or 1 when the request failed.\n\n"
                         "macsim machines                       lists the machines\n"
                         "macsim machines --fans M              tells how many fans one has\n");
}

int runCommand(const QStringList& arguments)
{
    QString error;
    const auto options = RunOptions::parse(arguments, error);
    if (!options) {
        return fail(error, usageFailure);
    }
    const auto load = LoadProfile::fromText(options->load);
    if (!load) {
        return fail(QStringLiteral("Unknown load profile \"%1\"").arg(options->load), usageFailure);
    }
    auto machine = MachineDescription::load(options->machine, error);
    if (!machine) {
        return fail(error, RunSession::ownFailure);
    }
    auto folder = RunFolder::create(options->folder, error);
    if (!folder) {
        return fail(error, RunSession::ownFailure);
    }
    RunSession session(*options, std::move(*machine), *load, std::move(*folder));
    return session.run();
}

int control(QStringList words)
{
    QString socket = qEnvironmentVariable("MACSIM_SOCKET");
    if (words.size() >= 2 && words.first() == QLatin1String("--socket")) {
        socket = words.at(1);
        words = words.mid(2);
    }
    if (words.isEmpty()) {
        return fail(QStringLiteral("The verb is missing"), usageFailure);
    }
    const ControlReply reply = requestControl(socket, words);
    if (!reply.ok) {
        return fail(reply.text, 1);
    }
    if (!reply.text.isEmpty()) {
        print(reply.text + QLatin1Char('\n'));
    }
    return 0;
}

int machines(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        print(MachineDescription::names().join(QLatin1Char('\n')) + QLatin1Char('\n'));
        return 0;
    }
    if (arguments.size() != 2 || arguments.first() != QLatin1String("--fans")) {
        return fail(QStringLiteral("What about the machines? See \"macsim --help\""), usageFailure);
    }
    QString error;
    const auto machine = MachineDescription::load(arguments.last(), error);
    if (!machine) {
        return fail(error, RunSession::ownFailure);
    }
    print(QStringLiteral("%1\n").arg(machine->fans.size()));
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const QString verb = arguments.value(0);
    if (verb == QLatin1String("run")) {
        return runCommand(arguments.mid(1));
    }
    if (verb == QLatin1String("ctl")) {
        return control(arguments.mid(1));
    }
    if (verb == QLatin1String("machines")) {
        return machines(arguments.mid(1));
    }
    if (verb == QLatin1String("--help") || verb == QLatin1String("-h")) {
        print(help());
        return 0;
    }
    return fail(QStringLiteral("What to do? See \"macsim --help\""), usageFailure);
}
