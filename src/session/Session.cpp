#include "session/Session.h"

#include "books/BookKind.h"
#include "session/Failure.h"
#include "session/Interaction.h"

#include <QCoreApplication>
#include <memory>

namespace knjige
{

Session& session()
{
    static Session instance;
    return instance;
}

namespace
{

db::Database& helperDb()
{
    static db::Database helper;
    // The database drivers go with the application object; close the connection
    // while they are still there rather than at static destruction.
    static const bool closesWithApplication = [] {
        if (QCoreApplication::instance())
            qAddPostRoutine([] { helper.disconnect(); });
        return true;
    }();
    Q_UNUSED(closesWithApplication);
    return helper;
}

} // namespace

db::Database& Session::db()
{
    db::Database& helper = helperDb();
    if (helper.connectionString() != ConnString || !helper.isConnected())
        helper.connect(ConnString);
    return helper;
}

void Session::closeDb()
{
    helperDb().disconnect();
}

void Session::reset()
{
    closeDb();
    *this = Session();
}

namespace DefVarijabli
{

QString ZadnjiRBrojSql(int tipKnjige, qint16 brojPoduzeca, qint16 godina, qint32 brojProd)
{
    QString prefix;
    switch (tipKnjige) {
    case Knjiga::PrihRashFBiH:
        prefix = QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrihRashFBiH WHERE BROJPODUZECA=");
        break;
    case Knjiga::EvidPotObvFBiH:
    case Knjiga::EvidPotObvRS:
        prefix = QStringLiteral("SELECT MAX(RBroj) AS BROJ FROM dbo.KnjEvidPotrIObvFBiH WHERE BROJPODUZECA=");
        break;
    case Knjiga::PrometaFBiH:
        prefix = QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrometaFBiH WHERE BROJPODUZECA=");
        break;
    case Knjiga::PrometaRS:
        prefix = QStringLiteral("SELECT MAX(RBroj) AS BROJ FROM dbo.KnjPrometaFBiH WHERE BROJPODUZECA=");
        break;
    case Knjiga::PrihodaRS:
        prefix = QStringLiteral("SELECT MAX(RBroj) AS BROJ FROM dbo.KnjPrihodaRS WHERE BROJPODUZECA=");
        break;
    case Knjiga::RashodaRS:
        prefix = QStringLiteral("SELECT MAX(RBroj) AS BROJ FROM dbo.KnjRashodaRS WHERE BROJPODUZECA=");
        break;
    case Knjiga::PopListaRS:
    case Knjiga::PopListaFBiH:
        prefix = QStringLiteral("SELECT MAX(RBroj) AS BROJ FROM dbo.KnjPopListaDugImovFBiH WHERE BROJPODUZECA=");
        break;
    case Knjiga::PrihRashDB:
        prefix = QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrihRashDB WHERE BROJPODUZECA=");
        break;
    case Knjiga::TrgUsluga:
        prefix = QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.TrgKnjUsluga WHERE BROJPODUZECA=");
        break;
    case Knjiga::TrgKomisiona:
        prefix = QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.TrgKnjKomisiona WHERE BROJPODUZECA=");
        break;
    default:
        return {};
    }
    QString sql = prefix + QString::number(brojPoduzeca) + QStringLiteral(" AND GODINAKNJ=") + QString::number(godina);
    if (books::isTradeBook(tipKnjige))
        sql += QStringLiteral(" AND BrojProd=") + QString::number(brojProd);
    return sql;
}

qint32 ZadnjiRBroj(int tipKnjige, qint32 brojProd)
{
    Session& s = session();
    const QString sql = ZadnjiRBrojSql(tipKnjige, s.BrojPoduzeca, s.RadnaGodina, brojProd);
    if (sql.isEmpty())
        return 0;
    db::Database& db = s.db();
    db::ResultSet rs;
    if (!db.open(sql, rs)) {
        warn(failureText(db.errorDescription()));
        return 0;
    }
    if (rs.isEmpty())
        return 0;
    const int c = rs.indexOf(QStringLiteral("Broj"));
    if (c < 0 || rs.isNull(0, c))
        return 0;
    return qint32(rs.integer(0, c));
}

Notices CitajKonfiguraciju(bool sveKolone)
{
    Session& s = session();
    db::Database& db = s.db();
    Notices notices;
    if (!db.execute(QStringLiteral("SET TEXTSIZE 1000000")))
        notices.append({ QStringLiteral("Nisam postavio veličinu TEXTSIZE"), {}, Icon::Exclamation });
    const QString sql = QStringLiteral("SELECT ") + (sveKolone ? QStringLiteral("*") : QStringLiteral("NazivFirme"))
        + QStringLiteral(" FROM dbo.CONFIG WHERE BROJPODUZECA=") + QString::number(s.BrojPoduzeca);
    db::ResultSet rs;
    if (!db.open(sql, rs)) {
        notices.append(
            { QStringLiteral("\nDesila se greška u pristupu podacima o firmi. Ponovite!"), {}, Icon::Exclamation });
        return notices;
    }
    s.Konfiguracija = rs;
    const int c = rs.indexOf(QStringLiteral("NazivFirme"));
    if (!rs.isEmpty() && c >= 0)
        s.NazivFirme = rs.text(0, c);
    return notices;
}

QString ImeOperatera()
{
    return session().ImeOperatera;
}

} // namespace DefVarijabli

} // namespace knjige
