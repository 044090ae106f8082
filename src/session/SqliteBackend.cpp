#include "session/DatabaseBackend.h"
#include "session/Dates.h"
#include "session/TSqlFunctions.h"
#include "session/TSqlTokenizer.h"
#include "session/TSqlTranslator.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

#include <atomic>
#include <cmath>

namespace knjige {
namespace {

using tsql::SqlType;

QString engineText(const QSqlError& e)
{
    if (e.nativeErrorCode() == QLatin1String("8"))
        return QStringLiteral("Baza podataka je otvorena samo za čitanje: ") + e.databaseText();
    if (e.nativeErrorCode() == QLatin1String("5") || e.nativeErrorCode() == QLatin1String("6"))
        return QStringLiteral("Baza podataka je zauzeta (drugi korisnik upravo piše u nju): ") + e.databaseText();
    return e.databaseText().isEmpty() ? e.text() : e.databaseText();
}

// The storage class of a value decides the type of a column the adapter could not type.
SqlType typeOfValue(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::LongLong:
    case QMetaType::Int: return SqlType::Int;
    case QMetaType::Double: return SqlType::Float;
    default: return SqlType::Text;
    }
}

void setCell(ResultSet& rs, int c, FieldType type, const QVariant& v)
{
    if (v.isNull()) {
        rs.setNull(c);
        return;
    }
    const bool isReal = v.typeId() == QMetaType::Double;
    switch (type) {
    case FieldType::Integer:
        rs.setInteger(c, isReal ? qint64(std::llround(v.toDouble())) : v.toLongLong());
        break;
    case FieldType::Boolean: rs.setInteger(c, v.toLongLong() != 0); break;
    case FieldType::Currency:
        if (isReal)
            rs.setMoney(c, Money::fromDouble(v.toDouble()));
        else if (v.typeId() == QMetaType::QString)
            rs.setMoney(c, Money::parse(v.toString()).value_or(Money()));
        else
            rs.setMoney(c, Money::fromWhole(v.toLongLong()));
        break;
    case FieldType::Decimal:
    case FieldType::Float: rs.setReal(c, v.toDouble()); break;
    case FieldType::Date: {
        const QString s = v.toString();
        QDate d = dates::fromIsoText(s);
        if (!d.isValid())
            d = dates::parseMonthFirst(s);
        if (d.isValid())
            rs.setDate(c, d);
        else
            rs.setNull(c);
        break;
    }
    case FieldType::Text: rs.setText(c, v.toString()); break;
    }
}

class SqliteBackend final : public DatabaseBackend {
public:
    SqliteBackend(const QString& path, bool create, QString* error)
    {
        static std::atomic<int> counter { 0 };
        m_name = QStringLiteral("knjige-sqlite-%1").arg(++counter);
        if (!create && !QFileInfo::exists(path)) {
            *error = QStringLiteral("Datoteka baze podataka ne postoji: ") + path;
            return;
        }
        m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        m_db.setDatabaseName(path);
        // A writer holding the file makes others wait this long before "database is locked".
        m_db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
        if (!m_db.open()) {
            *error = engineText(m_db.lastError());
            return;
        }
        const QVariant handle = m_db.driver()->handle();
        sqlite3* h = handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0
            ? *static_cast<sqlite3* const*>(handle.constData())
            : nullptr;
        if (!h || !tsql::registerFunctions(h)) {
            *error = QStringLiteral("Funkcije za T-SQL nije moguće registrirati na bazi ") + path;
            return;
        }
        if (!loadCatalog(error))
            return;
        m_ok = true;
    }

    ~SqliteBackend() override
    {
        if (m_db.isOpen())
            m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }

    bool ok() const { return m_ok; }
    SqlDialect dialect() const override { return SqlDialect::Sqlite; }

    bool select(const QString& tsql, ResultSet& result, QString* error) override
    {
        const auto t = m_translator.translate(tsql);
        for (const auto& st : t->statements) {
            if (st.kind == tsql::Translation::Kind::NoOp)
                continue;
            if (st.kind == tsql::Translation::Kind::Query)
                return query(st, result, error);
            if (!command(st, nullptr, error))
                return false;
        }
        result = ResultSet();
        return true;
    }

    bool execute(const QString& tsql, int* rowsAffected, QString* error) override
    {
        const auto t = m_translator.translate(tsql);
        int total = 0;
        for (const auto& st : t->statements) {
            if (st.kind == tsql::Translation::Kind::NoOp)
                continue;
            int n = 0;
            if (!command(st, &n, error))
                return false;
            total += n;
        }
        if (rowsAffected)
            *rowsAffected = total;
        return true;
    }

    bool executeBound(const QString& sql, const QVariantList& values, int* rowsAffected, QString* error) override
    {
        QSqlQuery q(m_db);
        if (!q.prepare(sql))
            return fail(q.lastError(), error);
        for (const QVariant& v : values)
            q.addBindValue(bindable(v));
        if (!q.exec())
            return fail(q.lastError(), error);
        if (rowsAffected)
            *rowsAffected = q.numRowsAffected();
        return true;
    }

    bool begin(QString* error) override { return m_db.transaction() || fail(m_db.lastError(), error); }
    bool commit(QString* error) override { return m_db.commit() || fail(m_db.lastError(), error); }
    bool rollback(QString* error) override { return m_db.rollback() || fail(m_db.lastError(), error); }

private:
    static bool fail(const QSqlError& e, QString* error)
    {
        *error = engineText(e);
        return false;
    }

    // Money goes in as a double, dates as the one ISO text form the dates are kept in.
    static QVariant bindable(const QVariant& v)
    {
        if (v.canConvert<Money>() && v.userType() == qMetaTypeId<Money>())
            return v.value<Money>().toDouble();
        if (v.typeId() == QMetaType::QDate)
            return v.toDate().isValid() ? QVariant(dates::isoText(v.toDate())) : QVariant();
        if (v.typeId() == QMetaType::QDateTime)
            return v.toDateTime().isValid() ? QVariant(dates::isoText(v.toDateTime().date())) : QVariant();
        return v;
    }

    bool command(const tsql::Translation::Statement& st, int* rowsAffected, QString* error)
    {
        QSqlQuery q(m_db);
        q.setForwardOnly(true);
        if (!q.exec(st.sql))
            return fail(q.lastError(), error);
        if (st.kind == tsql::Translation::Kind::Query) {
            while (q.next()) {
            }
            if (q.lastError().isValid())
                return fail(q.lastError(), error);
        }
        if (rowsAffected)
            *rowsAffected = std::max(0, q.numRowsAffected());
        if (st.changesSchema) {
            m_translator.clearCache();
            return loadCatalog(error);
        }
        return true;
    }

    bool query(const tsql::Translation::Statement& st, ResultSet& result, QString* error)
    {
        QSqlQuery q(m_db);
        q.setForwardOnly(true);
        if (!q.exec(st.sql))
            return fail(q.lastError(), error);
        const QSqlRecord record = q.record();
        const int n = record.count();
        QVector<SqlType> types = st.columnTypes.size() == n ? st.columnTypes : QVector<SqlType>(n, SqlType::Unknown);
        // Columns the adapter could not type take the type of their first value, so
        // those rows are held until every such column has shown one.
        std::vector<QVariantList> held;
        auto unknown = [&] { return std::count(types.begin(), types.end(), SqlType::Unknown); };
        while (unknown() > 0 && q.next()) {
            QVariantList row;
            for (int c = 0; c < n; ++c) {
                row << q.value(c);
                if (types[c] == SqlType::Unknown && !row[c].isNull())
                    types[c] = typeOfValue(row[c]);
            }
            held.push_back(row);
        }
        if (q.lastError().isValid())
            return fail(q.lastError(), error);
        QVector<Field> fields;
        for (int c = 0; c < n; ++c)
            fields << Field { record.fieldName(c), tsql::fieldTypeOf(types[c]) };
        ResultSet rs(fields);
        for (const QVariantList& row : held) {
            rs.appendRow();
            for (int c = 0; c < n; ++c)
                setCell(rs, c, fields[c].type, row[c]);
        }
        if (unknown() == 0 || held.empty()) {
            while (q.next()) {
                rs.appendRow();
                for (int c = 0; c < n; ++c)
                    setCell(rs, c, fields[c].type, q.value(c));
            }
        }
        // An error met on a later row (a zero divisor) fails the whole statement.
        if (q.lastError().isValid())
            return fail(q.lastError(), error);
        result = std::move(rs);
        return true;
    }

    bool loadCatalog(QString* error)
    {
        m_catalog.clear();
        QSqlQuery tables(m_db);
        if (!tables.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type='table'")))
            return fail(tables.lastError(), error);
        QStringList names;
        while (tables.next())
            names << tables.value(0).toString();
        for (const QString& name : names) {
            QSqlQuery info(m_db);
            if (!info.exec(QStringLiteral("PRAGMA table_info(%1)").arg(tsql::quoteString(name))))
                return fail(info.lastError(), error);
            tsql::TableDef table;
            table.name = name;
            while (info.next()) {
                tsql::ColumnDef col;
                col.name = info.value(1).toString();
                col.type = tsql::typeFromSqliteDeclared(info.value(2).toString(), &col.width);
                table.columns << col;
            }
            m_catalog.add(table);
        }
        return true;
    }

    QString m_name;
    QSqlDatabase m_db;
    tsql::Catalog m_catalog;
    tsql::Translator m_translator { m_catalog };
    bool m_ok = false;
};

} // namespace

std::unique_ptr<DatabaseBackend> openSqliteBackend(const QString& path, bool create, QString* error)
{
    QString ignored;
    QString* err = error ? error : &ignored;
    if (path.trimmed().isEmpty()) {
        *err = QStringLiteral("Nije zadana datoteka baze podataka.");
        return nullptr;
    }
    auto backend = std::make_unique<SqliteBackend>(path, create, err);
    if (!backend->ok())
        return nullptr;
    return backend;
}

} // namespace knjige
