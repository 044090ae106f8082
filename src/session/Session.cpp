#include "session/Session.h"

#include "session/Failure.h"

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
