// The station's command line: scanctl COMMAND [ARGS].
#include <QCoreApplication>

#include <array>
#include <cstdio>

#include "tools/scanctl/command.h"

std::span<const ScanctlCommand> scanctl_commands() {
    static const std::array<ScanctlCommand, 7> commands = {{
        {"scanners", "[--host NAME] [--all-hosts] [FILE]",
         "read a Scan.conf as the station does and show what each scanner can do", run_scanners_command},
        {"info", "FILE...", "read scan files as the station loads them and show size, pixels, format and scan information",
         run_info_command},
        {"scan",
         "[--conf FILE] [--scanner NAME] [--depth D] [--dpi N] [--field F] [--peg SIDE] [--feed MODE] "
         "[--optical|--no-optical] [--flip] [--scaninfo-files] --path DIR --prefix P --list LIST "
         "[--on-misfeed A] [--on-register-failure A] | --job J --scene S --element E "
         "(--drawings LIST | --unscanned) [--db URL] ...",
         "scan a list of drawings as the station does, without a window, into a folder or an element of the "
         "production database",
         run_scan_command},
        {"register", "FILE [--side SIDE] [--dpi N] [--threshold T] [--round-holes] [--rdebug]",
         "find the peg holes of a scan file and print the centre peg and the angle", run_register_command},
        {"db", "init | create-job | create-scene | create-element | expose | show ... [--db URL] [--env NAME]",
         "make and show the production in the database: jobs, scenes, elements and their drawings", run_db_command},
        {"queue", "list | show | take | done | fail | add | work ... [--db URL] [--env NAME]",
         "list, take and finish the entries of the vectorize queue", run_queue_command},
        {"options", "[--style-line] LINE | --help [SECTION]",
         "read a vectorize option line as the vectorizer does and print it back, or the options' help",
         run_options_command},
    }};
    return commands;
}

namespace {

void print_help(std::FILE *out) {
    std::fprintf(out, "usage: scanctl COMMAND [ARGS]\n       scanctl COMMAND --help\n\n"
                      "Exit status: 0 done, 1 usage error, 2 refused or failed.\n\ncommands:\n");
    for (const ScanctlCommand &c : scanctl_commands())
        std::fprintf(out, "  %.*s %.*s\n      %.*s\n", int(c.name.size()), c.name.data(), int(c.synopsis.size()),
                     c.synopsis.data(), int(c.summary.size()), c.summary.data());
}

}  // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) {
        print_help(stderr);
        return 1;
    }
    const QString name = args.takeFirst();
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help")) {
        print_help(stdout);
        return 0;
    }
    for (const ScanctlCommand &c : scanctl_commands())
        if (name.toStdString() == c.name) return c.run(args);
    std::fprintf(stderr, "scanctl: unknown command '%s'\n\n", name.toLocal8Bit().constData());
    print_help(stderr);
    return 1;
}
