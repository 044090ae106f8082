#include "host/PrintCommand.h"

#include "books/BookKind.h"
#include "browser/BookQuery.h"
#include "host/Cli.h"
#include "host/ExportCommand.h"
#include "host/HostRights.h"
#include "output/OutputFile.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/ReportQueries.h"
#include "output/widgets/ReportPrinter.h"
#include "session/Session.h"

#include <QFileInfo>
#include <QTextStream>

namespace knjige::host
{
namespace
{

using cli::complain;
using cli::Done;
using cli::Failed;
using cli::Usage;

int usageError(const QString& message)
{
    return complain(message + u'\n' + printUsage(), Usage);
}

using cli::Options;

int bookCode(const QString& text)
{
    const books::BookKind* b = books::findBookByName(text);
    return b ? b->code : 0;
}

bool number(const Options& o, const char* option, int least, int most, int* value)
{
    bool ok = false;
    *value = o.values.value(QString::fromLatin1(option)).trimmed().toInt(&ok);
    return ok && *value >= least && *value <= most;
}

struct Request {
    int kind = 0;
    qint16 company = 0;
    qint16 year = 0;
    std::optional<std::pair<QDate, QDate>> period;
    qint32 shop = 0;
    QString pdf;
    bool force = false;
    QString conn;
};

// Everything the command line says, checked before the database is touched.
bool request(const Options& o, Request* r, int* code)
{
    if (o.positional.size() != 1) {
        *code = usageError(QStringLiteral("Zadajte jednu knjigu."));
        return false;
    }
    r->kind = bookCode(o.positional.first());
    if (!r->kind) {
        *code = usageError(QStringLiteral("Nepoznata knjiga: %1").arg(o.positional.first()));
        return false;
    }
    r->pdf = o.values.value(QStringLiteral("--pdf")).trimmed();
    int company = 0;
    int year = 0;
    QString problem;
    if (r->pdf.isEmpty())
        problem = QStringLiteral("Zadajte datoteku ispisa: --pdf DATOTEKA.pdf");
    else if (!QFileInfo(QFileInfo(r->pdf).absolutePath()).isDir())
        problem = QStringLiteral("Mapa %1 ne postoji.").arg(QFileInfo(r->pdf).absolutePath());
    else if (!number(o, "--company", 1, 32767, &company))
        problem = QStringLiteral("Zadajte broj firme: --company BROJ (1 do 32767).");
    else if (!number(o, "--year", 1900, 2100, &year))
        problem = QStringLiteral("Zadajte radnu godinu: --year GODINA (1900 do 2100).");
    if (problem.isEmpty() && o.values.contains(QStringLiteral("--period")))
        r->period = browser::parsePeriod(o.values.value(QStringLiteral("--period")), year, &problem);
    if (problem.isEmpty() && o.values.contains(QStringLiteral("--prod"))) {
        int shop = 0;
        if (!books::isTradeBook(r->kind))
            problem = QStringLiteral("Prodajno mjesto (--prod) imaju samo trgovačke knjige (125, 126).");
        else if (!number(o, "--prod", 1, 2147483647, &shop))
            problem = QStringLiteral("Neispravno prodajno mjesto: %1").arg(o.values.value(QStringLiteral("--prod")));
        r->shop = shop;
    }
    if (!problem.isEmpty()) {
        *code = usageError(problem);
        return false;
    }
    r->company = qint16(company);
    r->year = qint16(year);
    r->force = o.flags.contains(QStringLiteral("--force"));
    if ((*code = cli::refuseOutput(r->pdf, r->force)) != Done)
        return false;
    r->conn = cli::commandConnection(o, printUsage(), code);
    return !r->conn.isEmpty();
}

QString shopName(qint32 shop, bool* found)
{
    db::ResultSet rs;
    *found = session().db().open(
                 QStringLiteral("SELECT ImeKomit1 FROM dbo.Komitent WHERE SifKomit=") + QString::number(shop), rs)
        && !rs.isEmpty();
    return *found ? rs.text(0, 0) : QString();
}

int print(const Request& r)
{
    Session& s = session();
    s.ConnString = r.conn;
    s.BrojPoduzeca = r.company;
    s.RadnaGodina = r.year;
    db::Database& db = s.db();
    if (!db.isConnected())
        return complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + db.errorDescription());
    const QString op = s.ImeOperatera.isEmpty() ? defaultOperatorName() : s.ImeOperatera;
    if (const QString refused = commandRefusal(r.conn, op, r.kind, OperatorRights::Ispis); !refused.isEmpty())
        return complain(refused);
    QString name;
    if (r.shop) {
        bool found = false;
        name = shopName(r.shop, &found);
        if (!found)
            return complain(QStringLiteral("Prodajno mjesto %1 nije među komitentima baze.").arg(r.shop));
    }
    // A printout always has a period: a sales point without one prints the whole year.
    std::optional<std::pair<QDate, QDate>> period = r.period;
    if (!period && r.shop)
        period = std::make_pair(browser::periodStart(r.year), browser::periodEnd(r.year));
    const browser::BookQuery query = browser::commandQuery(r.kind, r.company, r.year, period, r.shop, name);
    db::ResultSet rows;
    if (!db.open(query.sql(), rows))
        return complain(QStringLiteral("Knjigu nije moguće pročitati: ") + db.errorDescription());
    tell(DefVarijabli::CitajKonfiguraciju(true));
    if (s.NazivFirme.isEmpty())
        QTextStream(stderr) << QStringLiteral("Napomena: firma %1 nema naziva u dbo.CONFIG.\n").arg(r.company);
    const output::report::Layout layout = output::report::bookLayout(r.kind, query.salesPoint());
    output::report::BroughtForward forward;
    QString error;
    if (!output::report::broughtForward(query, layout, &forward, &error))
        return complain(QStringLiteral("Donos iz ranijeg dijela godine nije moguće pročitati: ") + error);
    output::ReportPrinter printer(layout, output::report::bookHeader(query, rows), rows);
    printer.bringForward(forward);
    if (!printer.writePdf(r.pdf, &error))
        return output::OutputFile::isStandardOutput(r.pdf) && cli::outputClosedByReader()
            ? cli::OutputClosed
            : complain(QStringLiteral("Ispis nije uspio: ") + error);
    QTextStream(output::OutputFile::isStandardOutput(r.pdf) ? stderr : stdout)
        << QStringLiteral("Ispis spremljen: %1 (stranica: %2, stavki: %3)\n")
               .arg(r.pdf)
               .arg(printer.pages().size())
               .arg(rows.rowCount());
    return Done;
}

} // namespace

QString printUsage()
{
    return QStringLiteral(
        "knjige print KNJIGA (--db PUTANJA | --conn CONNECTION_STRING) --company BROJ --year GODINA\n"
        "             [--period dd.mm.gggg-dd.mm.gggg] [--prod BROJ] [--operator IME] --pdf IZLAZ.pdf [--force]\n"
        "  Ispiše knjigu u PDF datoteku, kao naredba Ispis u prozoru knjige (bez zaslona).\n"
        "  KNJIGA je šifra (96, 97, ..., 126) ili naziv klase knjige.\n"
        "  --period   samo stavke tog razdoblja (zadano: cijela radna godina); razdoblje koje ne\n"
        "             počinje 1. januara nastavlja knjigu: Donos i ukupno od početka godine\n"
        "  --prod     trgovačke knjige: samo to prodajno mjesto (zadano: sva)\n"
        "  --operator ime operatera u podnožju ispisa; njegova prava iz dbo.PRAVA (zadano: korisnik sustava)\n"
        "  --pdf      datoteka ispisa; - piše na standardni izlaz\n"
        "  --force    zamijeni postojeću datoteku (bez toga ostaje netaknuta); bazu nikad\n"
        "  Primjer: knjige print 96 --db knjige.db --company 1 --year 2026 --pdf knjiga-96.pdf\n");
}

int runPrint(const QStringList& args)
{
    // The file is written whatever becomes of the report line after it, and a closed
    // pipe under "--pdf -" ends the command with its own code.
    cli::reportClosedOutputAsWriteError();
    const Options o = cli::commandOptions(args,
        { QStringLiteral("--db"), QStringLiteral("--conn"), QStringLiteral("--company"), QStringLiteral("--year"),
            QStringLiteral("--period"), QStringLiteral("--prod"), QStringLiteral("--pdf"),
            QStringLiteral("--operator") },
        { QStringLiteral("--force") });
    if (!o.error.isEmpty())
        return usageError(o.error);
    if (o.flags.contains(QStringLiteral("--help"))) {
        QTextStream(stdout) << printUsage();
        return Done;
    }
    Request r;
    int code = Done;
    if (!request(o, &r, &code))
        return code;
    session().ImeOperatera = o.values.value(QStringLiteral("--operator"));
    const int result = print(r);
    session().closeDb();
    return result;
}

} // namespace knjige::host
