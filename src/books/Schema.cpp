#include "books/Schema.h"

#include "session/db/Database.h"
#include "session/db/DatabaseBackend.h"
#include "session/tsql/TSqlTranslator.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

static void initSchemaResource()
{
    Q_INIT_RESOURCE(schema);
}

namespace knjige::books
{
namespace
{

// The embedded database numbers new asset rows with a trigger of its own dialect; the
// script's T-SQL trigger does the same on SQL Server. Here each row takes the next
// number as it is inserted, and the opening state's INSERT ... SELECT inserts in the
// order it reads the year before: by the index on company, year and RBroj, so in the
// order of the old numbers (a test holds this).
const char* const kSqliteAssetTrigger
    = "CREATE TRIGGER KnjPopListaDugImovFBiH_RBroj AFTER INSERT ON KnjPopListaDugImovFBiH\n"
      "FOR EACH ROW WHEN NEW.RBroj IS NULL\n"
      "BEGIN\n"
      "    UPDATE KnjPopListaDugImovFBiH SET RBroj = (SELECT IFNULL(MAX(K.RBroj), 0) + 1\n"
      "        FROM KnjPopListaDugImovFBiH K\n"
      "        WHERE K.BrojPoduzeca = NEW.BrojPoduzeca AND K.GodinaKnj = NEW.GodinaKnj)\n"
      "    WHERE rowid = NEW.rowid;\n"
      "END";

QString scriptText()
{
    initSchemaResource();
    QFile file(QStringLiteral(":/knjige/sql/schema.sql"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll());
}

bool isTrigger(const QString& batch)
{
    static const QRegularExpression re(
        QStringLiteral("^\\s*(--[^\\n]*\\n\\s*)*CREATE\\s+TRIGGER\\b"), QRegularExpression::CaseInsensitiveOption);
    return re.match(batch).hasMatch();
}

const QHash<QString, tsql::TableDef>& tables()
{
    static const QHash<QString, tsql::TableDef> byName = [] {
        QHash<QString, tsql::TableDef> out;
        for (const QString& statement : schemaStatements())
            if (auto table = tsql::parseCreateTable(statement))
                out.insert(tsql::Catalog::key(table->name), *table);
        return out;
    }();
    return byName;
}

} // namespace

QStringList schemaStatements()
{
    return scriptStatements(scriptText());
}

QStringList scriptStatements(const QString& script)
{
    static const QRegularExpression go(QStringLiteral("^\\s*GO\\s*$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::MultilineOption);
    QStringList out;
    for (const QString& batch : script.split(go)) {
        QString text = batch.trimmed();
        // Comments that stand before a batch belong to the script, not to the statement.
        while (text.startsWith(QStringLiteral("--"))) {
            const int eol = text.indexOf(u'\n');
            text = eol < 0 ? QString() : text.mid(eol + 1).trimmed();
        }
        if (!text.isEmpty())
            out << text;
    }
    return out;
}

bool runScript(db::Database& db, QStringList statements, QString* error)
{
    if (statements.isEmpty()) {
        if (error)
            *error = QStringLiteral("Skripta baze podataka nije dostupna.");
        return false;
    }
    db::TransactionGuard guard(db);
    for (const QString& statement : statements)
        if (!db.execute(statement)) {
            if (error)
                *error = db.errorDescription();
            return false;
        }
    if (guard.isActive() && !guard.commit()) {
        if (error)
            *error = db.errorDescription();
        return false;
    }
    return true;
}

bool createSchema(db::Database& db, QString* error)
{
    QStringList statements = schemaStatements();
    // The embedded database numbers asset rows with a trigger of its own dialect.
    if (db.dialect() == db::SqlDialect::Sqlite && !statements.isEmpty()) {
        statements.removeIf(isTrigger);
        statements << QString::fromLatin1(kSqliteAssetTrigger);
    }
    return runScript(db, statements, error);
}

bool createEmbeddedDatabase(const QString& path, QString* error)
{
    if (QFileInfo::exists(path)) {
        if (error)
            *error = QStringLiteral("Datoteka već postoji: ") + path;
        return false;
    }
    QString ignored;
    QString* err = error ? error : &ignored;
    if (!db::openSqliteBackend(path, true, err))
        return false;
    db::Database db;
    if (!db.connect(path)) {
        *err = db.errorDescription();
        return false;
    }
    return createSchema(db, err);
}

int textColumnWidth(const QString& table, const QString& column)
{
    const auto it = tables().constFind(tsql::Catalog::key(table));
    if (it == tables().constEnd())
        return 0;
    const tsql::ColumnDef* c = it->column(column);
    return c ? c->width : 0;
}

} // namespace knjige::books
