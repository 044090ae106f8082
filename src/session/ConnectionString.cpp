#include "session/ConnectionString.h"

#include <QStringList>

namespace knjige {

ConnectionTarget parseConnectionString(const QString& text)
{
    ConnectionTarget t;
    t.kind = ConnectionTarget::Kind::Sqlite;
    t.sqlitePath = text;
    return t;
}

QStringList sqlServerSessionSetup() { return {QStringLiteral("SET DATEFORMAT mdy"), QStringLiteral("SET NOCOUNT ON")}; }

} // namespace knjige
