#include "session/Dates.h"
#include "session/db/DatabaseBackend.h"
#include "session/db/DatabaseFiles.h"
#include "session/db/SqliteLocks.h"
#include "session/tsql/TSqlFunctions.h"
#include "session/tsql/TSqlTokenizer.h"
#include "session/tsql/TSqlTranslator.h"

#include <QDateTime>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <atomic>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <sqlite3.h>

namespace knjige::db
{
namespace
{

using tsql::SqlType;

// The adapter types an expression as SQL Server would; a result set knows fewer kinds.
// A column still Unknown here held only NULLs: it reads as text.
FieldType fieldTypeOf(SqlType t)
{
    switch (t) {
    case SqlType::Bit:
        return FieldType::Boolean;
    case SqlType::Int:
        return FieldType::Integer;
    case SqlType::Money:
        return FieldType::Currency;
    case SqlType::Decimal:
        return FieldType::Decimal;
    case SqlType::Float:
        return FieldType::Float;
    case SqlType::Date:
        return FieldType::Date;
    default:
        return FieldType::Text;
    }
}

constexpr int kBusyTimeoutMs = 10000;
// Rows a part of a result read in parts holds.
constexpr int kPartRows = 512;

QString engineText(const QSqlError& e)
{
    if (e.nativeErrorCode() == QLatin1String("8"))
        return QStringLiteral("Baza podataka je otvorena samo za čitanje: ") + e.databaseText();
    if (e.nativeErrorCode() == QLatin1String("5") || e.nativeErrorCode() == QLatin1String("6"))
        return QStringLiteral("Baza podataka je zauzeta (drugi korisnik upravo piše u nju): ") + e.databaseText();
    return e.databaseText().isEmpty() ? e.text() : e.databaseText();
}

// The table and columns a parameterised row write binds its first values to: the
// helper's own "INSERT INTO T (a,b) VALUES (?,?)" and "UPDATE T SET a = ?,b = ? WHERE".
struct BoundColumns {
    QString table;
    QStringList columns;
};
BoundColumns boundColumns(const QString& sql)
{
    static const QRegularExpression insert(QStringLiteral("^INSERT INTO (\\S+) \\(([^)]*)\\) (VALUES|SELECT)"));
    static const QRegularExpression update(QStringLiteral("^UPDATE (\\S+) SET (.*?) WHERE"));
    BoundColumns out;
    if (const auto m = insert.match(sql); m.hasMatch()) {
        out.table = m.captured(1);
        for (const QString& c : m.captured(2).split(u','))
            out.columns << c.trimmed();
    } else if (const auto u = update.match(sql); u.hasMatch()) {
        out.table = u.captured(1);
        for (const QString& set : u.captured(2).split(u','))
            out.columns << set.section(u'=', 0, 0).trimmed();
    }
    return out;
}

std::optional<QVariant> boundValue(const QString& sql, const QVariantList& values, const QString& column)
{
    const QStringList columns = boundColumns(sql).columns;
    for (int i = 0; i < columns.size() && i < values.size(); ++i)
        if (columns[i].compare(column, Qt::CaseInsensitive) == 0)
            return values[i];
    return std::nullopt;
}

// A bound value as the server converts a parameter into its column: a fraction into
// a whole number is cut off, a number into a date counts days from 1900-01-01, a
// month-first text into a date is read as SET DATEFORMAT mdy reads it. What cannot
// be converted is left for the column's check to refuse.
QVariant convertedFor(SqlType column, const QVariant& v)
{
    if (column == SqlType::Int && v.typeId() == QMetaType::Double) {
        const double d = std::trunc(v.toDouble());
        return std::fabs(d) < 9e18 ? QVariant(qlonglong(d)) : v;
    }
    if (column != SqlType::Date)
        return v;
    QDate date;
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double: {
        const double days = std::floor(v.toDouble());
        if (days >= -53690.0 && days <= 2958463.0)
            date = QDate(1900, 1, 1).addDays(qint64(days));
        break;
    }
    case QMetaType::QString:
        if (!dates::fromIsoText(v.toString()).isValid())
            date = dates::parseMonthFirst(v.toString().trimmed());
        break;
    default:
        break;
    }
    return date.isValid() ? QVariant(dates::isoText(date)) : v;
}

// A table's check (named "tsql:<type>:<column>" by TSqlCreateTable.cpp) refused a
// value: the server's message for it, with the value where the write bound it.
QString checkFailure(const QString& text, const std::optional<QVariant>& value)
{
    static const QRegularExpression check(QStringLiteral("CHECK constraint failed: tsql:(\\w+):(.+)$"));
    const auto m = check.match(text);
    if (!m.hasMatch())
        return text;
    const QString type = m.captured(1);
    if (type == u"nvarchar")
        return QStringLiteral("String or binary data would be truncated.");
    if (type == u"datetime")
        return QStringLiteral("Conversion failed when converting date and/or time from character string.");
    const bool isText = value && value->typeId() == QMetaType::QString;
    if (type == u"money")
        return isText ? QStringLiteral("Cannot convert a char value to money. The char value has incorrect syntax.")
                      : tsql::overflowMessage("money");
    if (type == u"numeric" || type == u"float")
        return QStringLiteral("Error converting data type nvarchar to %1.").arg(type);
    bool whole = false;
    if (isText)
        value->toString().trimmed().toLongLong(&whole);
    if (isText && !whole)
        return QStringLiteral("Conversion failed when converting the nvarchar value '%1' to data type %2.")
            .arg(value->toString(), type);
    return tsql::overflowMessage(type.toLatin1().constData());
}

// The storage class of a value decides the type of a column the adapter could not type.
SqlType typeOfValue(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::LongLong:
    case QMetaType::Int:
        return SqlType::Int;
    case QMetaType::Double:
        return SqlType::Float;
    default:
        return SqlType::Text;
    }
}

// Whole numbers of a column the adapter typed as int are the server's 32-bit int;
// others (typed from their values) may hold any 64-bit number.
bool inRange(qint64 v, bool int32)
{
    return !int32 || (v >= std::numeric_limits<qint32>::min() && v <= std::numeric_limits<qint32>::max());
}

// Writes a value into a cell of its column's type. False when the type cannot hold
// it (the server would have stopped with an arithmetic overflow).
bool setCell(ResultSet& rs, int c, FieldType type, const QVariant& v, bool int32)
{
    if (v.isNull()) {
        rs.setNull(c);
        return true;
    }
    const bool isReal = v.typeId() == QMetaType::Double;
    switch (type) {
    case FieldType::Integer: {
        const double d = v.toDouble();
        if (isReal && !(d > -9223372036854775808.0 && d < 9223372036854775808.0))
            return false;
        // A fraction in a whole-number column is cut off, as the server converts it.
        const qint64 i = isReal ? qint64(std::trunc(d)) : v.toLongLong();
        if (!inRange(i, int32))
            return false;
        rs.setInteger(c, i);
        break;
    }
    case FieldType::Boolean:
        rs.setInteger(c, v.toLongLong() != 0);
        break;
    case FieldType::Currency:
        if (isReal) {
            const auto units = tsql::moneyUnits(v.toDouble());
            if (!units)
                return false;
            rs.setMoney(c, Money::fromUnits(*units));
        } else if (v.typeId() == QMetaType::QString) {
            rs.setMoney(c, Money::parse(v.toString()).value_or(Money()));
        } else {
            const qint64 whole = v.toLongLong();
            if (!tsql::moneyUnits(double(whole)))
                return false;
            rs.setMoney(c, Money::fromWhole(whole));
        }
        break;
    case FieldType::Decimal:
    case FieldType::Float:
        rs.setReal(c, v.toDouble());
        break;
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
    case FieldType::Text:
        rs.setText(c, v.toString());
        break;
    }
    return true;
}

class SqliteBackend final : public DatabaseBackend
{
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
        // A writer holding the file makes others wait this long before "database is
        // locked": long enough for another operator's renumbering of a large book.
        m_db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyTimeoutMs));
        if (!m_db.open()) {
            *error = engineText(m_db.lastError());
            return;
        }
        const QVariant handle = m_db.driver()->handle();
        sqlite3* h = handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0
            ? *static_cast<sqlite3* const*>(handle.constData())
            : nullptr;
        m_handle = h;
        if (!h || !tsql::registerFunctions(h)) {
            *error = QStringLiteral("Funkcije za T-SQL nije moguće registrirati na bazi ") + path;
            return;
        }
        // Write-ahead logging: readers never wait for a writer, nor a writer for
        // readers. A file that cannot take it (read-only) keeps its journal.
        sqlite3_exec(h, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
        if (!loadCatalog(error))
            return;
        m_ok = true;
        m_path = path;
        databaseFileOpened(m_path);
    }

    ~SqliteBackend() override
    {
        if (m_ok)
            databaseFileClosed(m_path);
        if (m_db.isOpen())
            m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }

    bool ok() const { return m_ok; }
    SqlDialect dialect() const override { return SqlDialect::Sqlite; }

    bool select(const QString& tsql, ResultSet& result, QString* error) override
    {
        return selectInto(tsql, result, nullptr, error);
    }

    bool selectInParts(const QString& tsql, const std::function<bool(const ResultSet&)>& part, QString* error) override
    {
        ResultSet rest;
        return selectInto(tsql, rest, &part, error);
    }

    bool execute(const QString& tsql, int* rowsAffected, QString* error) override
    {
        const auto t = m_translator.translate(tsql);
        int total = 0;
        for (const auto& st : t->statements) {
            if (!st.error.isEmpty())
                return refuse(st, error);
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
        const BoundColumns target = boundColumns(sql);
        const tsql::TableDef* table = target.table.isEmpty() ? nullptr : m_catalog.find(target.table);
        for (int i = 0; i < values.size(); ++i) {
            const tsql::ColumnDef* column
                = table && i < target.columns.size() ? table->column(target.columns[i]) : nullptr;
            q.addBindValue(bindable(column ? convertedFor(column->type, values[i]) : values[i]));
        }
        if (!q.exec()) {
            const QString text = engineText(q.lastError());
            static const QRegularExpression check(QStringLiteral("tsql:\\w+:(.+)$"));
            *error = checkFailure(text, boundValue(sql, values, check.match(text).captured(1)));
            return false;
        }
        if (rowsAffected)
            *rowsAffected = q.numRowsAffected();
        return true;
    }

    bool executeNative(const QString& sql, int* rowsAffected, QString* error) override
    {
        return executeBound(sql, {}, rowsAffected, error);
    }

    // A transaction takes the write lock at its start, waiting for another writer
    // as long as the busy timeout allows: a deferred one that read first could not
    // wait for the lock later and would fail at once.
    bool begin(QString* error) override
    {
        QSqlQuery q(m_db);
        return q.exec(QStringLiteral("BEGIN IMMEDIATE")) || fail(q.lastError(), error);
    }
    bool commit(QString* error) override { return m_db.commit() || fail(m_db.lastError(), error); }
    bool rollback(QString* error) override { return m_db.rollback() || fail(m_db.lastError(), error); }

private:
    static bool fail(const QSqlError& e, QString* error)
    {
        *error = checkFailure(engineText(e), std::nullopt);
        return false;
    }

    static bool refuse(const tsql::Translation::Statement& st, QString* error)
    {
        *error = st.error;
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
            while (q.next()) { }
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

    // With `part`, the rows go to it a part at a time and `result` is scratch.
    bool selectInto(
        const QString& tsql, ResultSet& result, const std::function<bool(const ResultSet&)>* part, QString* error)
    {
        const auto t = m_translator.translate(tsql);
        for (const auto& st : t->statements) {
            if (!st.error.isEmpty())
                return refuse(st, error);
            if (st.kind == tsql::Translation::Kind::NoOp)
                continue;
            if (st.kind == tsql::Translation::Kind::Query)
                return query(st, result, part, error);
            if (!command(st, nullptr, error))
                return false;
        }
        result = ResultSet();
        return !part || (*part)(result) || stopped(error);
    }

    // Reads straight from SQLite's own statement into the typed columns: a large book
    // is read on every refresh, and a value object per cell would double the time.
    bool query(const tsql::Translation::Statement& st, ResultSet& result,
        const std::function<bool(const ResultSet&)>* part, QString* error)
    {
        const QByteArray sql = st.sql.toUtf8();
        sqlite3_stmt* raw = nullptr;
        if (sqlite3_prepare_v2(m_handle, sql.constData(), int(sql.size()), &raw, nullptr) != SQLITE_OK)
            return failNative(error);
        const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(raw, sqlite3_finalize);
        const int n = sqlite3_column_count(raw);
        QVector<SqlType> types = st.columnTypes.size() == n ? st.columnTypes : QVector<SqlType>(n, SqlType::Unknown);

        // Columns the adapter could not type take the storage class of their first
        // value, so rows are held back until every such column has shown one.
        std::vector<QVariantList> held;
        const auto unknown = [&] { return std::count(types.begin(), types.end(), SqlType::Unknown); };
        int rc = SQLITE_ROW;
        while (unknown() > 0 && (rc = sqlite3_step(raw)) == SQLITE_ROW) {
            QVariantList row;
            for (int c = 0; c < n; ++c) {
                row << valueAt(raw, c);
                if (types[c] == SqlType::Unknown && !row[c].isNull())
                    types[c] = typeOfValue(row[c]);
            }
            held.push_back(row);
        }
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            return failNative(error);

        QVector<Field> fields;
        std::vector<char> int32(n, 0);
        for (int c = 0; c < n; ++c) {
            // SQLite names an expression without an alias by its text (of the translated
            // statement, at that); SQL Server leaves it unnamed.
            const bool unnamed = st.columnNames.size() == n && st.columnNames[c].isEmpty();
            fields << Field { unnamed ? QString() : columnName(raw, c), fieldTypeOf(types[c]) };
            int32[c] = st.columnTypes.size() == n && st.columnTypes[c] == SqlType::Int;
        }
        ResultSet rs(fields);
        for (const QVariantList& row : held) {
            rs.appendRow();
            for (int c = 0; c < n; ++c)
                if (!setCell(rs, c, fields[c].type, row[c], int32[c]))
                    return overflow(fields[c].type, error);
        }
        if (rc == SQLITE_ROW) {
            while ((rc = sqlite3_step(raw)) == SQLITE_ROW) {
                if (part && rs.rowCount() >= kPartRows) {
                    if (!(*part)(rs))
                        return stopped(error);
                    rs.clearRows();
                }
                rs.appendRow();
                for (int c = 0; c < n; ++c)
                    if (!readCell(raw, c, fields[c].type, int32[c], rs))
                        return overflow(fields[c].type, error);
            }
        }
        // An error met on a later row (a zero divisor) fails the whole statement.
        if (rc != SQLITE_DONE)
            return failNative(error);
        if (part)
            return (*part)(rs) || stopped(error);
        result = std::move(rs);
        return true;
    }

    // A money or int result beyond its type: the server stops the statement.
    static bool overflow(FieldType type, QString* error)
    {
        *error = tsql::overflowMessage(type == FieldType::Currency ? "money" : "int");
        return false;
    }

    bool failNative(QString* error) const
    {
        const int code = sqlite3_errcode(m_handle) & 0xff;
        const QString text = QString::fromUtf8(sqlite3_errmsg(m_handle));
        if (code == SQLITE_READONLY)
            *error = QStringLiteral("Baza podataka je otvorena samo za čitanje: ") + text;
        else if (code == SQLITE_BUSY || code == SQLITE_LOCKED)
            *error = QStringLiteral("Baza podataka je zauzeta (drugi korisnik upravo piše u nju): ") + text;
        else
            *error = checkFailure(text, std::nullopt);
        return false;
    }

    // The field name as the result names it: quotes dropped, a table prefix too.
    static QString columnName(sqlite3_stmt* stmt, int c)
    {
        QString name = QString::fromUtf8(sqlite3_column_name(stmt, c)).remove(u'"');
        const qsizetype dot = name.lastIndexOf(u'.');
        return dot < 0 ? name : name.mid(dot + 1);
    }

    static QString textAt(sqlite3_stmt* stmt, int c)
    {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(stmt, c));
        return QString::fromUtf8(bytes, sqlite3_column_bytes(stmt, c));
    }

    static QVariant valueAt(sqlite3_stmt* stmt, int c)
    {
        switch (sqlite3_column_type(stmt, c)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
            return QVariant::fromValue<qlonglong>(sqlite3_column_int64(stmt, c));
        case SQLITE_FLOAT:
            return sqlite3_column_double(stmt, c);
        default:
            return textAt(stmt, c);
        }
    }

    // "yyyy-MM-dd", the one form dates are stored in, read from the bytes themselves.
    static QDate isoDate(const unsigned char* p, int length)
    {
        if (length < 10 || p[4] != '-' || p[7] != '-')
            return {};
        int v[3] = { 0, 0, 0 };
        const int from[3] = { 0, 5, 8 };
        const int digits[3] = { 4, 2, 2 };
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < digits[k]; ++i) {
                const unsigned char ch = p[from[k] + i];
                if (ch < '0' || ch > '9')
                    return {};
                v[k] = v[k] * 10 + (ch - '0');
            }
        return QDate(v[0], v[1], v[2]);
    }

    // As setCell, for the value in the statement's current row.
    static bool readCell(sqlite3_stmt* stmt, int c, FieldType type, bool int32, ResultSet& rs)
    {
        const int storage = sqlite3_column_type(stmt, c);
        if (storage == SQLITE_NULL)
            return true; // a new row's cells start NULL
        switch (type) {
        case FieldType::Integer:
        case FieldType::Boolean:
            if (storage == SQLITE_INTEGER) {
                const qint64 v = sqlite3_column_int64(stmt, c);
                if (type == FieldType::Integer && !inRange(v, int32))
                    return false;
                rs.setInteger(c, type == FieldType::Boolean ? v != 0 : v);
                return true;
            }
            break;
        case FieldType::Currency:
            if (storage == SQLITE_FLOAT) {
                const auto units = tsql::moneyUnits(sqlite3_column_double(stmt, c));
                if (!units)
                    return false;
                rs.setMoney(c, Money::fromUnits(*units));
                return true;
            }
            // A whole number: the "else 0" of a CASE, half the cells of a book's amounts.
            if (storage == SQLITE_INTEGER) {
                const qint64 whole = sqlite3_column_int64(stmt, c);
                if (!tsql::moneyUnits(double(whole)))
                    return false;
                rs.setMoney(c, Money::fromWhole(whole));
                return true;
            }
            break;
        case FieldType::Decimal:
        case FieldType::Float:
            if (storage != SQLITE_TEXT) {
                rs.setReal(c, sqlite3_column_double(stmt, c));
                return true;
            }
            break;
        case FieldType::Date:
            if (storage == SQLITE_TEXT) {
                const QDate d = isoDate(sqlite3_column_text(stmt, c), sqlite3_column_bytes(stmt, c));
                if (d.isValid()) {
                    rs.setDate(c, d);
                    return true;
                }
            }
            break;
        case FieldType::Text:
            if (storage == SQLITE_TEXT) {
                const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(stmt, c));
                rs.setUtf8(c, QByteArrayView(bytes, sqlite3_column_bytes(stmt, c)));
                return true;
            }
            break;
        }
        // Anything stored in another form than its column's goes the general way.
        return setCell(rs, c, type, valueAt(stmt, c), int32);
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
    QString m_path;
    QSqlDatabase m_db;
    tsql::Catalog m_catalog;
    tsql::Translator m_translator { m_catalog };
    bool m_ok = false;
    sqlite3* m_handle = nullptr;
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
    keepSqliteLocksThroughForeignCloses();
    auto backend = std::make_unique<SqliteBackend>(path, create, err);
    if (!backend->ok())
        return nullptr;
    return backend;
}

} // namespace knjige::db
