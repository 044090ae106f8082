#include "host/Cli.h"

#include "books/Schema.h"
#include "demo/DemoData.h"
#include "demo/DemoSources.h"
#include "generate/SourceDatabase.h"
#include "host/Csv.h"
#include "host/HostRights.h"
#include "journal/Journal.h"
#include "session/Clock.h"
#include "session/db/ConnectionString.h"
#include "session/db/Database.h"
#include "session/tsql/TSqlTokenizer.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QTextStream>
#include <algorithm>
#include <cstdio>

namespace knjige::host::cli
{
namespace
{

// Options are recognised by name ("--db PATH" or "--db=PATH"); anything else that
// looks like an option is refused, so a typing error never becomes a SQL text.
Options parseOptions(const QStringList& args, const QStringList& valueOptions, const QStringList& flagOptions)
{
    Options o;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        const QString name = a.section(u'=', 0, 0);
        // A second value would silently win over the first.
        if ((valueOptions.contains(name) && o.values.contains(name))
            || (flagOptions.contains(a) && o.flags.contains(a))) {
            o.error = QStringLiteral("Opcija %1 je zadana više puta; zadajte je jednom.").arg(name);
            return o;
        }
        if (valueOptions.contains(name)) {
            if (a.contains(u'=')) {
                o.values[name] = a.section(u'=', 1);
            } else if (i + 1 < args.size()) {
                o.values[name] = args[++i];
            } else {
                o.error = QStringLiteral("Opcija %1 traži vrijednost.").arg(name);
                return o;
            }
        } else if (flagOptions.contains(a) || a == QLatin1String("--help") || a == QLatin1String("-h")) {
            o.flags.insert(a == QLatin1String("-h") ? QStringLiteral("--help") : a);
        } else if (a.startsWith(u'-') && a.size() > 1 && !a.contains(QRegularExpression(QStringLiteral("\\s")))) {
            o.error = QStringLiteral("Nepoznata opcija: %1").arg(a);
            return o;
        } else {
            o.positional << a;
        }
    }
    return o;
}

void printUsage(const QString& usage)
{
    QTextStream out(stdout);
    out << usage;
}

// A file being made: removed with SQLite's side files unless kept.
class PendingFile
{
public:
    explicit PendingFile(QString path)
        : m_path(std::move(path))
    {
    }
    ~PendingFile()
    {
        if (m_keep)
            return;
        for (const char* suffix : { "", "-journal", "-wal", "-shm" })
            QFile::remove(m_path + QLatin1String(suffix));
    }
    void keep() { m_keep = true; }

private:
    QString m_path;
    bool m_keep = false;
};

// An empty file is an empty SQLite database: made here so that the data layer, which
// never creates a database it is only asked to open, can fill it. Made with the
// user's usual permissions, as the finished database keeps them.
QString makeEmptyFileBeside(const QString& target, QString* error)
{
    const QString folder = QFileInfo(target).absolutePath();
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QString name = QStringLiteral("%1/.knjige-nova-%2-%3.db")
                                 .arg(folder)
                                 .arg(QCoreApplication::applicationPid())
                                 .arg(attempt);
        QFile file(name);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return name;
        *error = file.errorString();
        if (!file.exists())
            break;
    }
    return {};
}

bool fillNewDatabase(const QString& path, bool demo, QString* message)
{
    db::Database db;
    QString error;
    if (!db.connect(QStringLiteral("sqlite:") + path)) {
        *message = QStringLiteral("Bazu nije moguće otvoriti: ") + db.errorDescription();
        return false;
    }
    if (!books::createSchema(db, &error)) {
        *message = QStringLiteral("Izrada tablica nije uspjela: ") + error;
        return false;
    }
    if (demo && !demo::fillDemoData(db, &error)) {
        *message = QStringLiteral("Upis demo podataka nije uspio: ") + error;
        return false;
    }
    // The books as written are the journal's starting point.
    if (demo && !journal::baselineEveryBook(db, &error)) {
        *message = QStringLiteral("Upis dnevnika promjena nije uspio: ") + error;
        return false;
    }
    // The documents the DB book is generated from, in the same file: the generator's
    // default source is the host's own database. The rights are the current user's,
    // since the generator works under the system user name.
    if (demo
        && (!demo::createSourceTables(db, &error)
            || !demo::fillDemoSources(db, clock::today().year(), { generate::imeOperateraSustava() }, &error))) {
        *message = QStringLiteral("Upis demo dokumenata za generiranje nije uspio: ") + error;
        return false;
    }
    // The host's rights table (the demo's documents bring their own), empty: every
    // operator may use every book until rows are added.
    if (!demo && !db.execute(host::PravaRights::createSql())) {
        *message = QStringLiteral("Izrada tablice prava nije uspjela: ") + db.errorDescription();
        return false;
    }
    return true;
}

int createDatabase(const QString& path, bool demo, bool force)
{
    const QFileInfo target(path);
    if (target.isDir())
        return complain(QStringLiteral("Na putanji %1 je mapa, a ne datoteka baze.").arg(path));
    if (target.exists() && !force)
        return complain(QStringLiteral("Datoteka %1 već postoji. Ostaje nepromijenjena; dodajte --force ako je želite "
                                       "zamijeniti novom bazom.")
                            .arg(path));
    QString error;
    const QString fresh = makeEmptyFileBeside(path, &error);
    if (fresh.isEmpty())
        return complain(
            QStringLiteral("U mapi %1 nije moguće napraviti datoteku: %2").arg(target.absolutePath(), error));
    PendingFile pending(fresh);
    if (!fillNewDatabase(fresh, demo, &error))
        return complain(error);
    if (target.exists() && !QFile::remove(path))
        return complain(QStringLiteral("Postojeću datoteku %1 nije moguće zamijeniti.").arg(path));
    // The old file's side files go with it: SQLite would replay a write-ahead log left
    // beside the name (by a crash, or by a program that still has the old file open)
    // into the new database.
    for (const char* suffix : { "-journal", "-wal", "-shm" }) {
        const QString side = path + QLatin1String(suffix);
        if (QFileInfo::exists(side) && !QFile::remove(side))
            return complain(QStringLiteral("Datoteku %1 stare baze nije moguće obrisati.").arg(side));
    }
    if (!QFile::rename(fresh, path))
        return complain(QStringLiteral("Novu bazu nije moguće spremiti kao %1.").arg(path));
    pending.keep();
    QTextStream(stdout) << QStringLiteral("Napravljena je nova baza%1: %2\n")
                               .arg(demo ? QStringLiteral(" s demo podacima") : QString(), path);
    return Done;
}

// The connection string for --db or --conn; empty with the message printed when the
// database cannot be reached without creating something.
QString connectionFor(const Options& o, const QString& usage, int* code)
{
    const bool hasDb = o.values.contains(QStringLiteral("--db"));
    const bool hasConn = o.values.contains(QStringLiteral("--conn"));
    if (hasDb == hasConn) {
        *code = complain(
            QStringLiteral("Zadajte bazu: --db PUTANJA ili --conn CONNECTION_STRING (jedno od dvoga).\n") + usage,
            Usage);
        return {};
    }
    QString path;
    QString connection;
    if (hasDb) {
        path = o.values.value(QStringLiteral("--db"));
        connection = QStringLiteral("sqlite:") + path;
    } else {
        connection = o.values.value(QStringLiteral("--conn"));
        const db::ConnectionTarget target = db::parseConnectionString(connection);
        if (target.kind == db::ConnectionTarget::Kind::Invalid) {
            *code = complain(target.error);
            return {};
        }
        path = target.sqlitePath;
    }
    if (const QString problem = path.isEmpty()
            ? QString()
            : databaseFileProblem(path, QStringLiteral(" (ništa nije napravljeno; novu bazu pravi knjige init)."));
        !problem.isEmpty()) {
        *code = complain(problem);
        return {};
    }
    return connection;
}

QString readStatement(const QString& argument)
{
    if (argument != QLatin1String("-"))
        return argument;
    QTextStream in(stdin);
    return in.readAll();
}

QString firstWord(const QString& sql)
{
    for (const tsql::Token& t : tsql::tokenize(sql))
        if (!t.isTrivia() && !t.is("("))
            return t.kind == tsql::Token::Kind::Word ? t.text.toUpper() : QString();
    return {};
}

// Standard output as far as it was written: false when it could not be (a full disk,
// a closed pipe), which the caller reports.
bool flushed(QTextStream& out)
{
    out.flush();
    return out.status() == QTextStream::Ok && std::fflush(stdout) == 0 && !std::ferror(stdout);
}

int cannotWrite()
{
    if (outputClosedByReader())
        return OutputClosed;
    return complain(QStringLiteral("Rezultat nije moguće ispisati na standardni izlaz (disk je pun ili je izlaz "
                                   "zatvoren)."));
}

// Runs the statements in order and stops at the first that fails; what ran before it
// stays done, as it would on the server.
int runBatch(db::Database& db, const QStringList& statements, bool withTypes)
{
    QTextStream out(stdout);
    int printed = 0;
    for (int i = 0; i < statements.size(); ++i) {
        const QString& sql = statements[i];
        const QString failed = statements.size() == 1
            ? QStringLiteral("Naredba nije izvršena: ")
            : QStringLiteral("Naredba %1 od %2 nije izvršena: ").arg(i + 1).arg(statements.size());
        const QString before = i == 0 ? QString() : QStringLiteral("\nNaredbe prije nje su izvršene (%1).").arg(i);
        if (returnsRows(sql)) {
            // Each part is written as it is read: a result of any size prints in the
            // memory of one part. A closed output stops the read.
            bool headed = false;
            const bool read = db.openInParts(sql, [&](const db::ResultSet& part) {
                if (part.fieldCount() == 0)
                    return true;
                if (!headed) {
                    headed = true;
                    if (printed++ > 0)
                        out << '\n';
                    writeCsvHeader(part, withTypes, out);
                }
                writeCsvRows(part, out);
                return out.status() == QTextStream::Ok;
            });
            if (!read)
                return flushed(out) ? complain(failed + db.errorDescription() + before) : cannotWrite();
        } else {
            int affected = 0;
            if (!db.execute(sql, &affected))
                return flushed(out) ? complain(failed + db.errorDescription() + before) : cannotWrite();
            static const QSet<QString> writes = { QStringLiteral("INSERT"), QStringLiteral("UPDATE"),
                QStringLiteral("DELETE"), QStringLiteral("MERGE") };
            if (writes.contains(firstWord(sql)))
                QTextStream(stderr) << QStringLiteral("Obrađeno redova: %1\n").arg(affected);
        }
        if (!flushed(out))
            return cannotWrite();
    }
    return Done;
}

} // namespace

Options commandOptions(const QStringList& args, const QStringList& valueOptions, const QStringList& flagOptions)
{
    return parseOptions(args, valueOptions, flagOptions);
}

QString commandConnection(const Options& options, const QString& usage, int* code)
{
    return connectionFor(options, usage, code);
}

QString initUsage()
{
    return QStringLiteral("knjige init [--db PUTANJA] [--demo] [--force]\n"
                          "  Pravi novu ugrađenu bazu knjiga (SQLite) s tablicama svih knjiga.\n"
                          "  --db PUTANJA  datoteka nove baze (zadano: %1)\n"
                          "  --demo        upiše i demo poduzeće s knjigama za tekuću godinu\n"
                          "  --force       zamijeni postojeću datoteku (bez toga postojeća ostaje netaknuta)\n"
                          "  Primjer: knjige init --db knjige.db --demo\n")
        .arg(QDir::toNativeSeparators(defaultDatabasePath()));
}

QString queryUsage()
{
    return QStringLiteral(
        "knjige query (--db PUTANJA | --conn CONNECTION_STRING) [--types] \"SQL\"\n"
        "  Izvrši T-SQL naredbe kroz pristup podacima komponente i ispiše rezultat kao CSV:\n"
        "  red s nazivima polja, zatim redovi podataka. Više naredbi odvojenih sa ';' izvršava\n"
        "  se redom; rezultat svake naredbe koja daje redove (SELECT, WITH, VALUES, PRAGMA)\n"
        "  ispisuje se, odvojen praznim redom. Za INSERT, UPDATE i DELETE na standardni izlaz\n"
        "  za greške ide broj obrađenih redova. Prva neuspjela naredba prekida niz.\n"
        "  SQL \"-\" čita naredbe sa standardnog ulaza.\n"
        "  --db PUTANJA    postojeća ugrađena baza (nikad se ne pravi nova)\n"
        "  --conn TEKST    connection string: Provider=SQLOLEDB.1;Data Source=...;Initial Catalog=...,\n"
        "                  ODBC (Driver=...;... ili DSN=...) ili putanja do datoteke baze\n"
        "  --types         drugi red: vrsta podatka svakog polja (integer, currency, decimal,\n"
        "                  float, date, text, boolean)\n"
        "  Primjer: knjige query --db knjige.db \"SELECT COUNT(*) AS N FROM dbo.KnjPrihRashFBiH\"\n");
}

QString defaultDatabasePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/knjige-demo.db");
}

QString databaseFileProblem(const QString& path, const QString& missing)
{
    const QFileInfo info(path);
    if (info.isFile())
        return {};
    if (path.trimmed().isEmpty())
        return QStringLiteral("Putanja do datoteke baze je prazna.");
    if (info.isDir())
        return QStringLiteral("%1 je mapa, a ne datoteka baze.").arg(path);
    if (info.exists())
        return QStringLiteral("%1 nije obična datoteka, pa ne može biti datoteka baze.").arg(path);
    return QStringLiteral("Datoteka baze %1 ne postoji").arg(path) + missing;
}

QStringList batchStatements(const QString& sql)
{
    QStringList out;
    for (const QString& statement : tsql::splitStatements(sql)) {
        const QVector<tsql::Token> tokens = tsql::tokenize(statement);
        if (std::any_of(tokens.begin(), tokens.end(), [](const tsql::Token& t) { return !t.isTrivia(); }))
            out << statement;
    }
    return out;
}

bool returnsRows(const QString& sql)
{
    int i = 0;
    while (i < sql.size()) {
        if (sql[i].isSpace() || sql[i] == u'(') {
            ++i;
        } else if (sql.mid(i, 2) == QLatin1String("--")) {
            const int end = sql.indexOf(u'\n', i);
            i = end < 0 ? int(sql.size()) : end + 1;
        } else if (sql.mid(i, 2) == QLatin1String("/*")) {
            const int end = sql.indexOf(QLatin1String("*/"), i + 2);
            i = end < 0 ? int(sql.size()) : end + 2;
        } else {
            break;
        }
    }
    int end = i;
    while (end < sql.size() && (sql[end].isLetter() || sql[end] == u'_'))
        ++end;
    static const QSet<QString> rowWords = { QStringLiteral("SELECT"), QStringLiteral("WITH"), QStringLiteral("EXEC"),
        QStringLiteral("EXECUTE"), QStringLiteral("VALUES"), QStringLiteral("PRAGMA") };
    return rowWords.contains(sql.mid(i, end - i).toUpper());
}

int runInit(const QStringList& args)
{
    const Options o
        = parseOptions(args, { QStringLiteral("--db") }, { QStringLiteral("--demo"), QStringLiteral("--force") });
    if (!o.error.isEmpty())
        return complain(o.error + u'\n' + initUsage(), Usage);
    if (o.flags.contains(QStringLiteral("--help"))) {
        printUsage(initUsage());
        return Done;
    }
    if (!o.positional.isEmpty())
        return complain(QStringLiteral("Višak argumenata: %1\n").arg(o.positional.join(u' ')) + initUsage(), Usage);
    const bool given = o.values.contains(QStringLiteral("--db"));
    const QString path
        = QFileInfo(given ? o.values.value(QStringLiteral("--db")) : defaultDatabasePath()).absoluteFilePath();
    if (path.isEmpty() || (given && o.values.value(QStringLiteral("--db")).trimmed().isEmpty()))
        return complain(QStringLiteral("Opcija --db traži putanju datoteke.\n") + initUsage(), Usage);
    const QString folder = QFileInfo(path).absolutePath();
    // The folder of the default location is the program's own to make; a folder the
    // user names must already be there.
    if (!QFileInfo(folder).isDir() && (given || !QDir().mkpath(folder)))
        return complain(QStringLiteral("Mapa %1 ne postoji.").arg(folder));
    return createDatabase(
        path, o.flags.contains(QStringLiteral("--demo")), o.flags.contains(QStringLiteral("--force")));
}

int runQuery(const QStringList& args)
{
    reportClosedOutputAsWriteError();
    const Options o
        = parseOptions(args, { QStringLiteral("--db"), QStringLiteral("--conn") }, { QStringLiteral("--types") });
    if (!o.error.isEmpty())
        return complain(o.error + u'\n' + queryUsage(), Usage);
    if (o.flags.contains(QStringLiteral("--help"))) {
        printUsage(queryUsage());
        return Done;
    }
    if (o.positional.size() != 1)
        return complain(
            (o.positional.isEmpty() ? QStringLiteral("Nedostaje SQL naredba.\n")
                                    : QStringLiteral("SQL naredbu zadajte kao jedan argument, u navodnicima.\n"))
                + queryUsage(),
            Usage);
    int code = Done;
    const QString connection = connectionFor(o, queryUsage(), &code);
    if (connection.isEmpty())
        return code;
    const QStringList statements = batchStatements(readStatement(o.positional.front()));
    if (statements.isEmpty())
        return complain(QStringLiteral("SQL naredba je prazna."), Usage);
    db::Database db;
    if (!db.connect(connection))
        return complain(QStringLiteral("Spajanje na bazu nije uspjelo: ") + db.errorDescription());
    return runBatch(db, statements, o.flags.contains(QStringLiteral("--types")));
}

int complain(const QString& message, int code)
{
    QTextStream(stderr) << message << '\n';
    return code;
}

} // namespace knjige::host::cli
