#include "editors/widgets/frmKnjPRashFBiHPregled.h"

#include "books/BookKind.h"
#include "editors/widgets/MoneyBox.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/SettingsStore.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QVBoxLayout>

namespace knjige::editors
{

using namespace editors;

namespace
{
const QString kNeIzrPDV = QStringLiteral("KnjNeIzrPDV");
}

frmKnjPRashFBiHPregled::frmKnjPRashFBiHPregled(int bookKind, QWidget* parent)
    : RecordEditor(bookKind, parent)
{
    setObjectName(QStringLiteral("frmKnjPRashFBiHPregled"));
    menuBar = new QMenuBar(this);
    mnuPostavke = menuBar->addMenu(QStringLiteral("&Postavke"));
    mnuPostavke->setObjectName(QStringLiteral("mnuPostavke"));
    mnuNeIzrPDV = mnuPostavke->addAction(QStringLiteral("&Ne izračunavati PDV"));
    mnuNeIzrPDV->setObjectName(QStringLiteral("mnuNeIzrPDV"));
    mnuNeIzrPDV->setCheckable(true);
    mnuNeIzrPDV->setChecked(settings::flag(settings::sharedApplication(), settings::section(), kNeIzrPDV, false));
    connect(mnuNeIzrPDV, &QAction::toggled, this,
        [](bool on) { settings::setFlag(settings::sharedApplication(), settings::section(), kNeIzrPDV, on); });
    outerLayout()->setMenuBar(menuBar);

    addNumberRow();
    addDateRow();
    txtIsprava = addTextRow(QStringLiteral("Isprava:"), QStringLiteral("txtIsprava"), QStringLiteral("Isprava"));
    txtOpis = addTextRow(QStringLiteral("Opis:"), QStringLiteral("txtOpis"), QStringLiteral("Opis"), 320);
    cmbVrsta = addComboRow(QStringLiteral("Vrsta:"), QStringLiteral("cmbVrsta"), {});
    ubIznos = addMoneyRow(QStringLiteral("Iznos:"), QStringLiteral("ubIznos"));
    ubIznosPDV = new MoneyBox(this);
    ubIznosPDV->setObjectName(QStringLiteral("ubIznosPDV"));
    ubIznosPDV->setMinimumWidth(130);
    ubIznosPDV->setMaximumWidth(160);
    lblPDVPosto = new QLabel(QStringLiteral("(17 % sadržan u iznosu)"), this);
    lblPDVPosto->setObjectName(QStringLiteral("lblPDVPosto"));
    lblIznosPDV = addRow(QStringLiteral("Iznos PDV:"), ubIznosPDV, lblPDVPosto);
    lblIznosPDV->setObjectName(QStringLiteral("lblIznosPDV"));
    finishLayout();
    fillKinds();

    connect(ubIznos, &MoneyBox::valueChanged, this, &frmKnjPRashFBiHPregled::onIznosChanged);
    connect(ubIznos, &MoneyBox::left, this, &frmKnjPRashFBiHPregled::onIznosLeft);
}

// VAT belongs to every book but the DB one; the FBiH kinds to the FBiH book alone.
bool frmKnjPRashFBiHPregled::isFBiH() const
{
    return m_tip != Knjiga::PrihRashDB;
}
int frmKnjPRashFBiHPregled::kindsBook() const
{
    return m_tip == Knjiga::PrihRashFBiH ? Knjiga::PrihRashFBiH : Knjiga::PrihRashDB;
}

void frmKnjPRashFBiHPregled::fillKinds()
{
    if (m_kindsFor == m_tip)
        return;
    m_kindsFor = m_tip;
    cmbVrsta->clear();
    cmbVrsta->addItems(vrstaTexts(kindsBook()));
    cmbVrsta->setCurrentIndex(-1);
}

void frmKnjPRashFBiHPregled::prepare()
{
    fillKinds();
    if (!isFBiH()) {
        ubIznosPDV->setVisible(false);
        lblIznosPDV->setVisible(false);
        lblPDVPosto->setVisible(false);
        moveToTabEnd(ubIznosPDV);
        mnuPostavke->menuAction()->setVisible(false);
        menuBar->setVisible(false);
    }
}

void frmKnjPRashFBiHPregled::onIznosChanged()
{
    if (isFBiH() && !mnuNeIzrPDV->isChecked())
        ubIznosPDV->setValue(vatContained(ubIznos->value()));
}

void frmKnjPRashFBiHPregled::onIznosLeft()
{
    if (!ubIznos->value().isNegative())
        return;
    inform(
        QStringLiteral("Unesena vrijednost je negativna, pažljivo !"), QStringLiteral("Napomena"), Icon::Exclamation);
    ubIznosPDV->setFocus();
}

void frmKnjPRashFBiHPregled::fill(const db::ResultSet& rs)
{
    dpDatum->setDate(dateOf(rs, QStringLiteral("Datum")));
    ubRBroj->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBroj"))));
    txtIsprava->setText(textOf(rs, QStringLiteral("Isprava")));
    txtOpis->setText(textOf(rs, QStringLiteral("Opis")));
    cmbVrsta->setCurrentIndex(vrstaPosition(kindsBook(), int(integerOf(rs, QStringLiteral("Vrsta")))));
    ubIznos->setValue(moneyOf(rs, QStringLiteral("Iznos")));
    if (isFBiH())
        ubIznosPDV->setValue(moneyOf(rs, QStringLiteral("IznosPDV")));
}

void frmKnjPRashFBiHPregled::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    fillKinds();
    dpDatum->setDate(cell(rs, row, QStringLiteral("Datum")).toDate());
    txtIsprava->setText(cell(rs, row, QStringLiteral("Isprava")).toString());
    txtOpis->setText(cell(rs, row, QStringLiteral("Opis")).toString());
    const int code = cell(rs, row, QStringLiteral("Vrsta")).toInt();
    cmbVrsta->setCurrentIndex(vrstaPosition(kindsBook(), code));
    const auto money = [&](const char* column) { return cell(rs, row, QLatin1String(column)).value<Money>(); };
    if (isFBiH()) {
        // The list splits each amount into an income and an expense column; one of the
        // two is always 0.
        ubIznos->setValue(money("Prihodi") + money("Rashodi"));
        ubIznosPDV->setValue(money("PDVPrihodi") + money("PDVRashodi"));
    } else {
        ubIznos->setValue(money("Iznos"));
    }
}

Findings frmKnjPRashFBiHPregled::checks()
{
    return checkPrihRash(
        { ubRBroj->integerValue(), dpDatum->date(), txtIsprava->text(), cmbVrsta->currentText(), ubIznos->value() },
        session().RadnaGodina);
}

db::RowChange::Values frmKnjPRashFBiHPregled::rowValues() const
{
    const Session& s = session();
    db::RowChange::Values v = {
        { QStringLiteral("BrojPoduzeca"), int(s.BrojPoduzeca) },
        { QStringLiteral("RBroj"), qint32(ubRBroj->integerValue()) },
        { QStringLiteral("Datum"), dpDatum->date() },
        { QStringLiteral("GodinaKnj"), int(s.RadnaGodina) },
        { QStringLiteral("Isprava"), txtIsprava->text() },
        { QStringLiteral("Opis"), txtOpis->text() },
        { QStringLiteral("Vrsta"), vrstaCode(cmbVrsta->currentText()) },
        { QStringLiteral("Iznos"), QVariant::fromValue(ubIznos->value()) },
    };
    if (m_tip == Knjiga::PrihRashFBiH)
        v.append({ QStringLiteral("IznosPDV"), QVariant::fromValue(ubIznosPDV->value()) });
    return v;
}

bool frmKnjPRashFBiHPregled::mayDelete()
{
    if (m_tip != Knjiga::PrihRashFBiH)
        return true;
    const Session& s = session();
    db::Database& db = session().db();
    db::ResultSet linked;
    const QString sql = QStringLiteral("SELECT RBrojKPR FROM dbo.KnjEvidPotrIObvFBiH WHERE GODINAKNJ=")
        + QString::number(s.RadnaGodina) + QStringLiteral(" AND BROJPODUZECA=") + QString::number(s.BrojPoduzeca)
        + QStringLiteral(" AND RBrojKPR=") + QString::number(sRedniBroj);
    if (!db.open(sql, linked)) {
        // The deletion goes on although the link could not be checked.
        inform(failureText(QStringLiteral("u čitanju stavke.")));
        return true;
    }
    if (linked.isEmpty())
        return true;
    warn(QStringLiteral("Postoji vezana stavka sa ovom stavkom u knjizi evidencije potraživanja i obveza (redni broj).")
        + u'\n'
        + QStringLiteral("Nije moguće izbrisati zapis u knjizi prihoda i rashoda, dok se ne obriše odgovarajući "
                         "zapis u knjizi evid.obv.i potraživanja!"));
    return false;
}

void frmKnjPRashFBiHPregled::afterWrite()
{
    const qint32 novi = qint32(ubRBroj->integerValue());
    if (m_tip != Knjiga::PrihRashFBiH || TipRada() != Izmjena || novi == sRedniBroj)
        return;
    const Session& s = session();
    // A failure here is deliberately silent: the entry itself is saved.
    db::Database& db = session().db();
    int moved = 0;
    if (!db.execute(QStringLiteral("UPDATE dbo.KnjEvidPotrIObvFBiH SET RBrojKPR=") + QString::number(novi)
                + QStringLiteral(" WHERE GODINAKNJ=") + QString::number(s.RadnaGodina)
                + QStringLiteral(" AND BROJPODUZECA=") + QString::number(s.BrojPoduzeca)
                + QStringLiteral(" AND RBrojKPR=") + QString::number(sRedniBroj),
            &moved)
        || moved == 0)
        return;
    // The links that followed the entry are part of its change.
    QString error;
    const journal::Change links { journal::RecordKind::Veze, std::nullopt, {},
        journal::valueChanges({ { sRedniBroj, novi } }) };
    if (!journal::append(db, { Knjiga::EvidPotObvFBiH, s.BrojPoduzeca, s.RadnaGodina, 0 }, links, &error))
        m_writeError = failureText(error);
}

} // namespace knjige::editors
