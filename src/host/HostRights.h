#pragma once

#include "session/Database.h"
#include "session/HostServices.h"

#include <QSet>
#include <QString>
#include <memory>

namespace knjige::host
{

// The host's operator rights, kept in dbo.PRAVA (OPERATER, PROGRAM, PRAVO) like the
// rights to shops and warehouses. The books use the rows whose PROGRAM is "KNJIGE":
//   PRAVO "96"   the operator may open book 96;
//   PRAVO "96.3" in book 96 the operator may use command group 3 (OperatorRights::Group).
// An operator with no "KNJIGE" rows is not restricted. One who has some may open only
// the books named, and in a book for which no group is named every group is allowed.
// A database without dbo.PRAVA restricts nobody.
class PravaRights final : public OperatorRights
{
public:
    void setConnectionString(const QString& connectionString) override;
    void setOperatorName(const QString& operatorName) override;
    // Re-reads the operator's rows, so a change in dbo.PRAVA counts from the next book.
    bool mayOpenBook(int bookKind) override;
    bool hasRight(int bookKind, Group group) override;

    // The fixed text that reads the rights of every operator.
    static QString sql();

private:
    void load();
    bool opens(int bookKind) const;
    Database& database();

    QString m_connectionString;
    QString m_operator;
    bool m_loaded = false;
    QSet<QString> m_rights; // the operator's PRAVO texts, trimmed
    std::unique_ptr<Database> m_own; // for a connection other than the session's
};

} // namespace knjige::host
