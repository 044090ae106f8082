// New entries, changes, copies and deletions: the browser hands each to the record
// editor of the book kind and reloads when the editor reports a save.
#include "books/BookKind.h"
#include "books/LastNumber.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "editors/EditorRules.h"
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "journal/PeriodLock.h"
#include "session/Clock.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <limits>
#include <optional>

namespace knjige::browser
{

namespace
{

// The number a new entry proposes: the highest of the book plus one. Nothing when the
// query failed (told here) or the number would not fit.
std::optional<qint32> nextNumber(int tip)
{
    const DefVarijabli::LastNumber last = DefVarijabli::ZadnjiRBroj(tip);
    if (!last.failure.text.isEmpty()) {
        tell(last.failure);
        return std::nullopt;
    }
    const qint64 next = qint64(last.number) + 1;
    if (next > std::numeric_limits<qint32>::max()) {
        warn(failureText(QStringLiteral("Overflow")));
        return std::nullopt;
    }
    return qint32(next);
}

} // namespace

void frmSifarnikKnj::NoviZapis()
{
    m_query.returnTo = 0;
    std::unique_ptr<editors::RecordEditor> e = editors::createEditor(m_query.bookKind, this);
    if (!e)
        return;
    // Trade books number per shop: their editor proposes the number of its shop.
    if (!books::isTradeBook(m_query.bookKind)) {
        const std::optional<qint32> next = nextNumber(m_query.bookKind);
        if (!next)
            return;
        e->ubRBroj->setValue(Money::fromWhole(*next));
    }
    e->setTipRada(editors::Novi);
    e->sRedniBroj = 0;
    if (books::isTradeBook(m_query.bookKind))
        e->setShop(BrojProd());
    e->dpDatum->setDate(editors::newEntryDate(clock::today(), session().RadnaGodina));
    editors::pripremiEditor(*e, m_query.bookKind);
    e->Prikaži(1);
    if (!e->IzišaoSaPrekidom()) {
        m_query.returnTo = e->spremljeniRBroj();
        OsvjeziZapise();
    }
}

void frmSifarnikKnj::IzmjenaZapisa(int mode)
{
    // Totals rows and rows without a number are not entries.
    const int row = trenutniRed();
    const int rbrojField = rsStavke().indexOf(QStringLiteral("RBroj"));
    if (row < 0 || rbrojField < 0 || rsStavke().isNull(row, rbrojField))
        return;
    std::unique_ptr<editors::RecordEditor> e = editors::createEditor(m_query.bookKind, this);
    if (!e)
        return;
    e->setTipRada(mode);
    e->SetEdit(mode == editors::Izmjena);
    e->rsStavke = { &rsStavke(), row };
    e->sRedniBroj = trenutniRBroj();
    // A trade-book entry is read within its own shop.
    const int shopField = rsStavke().indexOf(QStringLiteral("BrojProd"));
    if (books::isTradeBook(m_query.bookKind) && shopField >= 0)
        e->setShop(qint32(rsStavke().integer(row, shopField)));
    editors::pripremiEditor(*e, m_query.bookKind);
    e->Prikaži(1);
    if (e->IzišaoSaPrekidom())
        return;
    m_query.returnTo = mode == editors::Izmjena ? e->spremljeniRBroj() : 0;
    OsvjeziZapise();
}

void frmSifarnikKnj::IstaStavka()
{
    const int row = trenutniRed();
    if (row < 0)
        return;
    std::unique_ptr<editors::RecordEditor> e = editors::createEditor(m_query.bookKind, this);
    if (!e)
        return;
    e->setTipRada(editors::Novi);
    e->sRedniBroj = 0;
    e->PreuzmiStavku(rsStavke(), row);
    if (!books::isTradeBook(m_query.bookKind)) {
        const std::optional<qint32> next = nextNumber(m_query.bookKind);
        if (!next)
            return;
        e->ubRBroj->setValue(Money::fromWhole(*next));
    }
    editors::pripremiEditor(*e, m_query.bookKind);
    e->Prikaži(1);
    if (!e->IzišaoSaPrekidom()) {
        m_query.returnTo = e->spremljeniRBroj();
        OsvjeziZapise();
    }
}

void frmSifarnikKnj::BrisanjePrikazanihPodataka()
{
    const QString sql = QStringLiteral("DELETE dbo.KnjPrihRashDB FROM dbo.KnjPrihRashDB K") + m_query.filter.where;
    const QString question = QStringLiteral("Želite li zaista obrisati sve prikazane podatke ?") + u'\n'
        + QStringLiteral("Izbrisati će se ") + QString::number(rsStavke().rowCount())
        + QStringLiteral(" zapisa! Pažljivo, jer više neće biti moguće vratiti podatke!");
    if (interaction().show({ question, {}, Icon::Question, Buttons::YesNo, Answer::No }) != Answer::Yes)
        return;
    // The rows go with a journal record that keeps each of them, in one transaction.
    db::Database& db = session().db();
    const journal::Scope scope { m_query.bookKind, m_query.company, m_query.year, 0 };
    QString error, locked;
    {
        db::TransactionGuard tx(db);
        db::ResultSet gone;
        const bool read = tx.isActive() && journal::ensureBaseline(db, scope, &error)
            && db.open(QStringLiteral("SELECT K.* FROM dbo.KnjPrihRashDB K") + m_query.filter.where, gone);
        if (read)
            locked = journal::periodlock::refuseRows(
                db, scope, gone, nullptr, QStringLiteral("Među prikazanim podacima je stavka %1 datirana %2."));
        const journal::Change record { journal::RecordKind::BrisanjePrikazanih, std::nullopt, journal::rowsText(gone),
            {} };
        if (locked.isEmpty() && error.isEmpty()
            && (!read || !db.execute(sql) || !journal::append(db, scope, record, &error) || !tx.commit())
            && error.isEmpty())
            error = db.errorDescription();
    }
    if (!locked.isEmpty() || !error.isEmpty()) {
        warn(locked.isEmpty() ? failureText(error) : locked);
        return;
    }
    OsvjeziZapise();
}

} // namespace knjige::browser
