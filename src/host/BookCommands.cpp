// The administrator's commands on one book of one company and year.
#include "host/BookCommands.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/Renumbering.h"
#include "generate/SourceDatabase.h"
#include "host/Cli.h"
#include "journal/BookCheck.h"
#include "journal/PeriodLock.h"
#include "session/Dates.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/db/Database.h"

#include <QTextStream>
#include <memory>
#include <optional>

namespace knjige::host::cli
{
namespace
{

std::optional<int> wholeNumber(const QString& text, int low, int high)
{
    bool ok = false;
    const int n = text.trimmed().toInt(&ok);
    return ok && n >= low && n <= high ? std::optional<int>(n) : std::nullopt;
}

} // namespace

browser::BookQuery BookOptions::query(const std::optional<std::pair<QDate, QDate>>& period) const
{
    return browser::commandQuery(book->code, qint16(company), qint16(year), period, salesPoint);
}

int readBook(const Options& o, const QString& usage, BookOptions& b, const QStringList& alsoRequired)
{
    const auto refuse = [&usage](const QString& message) { return complain(message + u'\n' + usage, Usage); };
    if (o.positional.size() != 1)
        return refuse(o.positional.isEmpty() ? QStringLiteral("Nedostaje knjiga (šifra, na primjer 96).")
                                             : QStringLiteral("Višak argumenata: %1").arg(o.positional.join(u' ')));
    const QString name = o.positional.front().trimmed();
    b.book = books::findBookByName(name);
    if (!b.book)
        return refuse(QStringLiteral("Nepoznata knjiga: %1").arg(name));
    for (const QString& required : QStringList { QStringLiteral("--company"), QStringLiteral("--year") } + alsoRequired)
        if (o.values.value(required).trimmed().isEmpty())
            return refuse(QStringLiteral("Nedostaje opcija %1.").arg(required));
    const auto company = wholeNumber(o.values.value(QStringLiteral("--company")), 1, 32767);
    if (!company)
        return refuse(QStringLiteral("Poduzeće mora biti broj od 1 do 32767."));
    const auto year = wholeNumber(o.values.value(QStringLiteral("--year")), 1900, 2100);
    if (!year)
        return refuse(QStringLiteral("Godina mora biti broj od 1900 do 2100."));
    b.company = *company;
    b.year = *year;
    if (o.values.contains(QStringLiteral("--prod"))) {
        if (!books::isTradeBook(b.book->code))
            return refuse(QStringLiteral("Prodajno mjesto (--prod) imaju samo knjige 125 i 126."));
        const auto point = wholeNumber(o.values.value(QStringLiteral("--prod")), 1, 2147483647);
        if (!point)
            return refuse(QStringLiteral("Prodajno mjesto mora biti pozitivan broj."));
        b.salesPoint = *point;
    }
    return Done;
}

namespace
{

const QStringList kBookValues = { QStringLiteral("--db"), QStringLiteral("--conn"), QStringLiteral("--company"),
    QStringLiteral("--year"), QStringLiteral("--prod"), QStringLiteral("--operator"), QStringLiteral("--level") };

const QString kOperatorHelp
    = QStringLiteral("  --operator IME  ime operatera u dnevniku promjena (zadano: korisnik sustava)\n"
                     "  --level N       nivo pristupa operatera (zadano: 0)\n");

// The command's question is answered with Da (the person said --yes); every message
// goes to standard error, and one that warns marks the work as failed.
class UnattendedYes final : public Interaction
{
public:
    Answer show(const Message& m) override
    {
        QTextStream(stderr) << (m.title.isEmpty() ? QString() : m.title + QStringLiteral(": ")) << m.text << '\n';
        if (m.icon == Icon::Exclamation || m.icon == Icon::Critical)
            failed = true;
        return m.buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    }
    int exec(QDialog&) override { return 0; }
    QString chooseSaveFile(const FileChoice&) override { return {}; }
    QString chooseOpenFile(const FileChoice&) override { return {}; }
    bool startProgram(const QString&, const QStringList&) override { return false; }
    bool failed = false;
};

// The session the browser would have for the book: its database, company, year and
// operator. 0 when ready, else the exit code with the message printed.
int openSession(const Options& o, const QString& usage, BookOptions& b)
{
    if (const int refused = readBook(o, usage, b))
        return refused;
    const QString level = o.values.value(QStringLiteral("--level"), journal::periodlock::kLevel);
    if (const QString problem = browser::accessLevelProblem(level); !problem.isEmpty())
        return complain(problem + u'\n' + usage, Usage);
    int code = Done;
    const QString connection = commandConnection(o, usage, &code);
    if (connection.isEmpty())
        return code;
    Session& s = session();
    s.ConnString = connection;
    s.BrojPoduzeca = qint16(b.company);
    s.RadnaGodina = qint16(b.year);
    s.ImeOperatera = o.values.value(QStringLiteral("--operator"), generate::imeOperateraSustava());
    s.NivoPristupa = level;
    if (!s.db().connect(connection))
        return complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + s.db().errorDescription());
    return Done;
}

// Runs an operation of the browser unattended; 0 when it went through without a warning.
template <typename Operation> int unattended(Operation operation)
{
    auto answers = std::make_unique<UnattendedYes>();
    UnattendedYes* seen = answers.get();
    auto previous = setInteraction(std::move(answers));
    const bool ok = operation();
    const bool failed = seen->failed;
    setInteraction(std::move(previous));
    session().db().disconnect();
    return ok && !failed ? Done : Failed;
}

// Parses and checks the options every book command shares; 0 when the command goes on.
int bookCommand(
    const QStringList& args, const QStringList& values, const QStringList& flags, const QString& usage, Options* o)
{
    *o = commandOptions(args, kBookValues + values, flags);
    if (!o->error.isEmpty())
        return complain(o->error + u'\n' + usage, Usage);
    if (o->flags.contains(QStringLiteral("--help"))) {
        QTextStream(stdout) << usage;
        return -1;
    }
    return Done;
}

} // namespace

QString lockUsage()
{
    return QStringLiteral("knjige lock KNJIGA (--db PUTANJA | --conn CONNECTION_STRING) --company N --year GGGG\n"
                          "            (--to dd.mm.gggg | --unlock --reason TEKST) [--operator IME] [--level N]\n"
                          "  Zaključa razdoblje knjige do datuma: stavke datirane tog dana ili ranije više se ne\n"
                          "  mijenjaju, ne brišu i ne dobivaju nove redne brojeve. --unlock ga otvara; razlog ide u\n"
                          "  dnevnik promjena. Samo operateri s nivoom pristupa 0.\n")
        + kOperatorHelp
        + QStringLiteral("  Primjer: knjige lock 96 --db knjige.db --company 1 --year 2026 --to 31.03.2026\n");
}

int runLock(const QStringList& args)
{
    Options o;
    if (const int stop = bookCommand(args, { QStringLiteral("--to"), QStringLiteral("--reason") },
            { QStringLiteral("--unlock") }, lockUsage(), &o))
        return stop < 0 ? Done : stop;
    const bool opening = o.flags.contains(QStringLiteral("--unlock"));
    if (opening == o.values.contains(QStringLiteral("--to")))
        return complain(
            QStringLiteral("Zadajte --to DATUM ili --unlock --reason TEKST (jedno od dvoga).\n") + lockUsage(), Usage);
    if (opening && o.values.value(QStringLiteral("--reason")).trimmed().isEmpty())
        return complain(QStringLiteral("Otključavanje traži razlog: --reason TEKST.\n") + lockUsage(), Usage);
    const QDate to = dates::parseDayFirst(o.values.value(QStringLiteral("--to")).trimmed());
    if (!opening && !to.isValid())
        return complain(QStringLiteral("Datum mora biti oblika dd.mm.gggg.\n") + lockUsage(), Usage);
    BookOptions b;
    if (const int refused = openSession(o, lockUsage(), b))
        return refused;
    if (session().NivoPristupa != journal::periodlock::kLevel)
        return complain(QStringLiteral("Razdoblje knjige mogu zaključati samo operateri s nivoom pristupa 0."));
    const journal::Scope scope { b.book->code, qint16(b.company), qint16(b.year), 0 };
    QString error;
    const bool done = opening
        ? journal::periodlock::unlock(session().db(), scope, o.values.value(QStringLiteral("--reason")), &error)
        : journal::periodlock::lock(session().db(), scope, to, &error);
    session().db().disconnect();
    if (!done)
        return complain(error);
    QTextStream(stdout) << (opening ? QStringLiteral("Razdoblje knjige %1 je otključano.\n").arg(b.book->code)
                                    : QStringLiteral("Knjiga %1 je zaključana do %2.\n")
                                          .arg(b.book->code)
                                          .arg(to.toString(QStringLiteral("dd.MM.yyyy"))));
    return Done;
}

QString renumberUsage()
{
    return QStringLiteral("knjige renumber KNJIGA (--db PUTANJA | --conn CONNECTION_STRING) --company N --year GGGG\n"
                          "                (--by-number | --by-date) --yes [--prod N] [--operator IME] [--level N]\n"
                          "  Renumeracija kao u pregledu knjige (Alati): --by-number zatvara praznine i duplikate\n"
                          "  redom rednih brojeva, --by-date numerira knjigu redom datuma. Iste naredbe, ista\n"
                          "  transakcija, isti dnevnik i isto zaključano razdoblje; --yes potvrđuje pitanje.\n")
        + kOperatorHelp
        + QStringLiteral("  Primjer: knjige renumber 96 --db knjige.db --company 1 --year 2026 --by-date --yes\n");
}

int runRenumber(const QStringList& args)
{
    Options o;
    if (const int stop
        = bookCommand(args, {}, { QStringLiteral("--by-number"), QStringLiteral("--by-date"), QStringLiteral("--yes") },
            renumberUsage(), &o))
        return stop < 0 ? Done : stop;
    const bool byDate = o.flags.contains(QStringLiteral("--by-date"));
    if (byDate == o.flags.contains(QStringLiteral("--by-number")))
        return complain(
            QStringLiteral("Zadajte --by-number ili --by-date (jedno od dvoga).\n") + renumberUsage(), Usage);
    if (!o.flags.contains(QStringLiteral("--yes")))
        return complain(
            QStringLiteral("Renumeracija mijenja redne brojeve: potvrdite je s --yes.\n") + renumberUsage(), Usage);
    BookOptions b;
    if (const int refused = openSession(o, renumberUsage(), b))
        return refused;
    if (!browser::renumber::takesPart(b.book->code))
        return complain(QStringLiteral("Knjiga %1 nema renumeraciju.").arg(b.book->code), Usage);
    const browser::renumber::Book book = browser::renumber::bookOf(b.query());
    return unattended([&] {
        tell((byDate ? browser::renumber::byDate(book) : browser::renumber::byOrdinal(book)).notice);
        return true;
    });
}

QString insertUsage()
{
    return QStringLiteral("knjige insert KNJIGA (--db PUTANJA | --conn CONNECTION_STRING) --company N --year GGGG\n"
                          "             --at N --yes [--prod N] [--operator IME] [--level N]\n"
                          "  Ubaci zapis na mjesto N kao u pregledu knjige: stavke od N dalje dobiju broj više, a\n"
                          "  na mjesto N dođe prazna stavka s datumom 1.1. godine.\n")
        + kOperatorHelp
        + QStringLiteral("  Primjer: knjige insert 96 --db knjige.db --company 1 --year 2026 --at 5 --yes\n");
}

int runInsert(const QStringList& args)
{
    Options o;
    if (const int stop = bookCommand(args, { QStringLiteral("--at") }, { QStringLiteral("--yes") }, insertUsage(), &o))
        return stop < 0 ? Done : stop;
    const auto at = wholeNumber(o.values.value(QStringLiteral("--at")), 1, 2147483647);
    if (!at)
        return complain(QStringLiteral("Mjesto (--at) mora biti pozitivan broj.\n") + insertUsage(), Usage);
    if (!o.flags.contains(QStringLiteral("--yes")))
        return complain(
            QStringLiteral("Umetanje mijenja redne brojeve: potvrdite ga s --yes.\n") + insertUsage(), Usage);
    BookOptions b;
    if (const int refused = openSession(o, insertUsage(), b))
        return refused;
    if (!browser::renumber::takesPart(b.book->code) || (books::isTradeBook(b.book->code) && b.salesPoint == 0))
        return complain(
            QStringLiteral("U knjigu %1 se ne umeće%2.")
                .arg(b.book->code)
                .arg(books::isTradeBook(b.book->code) ? QStringLiteral(" bez prodajnog mjesta (--prod)") : QString()),
            Usage);
    const browser::renumber::Book book = browser::renumber::bookOf(b.query());
    const int code = unattended([&] {
        const browser::renumber::Outcome inserted = browser::renumber::insertAt(book, qint32(*at));
        tell(inserted.notice);
        return inserted.after == browser::renumber::After::Reload;
    });
    if (code != Done && !session().db().errorDescription().isEmpty())
        return complain(QStringLiteral("Umetanje nije uspjelo: ") + session().db().errorDescription());
    if (code != Done)
        return code;
    QTextStream(stdout) << QStringLiteral("Na mjesto %1 ubačena je prazna stavka.\n").arg(*at);
    return Done;
}

QString checkUsage()
{
    return QStringLiteral(
        "knjige check KNJIGA (--db PUTANJA | --conn CONNECTION_STRING) --company N --year GGGG [--prod N]\n"
        "  Provjera knjige: lanac dnevnika promjena, promjene izvan programa, redni brojevi,\n"
        "  veze, datumi, početna stanja, dvaput proknjiženi dokumenti i zbirovi.\n"
        "  Izlaz: 0 ništa nije nađeno, 1 ima nalaza, 2 knjigu nije moguće pročitati.\n"
        "  Primjer: knjige check 96 --db knjige.db --company 1 --year 2026\n");
}

int runCheck(const QStringList& args)
{
    const Options o = commandOptions(args,
        { QStringLiteral("--db"), QStringLiteral("--conn"), QStringLiteral("--company"), QStringLiteral("--year"),
            QStringLiteral("--prod") },
        {});
    if (!o.error.isEmpty())
        return complain(o.error + u'\n' + checkUsage(), Usage);
    if (o.flags.contains(QStringLiteral("--help"))) {
        QTextStream(stdout) << checkUsage();
        return Done;
    }
    BookOptions b;
    if (const int refused = readBook(o, checkUsage(), b))
        return refused;
    // A book that cannot be reached is a book that cannot be read: exit 2, as a
    // failed read, never 1, which says the check found something.
    int code = Done;
    const QString connection = commandConnection(o, checkUsage(), &code);
    if (connection.isEmpty())
        return Usage;
    db::Database db;
    if (!db.connect(connection))
        return complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + db.errorDescription(), Usage);
    const browser::BookQuery query = b.query();
    const journal::bookcheck::Report report
        = journal::bookcheck::check(db, { query.bookKind, query.company, query.year, query.salesPoint() });
    QTextStream(stdout) << report.text;
    switch (report.status) {
    case journal::bookcheck::Report::Status::Clean:
        return Done;
    case journal::bookcheck::Report::Status::Findings:
        return Failed;
    case journal::bookcheck::Report::Status::Unreadable:
        break;
    }
    return Usage;
}

} // namespace knjige::host::cli
