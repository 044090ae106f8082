#pragma once

#include "session/HostServices.h"
#include "session/db/Database.h"

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
// When dbo.PRAVA cannot be read (no such table, no connection, no permission) nobody
// may open a book: the operator is told why, and nothing is allowed on a guess.
// The operator a command works for when none is named: the system's user.
QString defaultOperatorName();

// What a console command (print, export) may do, asked of the program's rights service
// exactly as the book's window asks when it opens: the right to open the book, then
// the command's group. Like the window it fails closed: rights that cannot be read
// allow nothing. Empty when allowed; otherwise the message for the person.
QString commandRefusal(
    const QString& connString, const QString& operatorName, int bookKind, OperatorRights::Group group);

class PravaRights final : public OperatorRights
{
public:
    void setConnectionString(const QString& connectionString) override;
    void setOperatorName(const QString& operatorName) override;
    // Re-reads the operator's rows, so a change in dbo.PRAVA counts from the next book.
    bool mayOpenBook(int bookKind) override;
    bool hasRight(int bookKind, Group group) override;

    // The fixed text that reads the rights of every operator, and the one that makes
    // the (empty) table in a new database of the host.
    static QString sql();
    static QString createSql();

private:
    void load();
    bool opens(int bookKind) const;
    db::Database& database();

    QString m_connectionString;
    QString m_operator;
    bool m_loaded = false;
    QString m_failure; // why the rights could not be read; empty when they were
    QSet<QString> m_rights; // the operator's PRAVO texts, trimmed
    std::unique_ptr<db::Database> m_own; // for a connection other than the session's
};

} // namespace knjige::host
