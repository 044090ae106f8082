#include "session/db/OdbcBackend.h"

#include "session/db/ConnectionString.h"
#include "session/db/DatabaseBackend.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <atomic>

namespace knjige::db
{
namespace
{

// The ODBC SQL type codes (sql.h, sqlext.h, msodbcsql.h), kept here so that this file
// needs no driver manager headers.
enum OdbcSqlType {
    SqlBit = -7,
    SqlTinyInt = -6,
    SqlBigInt = -5,
    SqlNumeric = 2,
    SqlDecimal = 3,
    SqlInteger = 4,
    SqlSmallInt = 5,
    SqlFloat = 6,
    SqlReal = 7,
    SqlDouble = 8,
    SqlDateTime = 9, // SQL_DATE of ODBC 2
    SqlTimestamp = 11, // ODBC 2
    SqlTypeDate = 91,
    SqlTypeTimestamp = 93,
    SqlServerDateTimeOffset = -155,
};

QString errorText(const QSqlError& e)
{
    const QString own = e.databaseText().trimmed();
    return own.isEmpty() ? e.text().trimmed() : own;
}

bool fail(QString* error, const QSqlError& e)
{
    if (error)
        *error = errorText(e);
    return false;
}

// What the driver can bind: amounts go as exact text with four decimals (the
// server converts them to money without a detour through floating point); a value
// with no type goes as a NULL text.
QVariant bindable(const QVariant& v)
{
    if (v.userType() == qMetaTypeId<Money>())
        return v.value<Money>().toString();
    if (!v.isValid())
        return QVariant(QMetaType::fromType<QString>());
    return v;
}

QString newConnectionName()
{
    static std::atomic<int> counter { 0 };
    return QStringLiteral("knjige-odbc-%1").arg(++counter);
}

class OdbcBackend final : public DatabaseBackend
{
public:
    OdbcBackend()
        : m_name(newConnectionName())
    {
    }
    ~OdbcBackend() override
    {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }

    bool open(const QString& odbc, QString* error);

    SqlDialect dialect() const override { return m_dialect; }
    bool select(const QString& tsql, ResultSet& result, QString* error) override;
    bool execute(const QString& tsql, int* rowsAffected, QString* error) override;
    bool executeBound(const QString& sql, const QVariantList& values, int* rowsAffected, QString* error) override;
    bool executeNative(const QString& sql, int* rowsAffected, QString* error) override
    {
        return execute(sql, rowsAffected, error);
    }
    bool begin(QString* error) override { return m_db.transaction() || fail(error, m_db.lastError()); }
    bool commit(QString* error) override { return m_db.commit() || fail(error, m_db.lastError()); }
    bool rollback(QString* error) override { return m_db.rollback() || fail(error, m_db.lastError()); }

private:
    bool detectDialect(QString* error);
    int affectedRows(QSqlQuery& q);

    QString m_name;
    QSqlDatabase m_db;
    SqlDialect m_dialect = SqlDialect::SqlServer;
};

bool OdbcBackend::open(const QString& odbc, QString* error)
{
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC"))) {
        *error = QStringLiteral("Qt-ov ODBC upravljački program (QODBC) nije instaliran.");
        return false;
    }
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), m_name);
    m_db.setConnectOptions(QStringLiteral("SQL_ATTR_ODBC_VERSION=SQL_OV_ODBC3;SQL_ATTR_LOGIN_TIMEOUT=15"));
    m_db.setDatabaseName(qodbcDatabaseName(odbc));
    if (!m_db.open())
        return fail(error, m_db.lastError());
    return detectDialect(error);
}

// SQL Server gets its per-connection settings. A SQLite database reached through its
// ODBC driver (the way the plumbing is tested) takes no SET statements and speaks
// SQLite's dialect for the component's own row statements.
bool OdbcBackend::detectDialect(QString* error)
{
    const QSqlDriver::DbmsType dbms = m_db.driver()->dbmsType();
    if (dbms != QSqlDriver::MSSqlServer && dbms != QSqlDriver::Sybase) {
        QSqlQuery probe(m_db);
        if (probe.exec(QStringLiteral("SELECT sqlite_version()"))) {
            m_dialect = SqlDialect::Sqlite;
            return true;
        }
    }
    m_dialect = SqlDialect::SqlServer;
    for (const QString& statement : sqlServerSessionSetup()) {
        QSqlQuery q(m_db);
        if (!q.exec(statement))
            return fail(error, q.lastError());
    }
    return true;
}

// Some drivers report -1 for a prepared statement's count, and SQL Server's under
// SET NOCOUNT ON; the server still keeps the count of the last statement.
int OdbcBackend::affectedRows(QSqlQuery& q)
{
    const int reported = q.numRowsAffected();
    q.finish();
    if (reported >= 0)
        return reported;
    QSqlQuery count(m_db);
    count.setForwardOnly(true);
    const QString sql
        = m_dialect == SqlDialect::Sqlite ? QStringLiteral("SELECT changes()") : QStringLiteral("SELECT @@ROWCOUNT");
    if (!count.exec(sql) || !count.next())
        return -1;
    return count.value(0).toInt();
}

bool OdbcBackend::select(const QString& tsql, ResultSet& result, QString* error)
{
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    q.setNumericalPrecisionPolicy(QSql::HighPrecision);
    if (!q.exec(tsql))
        return fail(error, q.lastError());
    // A batch may start with statements that return no rows.
    while (!q.isSelect() && q.nextResult()) { }
    if (!q.isSelect()) {
        q.finish();
        result = ResultSet();
        return true;
    }
    const QSqlRecord record = q.record();
    QVector<Field> fields;
    fields.reserve(record.count());
    for (int c = 0; c < record.count(); ++c) {
        const QSqlField f = record.field(c);
        fields.push_back({ f.name(), odbcFieldType(f.typeID(), f.length(), f.precision()) });
    }
    ResultSet rows(fields);
    while (q.next()) {
        rows.appendRow();
        for (int c = 0; c < fields.size(); ++c)
            rows.set(c, q.value(c));
    }
    const QSqlError fetchError = q.lastError();
    // The connection takes no other statement while a result is open.
    q.finish();
    if (fetchError.isValid())
        return fail(error, fetchError);
    result = std::move(rows);
    return true;
}

bool OdbcBackend::execute(const QString& tsql, int* rowsAffected, QString* error)
{
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.exec(tsql))
        return fail(error, q.lastError());
    if (rowsAffected)
        *rowsAffected = affectedRows(q);
    q.finish();
    return true;
}

bool OdbcBackend::executeBound(const QString& sql, const QVariantList& values, int* rowsAffected, QString* error)
{
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        return fail(error, q.lastError());
    for (const QVariant& v : values)
        q.addBindValue(bindable(v));
    if (!q.exec())
        return fail(error, q.lastError());
    if (rowsAffected)
        *rowsAffected = affectedRows(q);
    q.finish();
    return true;
}

} // namespace

FieldType odbcFieldType(int sqlType, int columnSize, int decimalDigits)
{
    switch (sqlType) {
    case SqlBit:
        return FieldType::Boolean;
    case SqlTinyInt:
    case SqlSmallInt:
    case SqlInteger:
    case SqlBigInt:
        return FieldType::Integer;
    case SqlDecimal:
    case SqlNumeric:
        if (decimalDigits == 4 && (columnSize == 19 || columnSize == 10))
            return FieldType::Currency;
        return FieldType::Decimal;
    case SqlFloat:
    case SqlReal:
    case SqlDouble:
        return FieldType::Float;
    case SqlDateTime:
    case SqlTimestamp:
    case SqlTypeDate:
    case SqlTypeTimestamp:
    case SqlServerDateTimeOffset:
        return FieldType::Date;
    default:
        return FieldType::Text;
    }
}

QString qodbcDatabaseName(const QString& odbc)
{
    // Qt's ODBC driver (before 6.5) hands the driver manager the string's closing NUL
    // as part of it, and a value last in the string would take it along (FreeTDS sends
    // it with the password); FreeTDS before 1.4 also keeps the closing brace of a braced
    // value that ends the string. A ';' of its own ends the last value for both.
    const QString closed = odbc.trimmed().endsWith(u';') ? odbc : odbc + u';';
    if ((closed.contains(QLatin1String("DRIVER="), Qt::CaseInsensitive)
            || closed.contains(QLatin1String("SERVER="), Qt::CaseInsensitive))
        && !closed.contains(QLatin1String(".dsn"), Qt::CaseInsensitive))
        return closed;
    static const QRegularExpression dsnKey(
        QStringLiteral("^\\s*(FILE)?DSN\\s*=\\s*"), QRegularExpression::CaseInsensitiveOption);
    QString name = closed;
    return name.remove(dsnKey);
}

std::unique_ptr<DatabaseBackend> openOdbcBackend(const QString& odbcConnectionString, QString* error)
{
    auto backend = std::make_unique<OdbcBackend>();
    if (!backend->open(odbcConnectionString, error))
        return nullptr;
    return backend;
}

} // namespace knjige::db
