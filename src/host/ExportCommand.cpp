#include "host/ExportCommand.h"

#include "books/BookKind.h"
#include "browser/FilterClause.h"
#include "host/BookCommands.h"
#include "host/Cli.h"
#include "host/HostRights.h"
#include "output/OfficeExport.h"
#include "output/OutputFile.h"
#include "session/Dates.h"
#include "session/Failure.h"
#include "session/db/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <optional>

namespace knjige::host::cli
{
namespace
{

int usageError(const QString& message)
{
    return complain(message + u'\n' + exportUsage(), Usage);
}

struct Request {
    BookOptions book;
    std::optional<std::pair<QDate, QDate>> period;
    QString out;
    output::ExportOptions options;
};

// Reads and checks every option; 0 when the request is complete, else the exit code
// with the message printed.
int readRequest(const Options& o, Request& r)
{
    if (const int refused = readBook(o, exportUsage(), r.book, { QStringLiteral("--out") }))
        return refused;
    if (o.values.contains(QStringLiteral("--period"))) {
        QString error;
        r.period = browser::parsePeriod(o.values.value(QStringLiteral("--period")), r.book.year, &error);
        if (!r.period)
            return usageError(error);
    }
    r.out = o.values.value(QStringLiteral("--out")).trimmed();
    r.options.separator = o.values.value(QStringLiteral("--separator"), QStringLiteral(";"));
    r.options.decimalMark = o.values.value(QStringLiteral("--decimal"), QStringLiteral(","));
    // Texts are quoted unless asked otherwise, as in the dialog: a separator inside an
    // unquoted description moves every later value of its row one column on. "--quote"
    // stays accepted, so the scripts written when quoting was optional keep working.
    if (o.flags.contains(QStringLiteral("--quote")) && o.flags.contains(QStringLiteral("--no-quote")))
        return usageError(QStringLiteral("Opcije --quote i --no-quote se isključuju."));
    r.options.quoteTexts = !o.flags.contains(QStringLiteral("--no-quote"));
    const auto encoding
        = output::encodingFromName(o.values.value(QStringLiteral("--encoding"), QStringLiteral("cp1250")));
    if (!encoding)
        return usageError(QStringLiteral("Kodiranje može biti cp1250 ili utf-8."));
    r.options.encoding = *encoding;
    const QString problem = output::firstFailedCheck({ r.out, r.options.separator, r.options.decimalMark, {}, false });
    if (!problem.isEmpty())
        return usageError(problem);
    return Done;
}

} // namespace

int refuseOutput(const QString& path, bool force)
{
    if (output::OutputFile::isStandardOutput(path))
        return Done;
    const QFileInfo target(path);
    if (target.isDir())
        return complain(QStringLiteral("Na putanji %1 je mapa, a ne datoteka.").arg(path));
    // A dangling link counts: writing through it would make a file where it points.
    if ((target.exists() || target.isSymLink()) && !force)
        return complain(QStringLiteral("Datoteka %1 već postoji. Ostaje nepromijenjena; dodajte --force ako je želite "
                                       "prepisati.")
                            .arg(path));
    return Done;
}

QString exportUsage()
{
    return QStringLiteral(
        "knjige export KNJIGA (--db PUTANJA | --conn CONNECTION_STRING) --company N --year GGGG\n"
        "              --out DATOTEKA.csv|- [--period OD-DO] [--prod N] [--separator \";\"]\n"
        "              [--decimal \",\"] [--no-quote] [--encoding cp1250|utf-8] [--force] [--operator IME]\n"
        "  Zapiše knjigu (šifra 96 ... 126 ili naziv klase) poduzeća i godine kao CSV datoteku,\n"
        "  istu kakvu piše \"Prebaci u Excel\" u pregledu knjige, redom po rednom broju.\n"
        "  --out -        piše na standardni izlaz (poruka o broju zapisa ide na stderr)\n"
        "  --period OD-DO  samo stavke s datumom u periodu, na primjer 1.3.2016-31.3.2016\n"
        "  --prod N        samo prodajno mjesto N (knjige 125 i 126)\n"
        "  --separator     separator podataka (zadano ;)\n"
        "  --decimal       znak za decimalnu točku u brojevima, . ili , (zadano ,)\n"
        "  --no-quote      nazivi i tekstovi bez navodnika (zadano su u navodnicima;\n"
        "                  --quote se prihvata i ne mijenja ništa)\n"
        "  --encoding      cp1250 (Windows-1250, zadano) ili utf-8 (s oznakom BOM)\n"
        "  --force         zamijeni postojeću datoteku (bez toga ostaje netaknuta); bazu nikad\n"
        "  --operator IME  operater čija prava iz dbo.PRAVA vrijede (zadano: korisnik sustava)\n"
        "  Primjer: knjige export 96 --db knjige.db --company 1 --year 2026 --out knjiga-96.csv\n");
}

int runExport(const QStringList& args)
{
    // The file is written whatever becomes of the report line after it.
    reportClosedOutputAsWriteError();
    const Options o = commandOptions(args,
        { QStringLiteral("--db"), QStringLiteral("--conn"), QStringLiteral("--company"), QStringLiteral("--year"),
            QStringLiteral("--period"), QStringLiteral("--prod"), QStringLiteral("--out"),
            QStringLiteral("--separator"), QStringLiteral("--decimal"), QStringLiteral("--encoding"),
            QStringLiteral("--operator") },
        { QStringLiteral("--quote"), QStringLiteral("--no-quote"), QStringLiteral("--force") });
    if (!o.error.isEmpty())
        return usageError(o.error);
    if (o.flags.contains(QStringLiteral("--help"))) {
        QTextStream(stdout) << exportUsage();
        return Done;
    }
    Request r;
    if (const int refused = readRequest(o, r))
        return refused;
    int code = Done;
    const QString connection = commandConnection(o, exportUsage(), &code);
    if (connection.isEmpty())
        return code;
    if (const int refused = refuseOutput(r.out, o.flags.contains(QStringLiteral("--force"))))
        return refused;
    db::Database db;
    if (!db.connect(connection))
        return complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + db.errorDescription());
    const QString op = o.values.value(QStringLiteral("--operator")).trimmed();
    if (const QString refused = host::commandRefusal(
            connection, op.isEmpty() ? host::defaultOperatorName() : op, r.book.book->code, OperatorRights::Izvoz);
        !refused.isEmpty())
        return complain(refused);
    const QString sql = r.book.query(r.period).sql();
    // Each row is written as it is read, so a book of any size exports in the memory of
    // a few hundred rows; the file replaces an existing one only once it is complete.
    output::OutputFile file(r.out);
    if (!file.open())
        return complain(failureText(
            QStringLiteral("datoteku %1 nije moguće otvoriti za upis (%2).").arg(r.out, file.errorString())));
    output::OfficeExportWriter writer(file.device(), r.options);
    bool headed = false;
    const bool read = db.openInParts(sql, [&](const db::ResultSet& part) {
        if (!headed) {
            headed = true;
            if (!writer.writeHeader(part.fields()))
                return false;
        }
        for (int row = 0; row < part.rowCount(); ++row)
            if (!writer.writeRow(part, row))
                return false;
        return true;
    });
    bool ok = read && writer.result().ok() && writer.finish();
    output::ExportResult result = writer.result();
    if (ok && !file.commit()) {
        result.error = file.errorString();
        ok = false;
    }
    if (!ok) {
        file.cancel();
        if (output::OutputFile::isStandardOutput(r.out) && outputClosedByReader())
            return OutputClosed;
        if (!read && result.ok())
            return complain(QStringLiteral("Desila se greška u pristupu podacima: ") + db.errorDescription());
        return complain(failureText(QStringLiteral("upis u datoteku %1 nije uspio (%2).").arg(r.out, result.error)));
    }
    if (!result.unmappable.isEmpty())
        complain(output::unmappableNote(result.unmappable, result.firstUnmappableLine));
    // Down a pipe the report would end up among the rows.
    QTextStream(output::OutputFile::isStandardOutput(r.out) ? stderr : stdout)
        << output::reportText(r.out, result.rows) << '\n';
    return Done;
}

} // namespace knjige::host::cli
