#include "books/LastNumber.h"

#include "books/BookKind.h"
#include "session/Session.h"

namespace knjige::DefVarijabli
{

QString ZadnjiRBrojSql(int tipKnjige, qint16 brojPoduzeca, qint16 godina, qint32 brojProd)
{
    const books::BookKind* book = books::findBook(tipKnjige);
    if (!book)
        return {};
    QString sql = QStringLiteral("SELECT ")
        + (book->lastNumberOrZero ? QStringLiteral("ISNULL(MAX(RBroj),0)") : QStringLiteral("MAX(RBroj)"))
        + QStringLiteral(" AS BROJ FROM ") + book->table + QStringLiteral(" WHERE BROJPODUZECA=")
        + QString::number(brojPoduzeca) + QStringLiteral(" AND GODINAKNJ=") + QString::number(godina);
    if (book->family == books::BookFamily::Trade)
        sql += QStringLiteral(" AND BrojProd=") + QString::number(brojProd);
    return sql;
}

LastNumber ZadnjiRBroj(int tipKnjige, qint32 brojProd)
{
    return lastNumberIn(tipKnjige, session().RadnaGodina, brojProd);
}

LastNumber lastNumberIn(int tipKnjige, qint16 godina, qint32 brojProd)
{
    Session& s = session();
    const QString sql = ZadnjiRBrojSql(tipKnjige, s.BrojPoduzeca, godina, brojProd);
    if (sql.isEmpty())
        return {};
    db::Database& db = s.db();
    db::ResultSet rs;
    if (!db.open(sql, rs))
        return { 0, { failureText(db.errorDescription()), {}, Icon::Exclamation } };
    if (rs.isEmpty())
        return {};
    const int c = rs.indexOf(QStringLiteral("Broj"));
    if (c < 0 || rs.isNull(0, c))
        return {};
    return { qint32(rs.integer(0, c)), {} };
}

} // namespace knjige::DefVarijabli
