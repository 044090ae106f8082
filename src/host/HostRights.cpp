#include "host/HostRights.h"

#include "session/Interaction.h"
#include "session/Session.h"

namespace knjige::host
{

QString defaultOperatorName()
{
    QString name = qEnvironmentVariable("USER");
    if (name.isEmpty())
        name = qEnvironmentVariable("USERNAME");
    return name.isEmpty() ? QStringLiteral("operater") : name;
}

QString commandRefusal(
    const QString& connString, const QString& operatorName, int bookKind, OperatorRights::Group group)
{
    PravaRights rights;
    rights.setConnectionString(connString);
    rights.setOperatorName(operatorName);
    const QString refused = QStringLiteral("Nemate pravo pristupa !\n");
    if (!rights.mayOpenBook(bookKind))
        return refused
            + QStringLiteral("Operater \"%1\" nema pravo otvoriti knjigu %2.").arg(operatorName).arg(bookKind);
    if (!rights.hasRight(bookKind, group))
        return refused
            + QStringLiteral("Operater \"%1\" nema pravo %2 knjige %3.")
                  .arg(operatorName,
                      group == OperatorRights::Ispis ? QStringLiteral("ispisa") : QStringLiteral("izvoza"))
                  .arg(bookKind);
    return {};
}

QString PravaRights::sql()
{
    return QStringLiteral("SELECT OPERATER,PRAVO FROM dbo.PRAVA WHERE PROGRAM='KNJIGE'");
}

QString PravaRights::createSql()
{
    return QStringLiteral(
        "CREATE TABLE dbo.PRAVA (OPERATER nvarchar(30) NULL, PROGRAM nvarchar(30) NULL, PRAVO nvarchar(30) NULL)");
}

void PravaRights::setConnectionString(const QString& connectionString)
{
    if (connectionString != m_connectionString)
        m_loaded = false;
    m_connectionString = connectionString;
}

void PravaRights::setOperatorName(const QString& operatorName)
{
    if (operatorName != m_operator)
        m_loaded = false;
    m_operator = operatorName;
}

db::Database& PravaRights::database()
{
    if (m_connectionString == session().ConnString)
        return session().db();
    if (!m_own)
        m_own = std::make_unique<db::Database>();
    m_own->connect(m_connectionString);
    return *m_own;
}

// The operator's name is compared here rather than in the statement: it is the
// person's text, and it never becomes part of SQL.
void PravaRights::load()
{
    m_rights.clear();
    m_failure.clear();
    m_loaded = true;
    db::ResultSet rs;
    db::Database& db = database();
    if (!db.open(sql(), rs)) {
        m_failure = db.errorDescription();
        return;
    }
    const QString me = m_operator.trimmed();
    for (int r = 0; r < rs.rowCount(); ++r)
        if (rs.text(r, 0).trimmed().compare(me, Qt::CaseInsensitive) == 0)
            m_rights.insert(rs.text(r, 1).trimmed());
}

bool PravaRights::opens(int bookKind) const
{
    return m_rights.isEmpty() || m_rights.contains(QString::number(bookKind));
}

bool PravaRights::mayOpenBook(int bookKind)
{
    load();
    if (!m_failure.isEmpty()) {
        warn(QStringLiteral("Prava operatera nije moguće pročitati iz tablice dbo.PRAVA, pa se knjiga ne otvara.\n")
            + m_failure);
        return false;
    }
    return opens(bookKind);
}

bool PravaRights::hasRight(int bookKind, Group group)
{
    if (!m_loaded)
        load();
    if (!m_failure.isEmpty() || !opens(bookKind))
        return false;
    const QString prefix = QString::number(bookKind) + u'.';
    bool anyGroupNamed = false;
    for (const QString& right : std::as_const(m_rights))
        if (right.startsWith(prefix))
            anyGroupNamed = true;
    return !anyGroupNamed || m_rights.contains(prefix + QString::number(int(group)));
}

} // namespace knjige::host
