#include "host/HostWindows.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/FilterClause.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "demo/DemoData.h"
#include "host/BookChooser.h"
#include "host/Cli.h"
#include "host/HostRights.h"
#include "host/PartnerPicker.h"
#include "output/widgets/frmPrikazTeksta.h"
#include "session/Clock.h"
#include "session/Dates.h"
#include "session/HostServices.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/db/ConnectionString.h"
#include "session/widgets/DialogInteraction.h"

#include <QApplication>
#include <QDate>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QPixmap>
#include <QPushButton>
#include <QTextStream>
#include <QTimer>

namespace knjige::host
{
namespace
{

using cli::complain;
using cli::Done;
using cli::Failed;
using cli::Usage;

bool refuse(int* code, const QString& message)
{
    *code = complain(message, Usage);
    return false;
}

const QStringList kValueOptions = { QStringLiteral("--db"), QStringLiteral("--conn"), QStringLiteral("--company"),
    QStringLiteral("--year"), QStringLiteral("--operator"), QStringLiteral("--level"), QStringLiteral("--screenshot"),
    QStringLiteral("--period"), QStringLiteral("--prod") };

using cli::Options;

Options parseOptions(const QStringList& args)
{
    return cli::commandOptions(args, kValueOptions, {});
}

bool wantsHelp(const Options& o)
{
    return o.flags.contains(QStringLiteral("--help"));
}

bool hasDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

QString noDisplayText()
{
    return QStringLiteral(
        "Nema grafičkog zaslona: varijable DISPLAY i WAYLAND_DISPLAY nisu postavljene, pa se prozori ne mogu "
        "prikazati.\n"
        "Pokrenite program na virtualnom zaslonu (paket xvfb):\n"
        "  xvfb-run -a knjige\n"
        "  xvfb-run -a knjige open 96\n"
        "ili snimite prozor u sliku bez zaslona:\n"
        "  knjige --screenshot izbor.png\n"
        "  knjige open 96 --screenshot knjiga.png\n");
}

// Stands in for the person while a window is drawn into a picture: messages go to
// standard error, questions take their default, a dialog is confirmed with its
// default button (and closed if that does not close it), nothing else is chosen.
class UnattendedInteraction final : public Interaction
{
public:
    Answer show(const Message& m) override
    {
        QTextStream(stderr) << (m.title.isEmpty() ? QString() : m.title + QStringLiteral(": ")) << m.text << '\n';
        return m.buttons == Buttons::Ok ? Answer::Ok : m.defaultAnswer;
    }
    int exec(QDialog& dialog) override
    {
        QTimer::singleShot(0, &dialog, [&dialog] {
            for (QPushButton* b : dialog.findChildren<QPushButton*>())
                if (b->isDefault() && b->isVisible() && b->isEnabled()) {
                    b->click();
                    break;
                }
        });
        QTimer::singleShot(200, &dialog, [&dialog] {
            if (dialog.isVisible())
                dialog.reject();
        });
        return dialog.exec();
    }
    QString chooseSaveFile(const FileChoice&) override { return {}; }
    QString chooseOpenFile(const FileChoice&) override { return {}; }
    bool startProgram(const QString&, const QStringList&) override { return false; }
};

// The connection the window commands work on; empty with the problem printed. The
// demo database is made where it is missing, and only that one.
QString connectionFor(const Options& o, bool* isDemo, int* code)
{
    *isDemo = false;
    if (o.values.contains(QStringLiteral("--db")) && o.values.contains(QStringLiteral("--conn"))) {
        *code = complain(QStringLiteral("Zadajte bazu s --db ili s --conn, ne oboje."), Usage);
        return {};
    }
    if (o.values.contains(QStringLiteral("--conn"))) {
        const QString conn = o.values.value(QStringLiteral("--conn"));
        const db::ConnectionTarget target = db::parseConnectionString(conn);
        if (target.kind == db::ConnectionTarget::Kind::Invalid) {
            *code = complain(target.error);
            return {};
        }
        if (const QString problem = target.kind == db::ConnectionTarget::Kind::Sqlite
                ? cli::databaseFileProblem(target.sqlitePath, QStringLiteral("."))
                : QString();
            !problem.isEmpty()) {
            *code = complain(problem);
            return {};
        }
        return conn;
    }
    if (o.values.contains(QStringLiteral("--db"))) {
        const QString path = o.values.value(QStringLiteral("--db"));
        if (const QString problem
            = cli::databaseFileProblem(path, QStringLiteral(" (novu bazu pravi: knjige init --db PUTANJA)."));
            !problem.isEmpty()) {
            *code = complain(problem);
            return {};
        }
        return QStringLiteral("sqlite:") + QFileInfo(path).absoluteFilePath();
    }
    const QString demo = cli::defaultDatabasePath();
    if (!QFileInfo(demo).isFile() && cli::runInit({ QStringLiteral("--demo") }) != 0) {
        *code = complain(QStringLiteral("Demo bazu %1 nije moguće napraviti.").arg(QDir::toNativeSeparators(demo)));
        return {};
    }
    *isDemo = true;
    return QStringLiteral("sqlite:") + demo;
}

// The session values from the command line, checked before any database is touched.
bool valuesFor(const Options& o, BookRequest* r, int* code)
{
    bool ok = true;
    r->year = qint16(clock::today().year());
    if (o.values.contains(QStringLiteral("--year"))) {
        const int year = o.values.value(QStringLiteral("--year")).toInt(&ok);
        if (!ok || year < 1900 || year > 2100)
            return refuse(code, QStringLiteral("Neispravna godina: %1").arg(o.values.value(QStringLiteral("--year"))));
        r->year = qint16(year);
    }
    r->company = demo::BrojPoduzeca;
    if (o.values.contains(QStringLiteral("--company"))) {
        const int company = o.values.value(QStringLiteral("--company")).toInt(&ok);
        if (!ok || company < 1 || company > 32767)
            return refuse(
                code, QStringLiteral("Neispravan broj firme: %1").arg(o.values.value(QStringLiteral("--company"))));
        r->company = qint16(company);
    }
    r->operatorName = o.values.value(QStringLiteral("--operator"), defaultOperatorName());
    r->level = o.values.value(QStringLiteral("--level"), QStringLiteral("0"));
    if (const QString problem = browser::accessLevelProblem(r->level); !problem.isEmpty())
        return refuse(code, problem);
    return true;
}

// The request from the command line; the company is the database's first one when
// none is given (the demo company in the demo database).
bool requestFor(const Options& o, BookRequest* r, int* code)
{
    if (!valuesFor(o, r, code))
        return false;
    bool isDemo = false;
    r->connString = connectionFor(o, &isDemo, code);
    if (r->connString.isEmpty())
        return false;
    // A file that is no database (or a server that does not answer) is named as such,
    // not taken for an operator without rights once a book is opened.
    db::Database db;
    if (!db.connect(r->connString)) {
        *code = complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + db.errorDescription());
        return false;
    }
    if (!o.values.contains(QStringLiteral("--company")) && !isDemo) {
        db::ResultSet rs;
        if (db.open(QStringLiteral("SELECT MIN(BrojPoduzeca) AS B FROM dbo.CONFIG"), rs) && !rs.isEmpty()
            && !rs.isNull(0, 0))
            r->company = qint16(rs.integer(0, 0));
    }
    return true;
}

int saveScreenshot(QWidget* window, const QString& file)
{
    window->show();
    window->raise();
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    if (!window->grab().save(file))
        return complain(QStringLiteral("Sliku %1 nije moguće spremiti.").arg(file));
    QTextStream(stdout) << QStringLiteral("Slika prozora spremljena: %1\n").arg(file);
    return Done;
}

// Ends the session's connections and the host's services while the application
// still exists: the data layer's connections must not outlive it.
// The seam in force before is given back, so a caller's own seam survives.
struct WindowsScope {
    ~WindowsScope()
    {
        session().closeDb();
        installHostServices({});
        if (previous)
            setInteraction(std::move(previous));
    }
    std::unique_ptr<Interaction> previous;
};

// What every window command does first: the seam for the person and the host's
// services. While drawing into a picture nobody is at the screen.
void startWindows(const Options& o, WindowsScope& scope)
{
    QApplication::setApplicationDisplayName(QStringLiteral("Knjige"));
    if (o.values.contains(QStringLiteral("--screenshot")))
        scope.previous = setInteraction(std::make_unique<UnattendedInteraction>());
    else
        ensureDialogInteraction();
    output::useTextViewerForLongTexts();
    installProgramServices();
}

// The filter the open command puts on the book after opening it.
struct PeriodRequest {
    bool given = false;
    QDate from; // invalid: the whole working year
    QDate to;
    qint32 salesPoint = 0; // 0: the one the opening question gave
};

bool periodFor(const Options& o, int book, PeriodRequest* p, int* code)
{
    const QString prod = o.values.value(QStringLiteral("--prod"));
    if (o.values.contains(QStringLiteral("--prod"))) {
        bool ok = false;
        p->salesPoint = prod.toInt(&ok);
        if (!books::isTradeBook(book))
            return refuse(code, QStringLiteral("Opcija --prod vrijedi samo za trgovačke knjige (125, 126)."));
        if (!ok || p->salesPoint <= 0)
            return refuse(code, QStringLiteral("Neispravan broj prodavnice: %1").arg(prod));
        p->given = true;
    }
    if (!o.values.contains(QStringLiteral("--period")))
        return true;
    BookRequest values;
    if (!valuesFor(o, &values, code))
        return false;
    QString error;
    const auto period = browser::parsePeriod(o.values.value(QStringLiteral("--period")), values.year, &error);
    if (!period)
        return refuse(code, error);
    p->given = true;
    p->from = period->first;
    p->to = period->second;
    return true;
}

int bookCodeOf(const QString& text)
{
    const books::BookKind* b = books::findBookByName(text);
    return b ? b->code : 0;
}

QString bookList()
{
    QString out;
    for (const books::BookKind& b : books::allBooks())
        out += QStringLiteral("  %1  %2\n").arg(b.code, 3).arg(b.caption);
    return out;
}

QString commonOptions()
{
    return QStringLiteral(
        "  --db PUTANJA      ugrađena baza (zadano: demo baza %1, napravi se pri prvom pokretanju)\n"
        "  --conn TEKST      connection string baze (SQL Server: Provider=SQLOLEDB.1;Data Source=...)\n"
        "  --company BROJ    broj firme (zadano: firma iz baze)\n"
        "  --year GODINA     radna godina (zadano: tekuća)\n"
        "  --operator IME    ime operatera (zadano: korisnik sustava)\n"
        "  --level N         nivo pristupa, jedna znamenka (zadano: 0)\n"
        "  --screenshot SLIKA.png  nacrta prozor u sliku (bez zaslona) i završi\n")
        .arg(QDir::toNativeSeparators(cli::defaultDatabasePath()));
}

} // namespace

void installProgramServices()
{
    HostServices services;
    services.rights = std::make_unique<PravaRights>();
    services.partners = std::make_unique<KomitentRegister>(KomitentRegister::Kind::Partners);
    services.shops = std::make_unique<KomitentRegister>(KomitentRegister::Kind::Shops);
    installHostServices(std::move(services));
}

int prepareWindowSystem(const QStringList& args)
{
    const bool picture
        = args.contains(QStringLiteral("--screenshot")) || !args.filter(QStringLiteral("--screenshot=")).isEmpty();
    const bool help = args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"));
    if ((picture || help) && !hasDisplay())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!hasDisplay())
        return complain(noDisplayText());
    return Done;
}

QString chooserUsage()
{
    return QStringLiteral("knjige [opcije]\n"
                          "  Izbor knjige: dvanaest knjiga, firma, radna godina, operater; \"Otvori\" otvara\n"
                          "  knjigu kao što to čini glavni program.\n")
        + commonOptions() + QStringLiteral("  Primjer: knjige --db knjige.db --operator Ana\n");
}

QString openUsage()
{
    return QStringLiteral("knjige open KNJIGA [opcije]\n"
                          "  Otvori jednu knjigu kao glavni program. KNJIGA je šifra ili naziv klase:\n")
        + bookList() + commonOptions()
        + QStringLiteral("  --period OD-DO    samo period, kao filter po datumima (01.03.2026-31.03.2026)\n"
                         "  --prod BROJ       trgovačke knjige: prodavnica (inače ona iz pitanja pri otvaranju)\n"
                         "  Primjer: knjige open 96 --db knjige.db --period 01.03.2026-31.03.2026\n");
}

int runChooser(const QStringList& args)
{
    const Options o = parseOptions(args);
    if (!o.error.isEmpty())
        return complain(o.error + u'\n' + chooserUsage(), Usage);
    if (wantsHelp(o)) {
        QTextStream(stdout) << chooserUsage();
        return Done;
    }
    if (!o.positional.isEmpty())
        return complain(QStringLiteral("Nepoznata naredba: %1\n").arg(o.positional.first()) + chooserUsage(), Usage);
    for (const QString& option : { QStringLiteral("--period"), QStringLiteral("--prod") })
        if (o.values.contains(option))
            return complain(QStringLiteral("Opcija %1 ide uz naredbu open.\n").arg(option) + chooserUsage(), Usage);
    BookRequest request;
    int code = Done;
    if (!requestFor(o, &request, &code))
        return code;
    QStringList given;
    for (const char* key : { "company", "operator", "level" })
        if (o.values.contains(QStringLiteral("--") + QString::fromLatin1(key)))
            given << QString::fromLatin1(key);
    WindowsScope scope;
    startWindows(o, scope);
    BookChooser chooser(BookChooser::remembered(request, given));
    chooser.show();
    if (o.values.contains(QStringLiteral("--screenshot")))
        return saveScreenshot(&chooser, o.values.value(QStringLiteral("--screenshot")));
    return QApplication::exec();
}

int runOpen(const QStringList& args)
{
    const Options o = parseOptions(args);
    if (!o.error.isEmpty())
        return complain(o.error + u'\n' + openUsage(), Usage);
    if (wantsHelp(o)) {
        QTextStream(stdout) << openUsage();
        return Done;
    }
    if (o.positional.size() != 1)
        return complain(QStringLiteral("Zadajte jednu knjigu.\n") + openUsage(), Usage);
    const int book = bookCodeOf(o.positional.first());
    if (!book)
        return complain(QStringLiteral("Nepoznata knjiga: %1\n").arg(o.positional.first()) + openUsage(), Usage);
    int code = Done;
    PeriodRequest period;
    if (!periodFor(o, book, &period, &code))
        return code;
    BookRequest request;
    if (!requestFor(o, &request, &code))
        return code;
    WindowsScope scope;
    startWindows(o, scope);
    QWidget* window = openBook(book, request);
    if (!window)
        return complain(QStringLiteral("Knjiga %1 nije otvorena.").arg(book));
    // The period goes through the filter as a confirmed dialog with only the dates
    // would; a trade book keeps the sales point its opening question gave unless one
    // was named.
    if (auto* w = qobject_cast<browser::frmSifarnikKnj*>(window); w && period.given) {
        const QDate from = period.from.isValid() ? period.from : dates::firstOfYear(request.year);
        const QDate to = period.to.isValid() ? period.to : dates::lastOfYear(request.year);
        const qint32 shop = period.salesPoint ? period.salesPoint : w->BrojProd();
        const std::optional<Partner> named = shop ? hostServices().shops->find(shop) : std::nullopt;
        w->applyFilter(browser::periodFilter(
            book, from, to, request.company, request.year, shop, named ? named->ImeKomit1 : QString()));
    }
    if (o.values.contains(QStringLiteral("--screenshot"))) {
        const int result = saveScreenshot(window, o.values.value(QStringLiteral("--screenshot")));
        window->close();
        return result;
    }
    return QApplication::exec();
}

} // namespace knjige::host
