// The administrator's commands on one book of one company and year.
#include "host/BookCommands.h"

#include "books/BookKind.h"
#include "host/Cli.h"
#include "journal/BookCheck.h"
#include "session/Database.h"

#include <QTextStream>
#include <optional>

namespace knjige::cli {
namespace {

std::optional<int> wholeNumber(const QString& text, int low, int high)
{
    bool ok = false;
    const int n = text.trimmed().toInt(&ok);
    return ok && n >= low && n <= high ? std::optional<int>(n) : std::nullopt;
}

struct BookOptions {
    const BookKind* book = nullptr;
    int company = 0;
    int year = 0;
    int salesPoint = 0;
};

// The book, company, year and sales point of the command line; 0 when complete, else
// the exit code with the message printed.
int readBook(const Options& o, const QString& usage, BookOptions& b)
{
    const auto refuse = [&usage](const QString& message) { return complain(message + u'\n' + usage, Usage); };
    if (o.positional.size() != 1)
        return refuse(o.positional.isEmpty() ? QStringLiteral("Nedostaje knjiga (šifra, na primjer 96).")
                                             : QStringLiteral("Višak argumenata: %1").arg(o.positional.join(u' ')));
    const QString name = o.positional.front().trimmed();
    const auto code = wholeNumber(name, 0, 32767);
    b.book = code ? findBook(*code) : findBookByClass(name);
    if (!b.book)
        return refuse(QStringLiteral("Nepoznata knjiga: %1").arg(name));
    for (const char* required : { "--company", "--year" })
        if (o.values.value(QLatin1String(required)).trimmed().isEmpty())
            return refuse(QStringLiteral("Nedostaje opcija %1.").arg(QLatin1String(required)));
    const auto company = wholeNumber(o.values.value(QStringLiteral("--company")), 1, 32767);
    if (!company)
        return refuse(QStringLiteral("Poduzeće mora biti broj od 1 do 32767."));
    const auto year = wholeNumber(o.values.value(QStringLiteral("--year")), 1900, 2100);
    if (!year)
        return refuse(QStringLiteral("Godina mora biti broj od 1900 do 2100."));
    b.company = *company;
    b.year = *year;
    if (o.values.contains(QStringLiteral("--prod"))) {
        if (!isTradeBook(b.book->code))
            return refuse(QStringLiteral("Prodajno mjesto (--prod) imaju samo knjige 125 i 126."));
        const auto point = wholeNumber(o.values.value(QStringLiteral("--prod")), 1, 2147483647);
        if (!point)
            return refuse(QStringLiteral("Prodajno mjesto mora biti pozitivan broj."));
        b.salesPoint = *point;
    }
    return Done;
}

} // namespace

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
    int code = Done;
    const QString connection = commandConnection(o, checkUsage(), &code);
    if (connection.isEmpty())
        return code;
    Database db;
    if (!db.connect(connection))
        return complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + db.errorDescription(), Usage);
    const bookcheck::Report report
        = bookcheck::check(db, { b.book->code, qint16(b.company), qint16(b.year), qint32(b.salesPoint) });
    QTextStream(stdout) << report.text;
    switch (report.status) {
    case bookcheck::Report::Status::Clean: return Done;
    case bookcheck::Report::Status::Findings: return Failed;
    case bookcheck::Report::Status::Unreadable: break;
    }
    return Usage;
}

} // namespace knjige::cli
