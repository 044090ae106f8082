#include "browser/OpeningState.h"

#include "books/LastNumber.h"
#include "journal/PeriodLock.h"
#include "session/Clock.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <algorithm>

namespace knjige::browser::openingstate
{
namespace
{

// The rows the statement adds to the new year, numbered by the table, are the
// journal record of the change.
bool run(const QString& sql, const journal::Scope& next, QString* error)
{
    db::Database& db = session().db();
    *error = journal::periodlock::refuseDates(
        db, next, { QDate(next.year, 1, 1) }, QStringLiteral("Početna stanja bila bi datirana %1."));
    if (!error->isEmpty())
        return false;
    db::TransactionGuard tx(db);
    const QString newYear = QStringLiteral("SELECT * FROM dbo.KnjPopListaDugImovFBiH WHERE GODINAKNJ=")
        + QString::number(next.year) + QStringLiteral(" AND BROJPODUZECA=") + QString::number(next.company);
    db::ResultSet before, after;
    if (!tx.isActive() || !journal::ensureBaseline(db, next, error) || !db.open(newYear, before) || !db.execute(sql)
        || !db.open(newYear, after)) {
        if (error->isEmpty())
            *error = db.errorDescription();
        return false;
    }
    qint64 highest = 0;
    const int c = before.indexOf(QStringLiteral("RBroj"));
    for (int r = 0; r < before.rowCount(); ++r)
        highest = std::max(highest, before.integer(r, c));
    QString added;
    for (int r = 0; r < after.rowCount(); ++r)
        if (after.integer(r, c) > highest)
            added += journal::rowText(after, r) + u'\n';
    if (!journal::append(db, next, { journal::RecordKind::PocetnaStanja, std::nullopt, {}, added }, error))
        return false;
    if (!tx.commit()) {
        *error = db.errorDescription();
        db.rollback();
        return false;
    }
    return true;
}

} // namespace

QString insertSql(qint16 company, qint16 year)
{
    const QString y = QString::number(year);
    const QString next = QString::number(year + 1);
    return QStringLiteral(
               "INSERT INTO KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,Naziv,Datum,Isprava,NabVrijednost,"
               "KnjigVrijednost,VijekTr) SELECT BrojPoduzeca,")
        + next + QStringLiteral(",Naziv,'") + QStringLiteral("01.01.") + next + QStringLiteral("','Poč.stanje iz ") + y
        + QStringLiteral("',NabVrijednost,round(KnjigVrijednost-100/VijekTr*NabVrijednost/100,2),VijekTr FROM "
                         "KnjPopListaDugImovFBiH WHERE GODINAKNJ=")
        + y + QStringLiteral(" AND BROJPODUZECA=") + QString::number(company)
        + QStringLiteral(" AND KnjigVrijednost>0 AND round(KnjigVrijednost-100/VijekTr*NabVrijednost/100,2)>0");
}

Generated generate(int tip)
{
    const Session& s = session();
    const qint16 year = s.RadnaGodina;
    const int next = year + 1;
    if (next > clock::today().year())
        return { false,
            { QStringLiteral("Nije moguće generirati početna stanja za ") + QString::number(next)
                    + QStringLiteral(" jer ona još nije nastupila!"),
                {}, Icon::Exclamation } };
    const DefVarijabli::LastNumber highest = DefVarijabli::lastNumberIn(tip, qint16(next));
    // Told here: the question that follows is asked all the same.
    tell(highest.failure);
    QString question;
    if (highest.number > 0)
        question = QStringLiteral("Već postoji knjiženje za godinu: ") + QString::number(next) + QStringLiteral(" ! ");
    question += QStringLiteral("Želite li zaista generirati početna stanja za ") + QString::number(next)
        + QStringLiteral(" na osnovu stanja u godini: ") + QString::number(year) + QStringLiteral("?") + u'\n'
        + QStringLiteral("Pažljivo, moguće dupliranje podataka!");
    if (interaction().show({ question, {}, Icon::Question, Buttons::YesNo, Answer::Yes }) != Answer::Yes)
        return {};
    QString error;
    if (!run(insertSql(s.BrojPoduzeca, year), { tip, s.BrojPoduzeca, qint16(next), 0 }, &error))
        return { false,
            { failureText(QStringLiteral("u generiranju stanja. Ponovite postupak. Greška: "), error), {},
                Icon::Exclamation } };
    return { true,
        { QStringLiteral("Uspješno generirana početna stanja. Provjerite podatke!"), {}, Icon::Information } };
}

} // namespace knjige::browser::openingstate
