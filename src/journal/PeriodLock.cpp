#include "journal/PeriodLock.h"

#include "session/Dates.h"

namespace knjige::journal::periodlock
{
namespace
{

QString day(const QDate& d)
{
    return d.toString(QStringLiteral("dd.MM.yyyy"));
}

QString scopeWhere(const journal::Scope& s, bool allKinds)
{
    QStringList kinds;
    for (int k : allKinds ? journal::kindsOfTable(s.tip) : QList<int> { s.tip })
        kinds << QString::number(k);
    return QStringLiteral(" WHERE BrojPoduzeca=") + QString::number(s.company) + QStringLiteral(" AND GodinaKnj=")
        + QString::number(s.year) + QStringLiteral(" AND TipKnjige IN (") + kinds.join(u',') + u')';
}

bool finish(db::Database& db, db::TransactionGuard& tx, bool ok, QString* error)
{
    if (ok && tx.commit())
        return true;
    if (error->isEmpty())
        *error = db.errorDescription();
    return false;
}

} // namespace

bool available(db::Database& db)
{
    return journal::hasTable(db, QStringLiteral("dbo.KnjZakljucano"));
}

bool lockDate(db::Database& db, const journal::Scope& scope, QDate* date, QString* error)
{
    *date = QDate();
    if (!available(db))
        return true;
    db::ResultSet rs;
    if (!db.open(
            QStringLiteral("SELECT MAX(ZakljucanoDo) AS Datum FROM dbo.KnjZakljucano") + scopeWhere(scope, true), rs)) {
        *error = db.errorDescription();
        return false;
    }
    if (!rs.isEmpty() && !rs.isNull(0, 0))
        *date = rs.date(0, 0);
    return true;
}

QString refusal(const QDate& lock, const QString& what)
{
    return QStringLiteral("Razdoblje knjige je zaključano do %1. ").arg(day(lock)) + what;
}

QString refuseDates(db::Database& db, const journal::Scope& scope, const QList<QDate>& dates, const QString& what)
{
    QDate lock;
    QString error;
    if (!lockDate(db, scope, &lock, &error))
        return QStringLiteral("Zaključano razdoblje knjige nije moguće pročitati: ") + error;
    if (!lock.isValid())
        return {};
    for (const QDate& d : dates)
        if (d.isValid() && d <= lock)
            return refusal(lock, what.arg(day(d)));
    return {};
}

QString refuseRows(db::Database& db, const journal::Scope& scope, const db::ResultSet& rows,
    const std::vector<std::optional<qint64>>* changes, const QString& what)
{
    QDate lock;
    QString error;
    if (!lockDate(db, scope, &lock, &error))
        return QStringLiteral("Zaključano razdoblje knjige nije moguće pročitati: ") + error;
    return refuseRows(lock, rows, changes, what);
}

QString refuseRows(const QDate& lock, const db::ResultSet& rows, const std::vector<std::optional<qint64>>* changes,
    const QString& what)
{
    const int d = rows.indexOf(QStringLiteral("Datum"));
    const int n = rows.indexOf(QStringLiteral("RBroj"));
    if (!lock.isValid() || d < 0)
        return {};
    for (int r = 0; r < rows.rowCount(); ++r) {
        if (changes && (size_t(r) >= changes->size() || !(*changes)[size_t(r)]))
            continue;
        if (!rows.isNull(r, d) && rows.date(r, d) <= lock)
            return refusal(lock, what.arg(n < 0 ? QString() : rows.text(r, n), day(rows.date(r, d))));
    }
    return {};
}

bool lock(db::Database& db, const journal::Scope& scope, const QDate& to, QString* error)
{
    if (!available(db)) {
        *error = QStringLiteral("U bazi nema tablice dbo.KnjZakljucano (naredba za nju je u uputama, README).");
        return false;
    }
    if (!to.isValid() || to.year() > scope.year) {
        *error = QStringLiteral("Datum zaključavanja mora biti u godini knjige ili prije nje.");
        return false;
    }
    QDate current;
    if (!lockDate(db, scope, &current, error))
        return false;
    if (current.isValid() && to < current) {
        *error = QStringLiteral("Knjiga je već zaključana do %1. Raniji datum traži otključavanje s razlogom.")
                     .arg(day(current));
        return false;
    }
    db::TransactionGuard tx(db);
    const QString date = QStringLiteral("'") + dates::sqlLiteral(to) + u'\'';
    const bool ok = tx.isActive() && journal::ensureBaseline(db, scope, error)
        && db.execute(QStringLiteral("DELETE FROM dbo.KnjZakljucano") + scopeWhere(scope, false))
        && db.execute(QStringLiteral("INSERT INTO dbo.KnjZakljucano (BrojPoduzeca,GodinaKnj,TipKnjige,ZakljucanoDo) "
                                     "VALUES (")
            + QString::number(scope.company) + u',' + QString::number(scope.year) + u',' + QString::number(scope.tip)
            + u',' + date + u')')
        && journal::append(db, scope,
            { journal::RecordKind::Zakljucavanje, std::nullopt, {}, QStringLiteral("DO=") + to.toString(Qt::ISODate) },
            error);
    return finish(db, tx, ok, error);
}

bool unlock(db::Database& db, const journal::Scope& scope, const QString& reason, QString* error)
{
    if (!available(db)) {
        *error = QStringLiteral("U bazi nema tablice dbo.KnjZakljucano (naredba za nju je u uputama, README).");
        return false;
    }
    if (reason.trimmed().isEmpty()) {
        *error = QStringLiteral("Otključavanje traži razlog.");
        return false;
    }
    QDate current;
    if (!lockDate(db, scope, &current, error))
        return false;
    db::TransactionGuard tx(db);
    const bool ok = tx.isActive()
        && db.execute(QStringLiteral("DELETE FROM dbo.KnjZakljucano") + scopeWhere(scope, true))
        && journal::append(db, scope,
            { journal::RecordKind::Otkljucavanje, std::nullopt,
                current.isValid() ? QStringLiteral("DO=") + current.toString(Qt::ISODate) : QString(),
                QStringLiteral("RAZLOG=") + reason.trimmed() },
            error);
    return finish(db, tx, ok, error);
}

} // namespace knjige::journal::periodlock
