#include "editors/widgets/frmKnjPrihodaRashodaRS.h"

#include "books/BookKind.h"
#include "editors/widgets/MoneyBox.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <QVBoxLayout>

namespace knjige::editors
{

using namespace editors;

frmKnjPrihodaRashodaRS::frmKnjPrihodaRashodaRS(int bookKind, QWidget* parent)
    : RecordEditor(bookKind, parent)
{
    setObjectName(QStringLiteral("frmKnjPrihodaRashodaRS"));
    lblNaslov = new QLabel(this);
    lblNaslov->setObjectName(QStringLiteral("lblNaslov"));
    QFont heading = lblNaslov->font();
    heading.setBold(true);
    lblNaslov->setFont(heading);
    outerLayout()->insertWidget(0, lblNaslov);
    addNumberRow();
    addDateRow();
    txtOpis = addTextRow(QStringLiteral("Opis:"), QStringLiteral("txtOpis"), QStringLiteral("Opis"), 320);
    cboVrsta = addComboRow(QStringLiteral("Vrsta:"), QStringLiteral("cboVrsta"), {});
    ubIznos = addMoneyRow(QStringLiteral("Iznos:"), QStringLiteral("ubIznos"));
    ubIznosPDV = addMoneyRow(QStringLiteral("Iznos PDV:"), QStringLiteral("ubIznosPDV"));
    finishLayout();
    fillKinds();

    warnWhenNegative({ ubIznos, ubIznosPDV });
}

QString frmKnjPrihodaRashodaRS::naslov() const
{
    return m_tip == Knjiga::PrihodaRS ? QStringLiteral("Knjiga prihoda RS") : QStringLiteral("Knjiga rashoda RS");
}

void frmKnjPrihodaRashodaRS::fillKinds()
{
    lblNaslov->setText(naslov());
    // Until a mode gives the dialog its caption, it carries the book's title.
    if (TipRada() == 0)
        setWindowTitle(naslov());
    if (m_kindsFor == m_tip)
        return;
    m_kindsFor = m_tip;
    cboVrsta->clear();
    cboVrsta->addItems(vrstaTexts(m_tip == Knjiga::PrihodaRS ? Knjiga::PrihodaRS : Knjiga::RashodaRS));
    cboVrsta->setCurrentIndex(-1);
}

void frmKnjPrihodaRashodaRS::prepare()
{
    fillKinds();
}

void frmKnjPrihodaRashodaRS::fill(const db::ResultSet& rs)
{
    ubRBroj->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBroj"))));
    dpDatum->setDate(dateOf(rs, QStringLiteral("Datum")));
    txtOpis->setText(textOf(rs, QStringLiteral("Opis")));
    cboVrsta->setCurrentIndex(vrstaPosition(m_tip, int(integerOf(rs, QStringLiteral("Vrsta")))));
    ubIznos->setValue(moneyOf(rs, QStringLiteral("Iznos")));
    ubIznosPDV->setValue(moneyOf(rs, QStringLiteral("IznosPDV")));
}

void frmKnjPrihodaRashodaRS::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    fillKinds();
    dpDatum->setDate(cell(rs, row, QStringLiteral("Datum")).toDate());
    txtOpis->setText(cell(rs, row, QStringLiteral("Opis")).toString());
    // The list carries the kind's text in Vrsta and its code in VrstaVrijednost.
    cboVrsta->setCurrentIndex(vrstaPosition(m_tip, cell(rs, row, QStringLiteral("VrstaVrijednost")).toInt()));
    ubIznos->setValue(cell(rs, row, QStringLiteral("Iznos")).value<Money>());
    ubIznosPDV->setValue(cell(rs, row, QStringLiteral("IznosPDV")).value<Money>());
}

Findings frmKnjPrihodaRashodaRS::checks()
{
    return checkPrihRashRS(
        { ubRBroj->integerValue(), dpDatum->date(), cboVrsta->currentText(), ubIznos->value() }, session().RadnaGodina);
}

db::RowChange::Values frmKnjPrihodaRashodaRS::rowValues() const
{
    const Session& s = session();
    return {
        { QStringLiteral("BrojPoduzeca"), int(s.BrojPoduzeca) },
        { QStringLiteral("RBroj"), qint32(ubRBroj->integerValue()) },
        { QStringLiteral("Datum"), dpDatum->date() },
        { QStringLiteral("GodinaKnj"), int(s.RadnaGodina) },
        { QStringLiteral("Opis"), txtOpis->text() },
        { QStringLiteral("Vrsta"), vrstaCode(cboVrsta->currentText()) },
        { QStringLiteral("Iznos"), QVariant::fromValue(ubIznos->value()) },
        { QStringLiteral("IznosPDV"), QVariant::fromValue(ubIznosPDV->value()) },
    };
}

} // namespace knjige::editors
