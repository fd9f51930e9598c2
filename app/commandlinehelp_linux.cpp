#include "app/commandlinehelp.h"

#include <cstdio>
#include <string_view>

#include "build_config.h"

bool handleHelpSwitches(int argc, char** argv)
{
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument(argv[index]);
        if (argument == "--version") {
            std::printf("%s %d.%d.%d\n", BuildConfig::productName, BuildConfig::versionMajor,
                        BuildConfig::versionMinor, BuildConfig::versionPatch);
            return true;
        }
        if (argument == "--help") {
            std::printf("Usage: brisora [switches]\n"
                        "Shows temperatures and controls the fans of an Apple Mac.\n\n"
                        "  /minimized   start without showing the window\n"
                        "  /log         write the log beside the executable\n"
                        "  /smcdump     reserved, without an effect\n"
                        "  /inpout32    reach the controller by ports only\n"
                        "  /skipcheck   start on a machine that isn't recognised as a Mac\n"
                        "  /uninstall   remove the settings, and end\n"
                        "  --help       show this text, and end\n"
                        "  --version    show the version, and end\n");
            return true;
        }
    }
    return false;
}
