#include "editors/widgets/frmKnjPrometa.h"

#include "books/BookKind.h"
#include "editors/widgets/MoneyBox.h"
#include "session/Interaction.h"
#include "session/Session.h"

namespace knjige::editors
{

using namespace editors;

frmKnjPrometa::frmKnjPrometa(int bookKind, QWidget* parent)
    : RecordEditor(bookKind, parent)
{
    setObjectName(QStringLiteral("frmKnjPrometa"));
    addNumberRow();
    addDateRow();
    txtIsprava = addTextRow(QStringLiteral("Isprava:"), QStringLiteral("txtIsprava"), QStringLiteral("Isprava"));
    txtOpis = addTextRow(QStringLiteral("Opis:"), QStringLiteral("txtOpis"), QStringLiteral("Opis"), 320);
    ubGotovina = addMoneyRow(QStringLiteral("Gotovina:"), QStringLiteral("ubGotovina"));
    ubCek = addMoneyRow(QStringLiteral("Čekovi:"), QStringLiteral("ubCek"));
    lblČekovi = labelFor(ubCek);
    lblČekovi->setObjectName(QStringLiteral("lblČekovi"));
    finishLayout();

    warnWhenNegative({ ubGotovina, ubCek }, QStringLiteral("Unešena vrijednost je negativna, pažljivo !"));
}

void frmKnjPrometa::fill(const db::ResultSet& rs)
{
    ubRBroj->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBroj"))));
    dpDatum->setDate(dateOf(rs, QStringLiteral("Datum")));
    txtIsprava->setText(textOf(rs, QStringLiteral("Isprava")));
    txtOpis->setText(textOf(rs, QStringLiteral("Opis")));
    ubGotovina->setValue(moneyOf(rs, QStringLiteral("IznosGot")));
    ubCek->setValue(moneyOf(rs, QStringLiteral("IznosCek")));
}

void frmKnjPrometa::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    dpDatum->setDate(cell(rs, row, QStringLiteral("Datum")).toDate());
    txtIsprava->setText(cell(rs, row, QStringLiteral("Isprava")).toString());
    txtOpis->setText(cell(rs, row, QStringLiteral("Opis")).toString());
    ubGotovina->setValue(cell(rs, row, QStringLiteral("IznosGot")).value<Money>());
    ubCek->setValue(cell(rs, row, QStringLiteral("IznosCek")).value<Money>());
}

Findings frmKnjPrometa::checks()
{
    return checkPromet(
        { ubRBroj->integerValue(), dpDatum->date(), txtIsprava->text(), ubGotovina->value(), ubCek->value() },
        session().RadnaGodina);
}

db::RowChange::Values frmKnjPrometa::rowValues() const
{
    const Session& s = session();
    return {
        { QStringLiteral("BrojPoduzeca"), int(s.BrojPoduzeca) },
        { QStringLiteral("RBroj"), qint32(ubRBroj->integerValue()) },
        { QStringLiteral("Datum"), dpDatum->date() },
        { QStringLiteral("GodinaKnj"), int(s.RadnaGodina) },
        { QStringLiteral("Isprava"), txtIsprava->text() },
        { QStringLiteral("Opis"), txtOpis->text() },
        { QStringLiteral("IznosGot"), QVariant::fromValue(ubGotovina->value()) },
        { QStringLiteral("IznosCek"), QVariant::fromValue(ubCek->value()) },
    };
}

} // namespace knjige::editors
