#include "editors/widgets/frmPopListaDImovineFBiH.h"

#include "editors/widgets/MoneyBox.h"
#include "session/Interaction.h"
#include "session/Session.h"

namespace knjige::editors
{

using namespace editors;

frmPopListaDImovineFBiH::frmPopListaDImovineFBiH(int bookKind, QWidget* parent)
    : RecordEditor(bookKind, parent)
{
    setObjectName(QStringLiteral("frmPopListaDImovineFBiH"));
    addNumberRow();
    addDateRow();
    txtBrojDokumenta
        = addTextRow(QStringLiteral("Broj dokumenta:"), QStringLiteral("txtBrojDokumenta"), QStringLiteral("Isprava"));
    txtNazivSredstva = addTextRow(
        QStringLiteral("Naziv sredstva:"), QStringLiteral("txtNazivSredstva"), QStringLiteral("Naziv"), 320);
    ubVijekTrajanja = addMoneyRow(QStringLiteral("Vijek trajanja (god.):"), QStringLiteral("ubVijekTrajanja"), true);
    // VijekTr is a smallint column.
    ubVijekTrajanja->setRange(-32768, 32767);
    ubNabavna = addMoneyRow(QStringLiteral("Nabavna vrijednost:"), QStringLiteral("ubNabavna"));
    ubKnjigovodstvena = addMoneyRow(QStringLiteral("Knjigovodstvena vrijednost:"), QStringLiteral("ubKnjigovodstvena"));
    txtNaziv = new QLineEdit(this);
    txtNaziv->setObjectName(QStringLiteral("txtNaziv"));
    txtNaziv->setVisible(false);
    finishLayout();

    warnWhenNegative({ ubNabavna, ubKnjigovodstvena }, QStringLiteral("Unešena vrijednost je negativna, pažljivo !"));
}

void frmPopListaDImovineFBiH::fill(const db::ResultSet& rs)
{
    ubRBroj->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBroj"))));
    dpDatum->setDate(dateOf(rs, QStringLiteral("Datum")));
    txtBrojDokumenta->setText(textOf(rs, QStringLiteral("Isprava")));
    txtNazivSredstva->setText(textOf(rs, QStringLiteral("Naziv")));
    ubVijekTrajanja->setValue(moneyOf(rs, QStringLiteral("VijekTr")));
    ubNabavna->setValue(moneyOf(rs, QStringLiteral("NabVrijednost")));
    ubKnjigovodstvena->setValue(moneyOf(rs, QStringLiteral("KnjigVrijednost")));
}

void frmPopListaDImovineFBiH::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    dpDatum->setDate(cell(rs, row, QStringLiteral("Datum")).toDate());
    txtBrojDokumenta->setText(cell(rs, row, QStringLiteral("Isprava")).toString());
    txtNazivSredstva->setText(cell(rs, row, QStringLiteral("Naziv")).toString());
    const int vijek = rs.indexOf(QStringLiteral("VijekTr"));
    ubVijekTrajanja->setValue(vijek < 0 || row < 0 || rs.isNull(row, vijek) ? Money() : rs.money(row, vijek));
    ubNabavna->setValue(cell(rs, row, QStringLiteral("NabVrijednost")).value<Money>());
    ubKnjigovodstvena->setValue(cell(rs, row, QStringLiteral("KnjigVrijednost")).value<Money>());
}

Findings frmPopListaDImovineFBiH::checks()
{
    return checkPopis({ dpDatum->date(), txtBrojDokumenta->text(), ubVijekTrajanja->integerValue(), ubNabavna->value(),
                          ubKnjigovodstvena->value() },
        session().RadnaGodina);
}

db::RowChange::Values frmPopListaDImovineFBiH::rowValues() const
{
    const Session& s = session();
    return {
        { QStringLiteral("BrojPoduzeca"), int(s.BrojPoduzeca) },
        { QStringLiteral("Datum"), dpDatum->date() },
        { QStringLiteral("GodinaKnj"), int(s.RadnaGodina) },
        { QStringLiteral("Isprava"), txtBrojDokumenta->text() },
        { QStringLiteral("Naziv"), txtNazivSredstva->text() },
        { QStringLiteral("VijekTr"), int(ubVijekTrajanja->integerValue()) },
        { QStringLiteral("NabVrijednost"), QVariant::fromValue(ubNabavna->value()) },
        { QStringLiteral("KnjigVrijednost"), QVariant::fromValue(ubKnjigovodstvena->value()) },
    };
}

void frmPopListaDImovineFBiH::afterWrite()
{
    if (TipRada() != Novi)
        return;
    // The table numbers a new asset after the highest of its company and year.
    const Session& s = session();
    db::ResultSet rs;
    m_dodijeljeniRBroj = 0;
    if (session().db().open(
            QStringLiteral("SELECT MAX(RBroj) AS RBroj FROM dbo.KnjPopListaDugImovFBiH WHERE GODINAKNJ=")
                + QString::number(s.RadnaGodina) + QStringLiteral(" AND BROJPODUZECA=")
                + QString::number(s.BrojPoduzeca),
            rs)
        && !rs.isEmpty() && !rs.isNull(0, 0))
        m_dodijeljeniRBroj = qint32(rs.integer(0, 0));
}

qint32 frmPopListaDImovineFBiH::spremljeniRBroj() const
{
    return TipRada() == Novi ? m_dodijeljeniRBroj : sRedniBroj;
}

} // namespace knjige::editors
