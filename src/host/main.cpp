// The knjige program: the book component's own host and its administrator's tools.
// Each subcommand is one row of the table below; a command that opens windows says
// so and runs under a QApplication, the others under a QCoreApplication so that they
// work without a display.

#include "host/BookCommands.h"
#include "host/Cli.h"
#include "host/ExportCommand.h"
#include "host/HostWindows.h"
#include "host/PrintCommand.h"
#include "output/widgets/PrintMemory.h"
#include "session/Workstation.h"

#include <QApplication>
#include <QCoreApplication>
#include <QStringList>
#include <QTextStream>
#include <cstring>
#include <memory>

namespace
{

struct Command {
    const char* name;
    bool windows; // needs the window system
    int (*run)(const QStringList&); // the arguments after the command's name
    QString (*usage)();
};

const Command commands[] = {
    { "init", false, knjige::host::cli::runInit, knjige::host::cli::initUsage },
    { "query", false, knjige::host::cli::runQuery, knjige::host::cli::queryUsage },
    { "open", true, knjige::host::runOpen, knjige::host::openUsage },
    { "print", true, knjige::host::runPrint, knjige::host::printUsage },
    { "export", false, knjige::host::cli::runExport, knjige::host::cli::exportUsage },
    { "check", false, knjige::host::cli::runCheck, knjige::host::cli::checkUsage },
    { "lock", false, knjige::host::cli::runLock, knjige::host::cli::lockUsage },
    { "renumber", false, knjige::host::cli::runRenumber, knjige::host::cli::renumberUsage },
    { "insert", false, knjige::host::cli::runInsert, knjige::host::cli::insertUsage },
};

// The book chooser: the program with no command, or with only the chooser's options.
const Command chooser = { "", true, knjige::host::runChooser, knjige::host::chooserUsage };

const Command* findCommand(const char* name)
{
    for (const Command& c : commands)
        if (std::strcmp(c.name, name) == 0)
            return &c;
    return nullptr;
}

QString help()
{
    QString text = QStringLiteral("Knjige: poslovne knjige za mala poduzeća i obrtnike u BiH.\n\n"
                                  "Upotreba: knjige <naredba> [opcije]\n\nNaredbe:\n\n");
    text += chooser.usage() + u'\n';
    for (const Command& c : commands)
        text += c.usage() + u'\n';
    text += QStringLiteral("knjige --help\n  Ovaj pregled. Opcije jedne naredbe: knjige <naredba> --help\n");
    return text;
}

bool isHelp(const char* arg)
{
    return std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0 || std::strcmp(arg, "help") == 0;
}

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool windows)
{
    if (windows)
        return std::make_unique<QApplication>(argc, argv);
    return std::make_unique<QCoreApplication>(argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    const Command* command = argc > 1 ? findCommand(argv[1]) : nullptr;
    int skip = 2; // the program's name and the command's
    if (!command && (argc <= 1 || (argv[1][0] == '-' && !isHelp(argv[1])))) {
        command = &chooser;
        skip = 1;
    }
    // Printing draws pages, never windows: it needs fonts but no screen.
    if (command && std::strcmp(command->name, "print") == 0 && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (command && command->windows) {
        QStringList rest;
        for (int i = skip; i < argc; ++i)
            rest << QString::fromLocal8Bit(argv[i]);
        if (const int refused = knjige::host::prepareWindowSystem(rest))
            return refused;
    }
    // This process is ours: printing may keep the memory it frees until the end.
    knjige::output::KeptFreedMemory::allowInThisProcess();
    const auto app = makeApplication(argc, argv, command && command->windows);
    QCoreApplication::setApplicationName(QStringLiteral("knjige"));
    // Qt's own dialogs (printing, page setup, file choosers) in the workstation's language.
    if (command && command->windows)
        knjige::installQtTranslations();
    if (!command) {
        if (isHelp(argv[1])) {
            QTextStream(stdout) << help();
            return 0;
        }
        QTextStream(stderr) << QStringLiteral("Nepoznata naredba: %1\n\n").arg(QString::fromLocal8Bit(argv[1]))
                            << help();
        return 2;
    }
    return command->run(QCoreApplication::arguments().mid(skip));
}
