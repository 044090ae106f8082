// The filter: the book's own editor in its filter mode collects what to look for, the
// core turns it into the WHERE clause, the description and the period.
#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/FilterClause.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjEvidPotObvFBiH.h"
#include "editors/widgets/frmKnjTrgovacke.h"
#include "session/HostServices.h"
#include "session/Session.h"

#include <QComboBox>
#include <QLineEdit>

namespace knjige
{
namespace
{

QString text(const RecordEditor& e, const QString& name)
{
    const auto* edit = qobject_cast<const QLineEdit*>(e.control(name));
    return edit ? edit->text() : QString();
}

Money amount(const RecordEditor& e, const QString& name)
{
    const auto* box = qobject_cast<const MoneyBox*>(e.control(name));
    return box ? box->value() : Money();
}

QString kindText(const RecordEditor& e)
{
    for (const QString& name : { QStringLiteral("cmbVrsta"), QStringLiteral("cboVrsta") })
        if (const auto* combo = qobject_cast<const QComboBox*>(e.control(name)))
            return combo->currentText();
    return {};
}

// The name the picker shows for a code; looked up when the picker has not caught up
// with a code typed just before the dialog was confirmed.
QString nameOf(const Partner& shown, qint32 code, PartnerRegister& reg)
{
    if (code == 0)
        return {};
    if (shown.SifKomit == code && !shown.ImeKomit1.isEmpty())
        return shown.ImeKomit1;
    const std::optional<Partner> found = reg.find(code);
    return found ? found->ImeKomit1 : QString();
}

browser::FilterInput filterInput(const RecordEditor& e)
{
    browser::FilterInput in;
    in.chkPoDatumima = e.chkPoDatumima->isChecked();
    in.dpDatum = e.dpDatum->date();
    in.dpDatumDo = e.dpDatumDo->date();
    in.txtIsprava = text(e, QStringLiteral("txtIsprava"));
    in.txtOpis = text(e, QStringLiteral("txtOpis"));
    in.vrsta = kindText(e);
    in.txtKomitent = text(e, QStringLiteral("txtKomitent"));
    in.txtNazivSredstva = text(e, QStringLiteral("txtNazivSredstva"));
    in.txtNaziv = text(e, QStringLiteral("txtNaziv"));
    in.txtBrojDokumenta = text(e, QStringLiteral("txtBrojDokumenta"));
    in.ubIznos = amount(e, QStringLiteral("ubIznos"));
    in.ubIznosPDV = amount(e, QStringLiteral("ubIznosPDV"));
    in.ubKPR = amount(e, QStringLiteral("ubKPR"));
    in.ubGotovina = amount(e, QStringLiteral("ubGotovina"));
    in.ubCek = amount(e, QStringLiteral("ubCek"));
    in.ubNabavna = amount(e, QStringLiteral("ubNabavna"));
    in.ubKnjigovodstvena = amount(e, QStringLiteral("ubKnjigovodstvena"));
    in.ubVijekTrajanja = amount(e, QStringLiteral("ubVijekTrajanja"));
    in.ubZaduženje = amount(e, QStringLiteral("ubZaduženje"));
    in.ubRazduženje = amount(e, QStringLiteral("ubRazduženje"));
    if (e.TipSifarnika() == Knjiga::EvidPotObvRS) {
        if (const auto* evid = qobject_cast<const frmKnjEvidPotObvFBiH*>(&e))
            in.imeKomitenta = nameOf(evid->cKomit(), in.txtKomitent.trimmed().toInt(), *hostServices().partners);
    }
    if (const auto* trg = qobject_cast<const TrgKnjigaEditor*>(&e)) {
        in.prodavnica = trg->cSkladište().SifKomit;
        in.imeProdavnice = nameOf(trg->cSkladište(), in.prodavnica, *hostServices().shops);
    }
    return in;
}

void setText(RecordEditor& e, const QString& name, const QString& value)
{
    if (auto* edit = qobject_cast<QLineEdit*>(e.control(name)))
        edit->setText(value);
}

void setAmount(RecordEditor& e, const QString& name, Money value)
{
    if (auto* box = qobject_cast<MoneyBox*>(e.control(name)))
        box->setValue(value);
}

// The filter form as it was when the filter in force was confirmed.
void restoreInput(RecordEditor& e, const browser::FilterInput& in)
{
    e.dpDatum->setDate(in.dpDatum);
    e.dpDatumDo->setDate(in.dpDatumDo);
    // After the dates: changing a date ticks the box.
    e.chkPoDatumima->setChecked(in.chkPoDatumima);
    setText(e, QStringLiteral("txtIsprava"), in.txtIsprava);
    setText(e, QStringLiteral("txtOpis"), in.txtOpis);
    setText(e, QStringLiteral("txtKomitent"), in.txtKomitent);
    setText(e, QStringLiteral("txtNazivSredstva"), in.txtNazivSredstva);
    setText(e, QStringLiteral("txtNaziv"), in.txtNaziv);
    setText(e, QStringLiteral("txtBrojDokumenta"), in.txtBrojDokumenta);
    for (const QString& name : { QStringLiteral("cmbVrsta"), QStringLiteral("cboVrsta") })
        if (auto* combo = qobject_cast<QComboBox*>(e.control(name)))
            combo->setCurrentIndex(combo->findText(in.vrsta));
    // The amount first: it computes a VAT share the remembered one replaces.
    setAmount(e, QStringLiteral("ubIznos"), in.ubIznos);
    setAmount(e, QStringLiteral("ubIznosPDV"), in.ubIznosPDV);
    setAmount(e, QStringLiteral("ubKPR"), in.ubKPR);
    setAmount(e, QStringLiteral("ubGotovina"), in.ubGotovina);
    setAmount(e, QStringLiteral("ubCek"), in.ubCek);
    setAmount(e, QStringLiteral("ubNabavna"), in.ubNabavna);
    setAmount(e, QStringLiteral("ubKnjigovodstvena"), in.ubKnjigovodstvena);
    setAmount(e, QStringLiteral("ubVijekTrajanja"), in.ubVijekTrajanja);
    setAmount(e, QStringLiteral("ubZaduženje"), in.ubZaduženje);
    setAmount(e, QStringLiteral("ubRazduženje"), in.ubRazduženje);
}

} // namespace

void frmSifarnikKnj::PostaviFilter()
{
    // The description and the period start over before the dialog, so a cancelled
    // dialog leaves them reset while the rows and the WHERE clause stay.
    const Session& s = session();
    OpisFiltera.clear();
    DatumOd = browser::periodStart(s.RadnaGodina);
    DatumDo = browser::periodEnd(s.RadnaGodina);
    m_txtFilter->setText(browser::filterLine(OpisFiltera));
    std::unique_ptr<RecordEditor> e = browser::isFilterable(m_tip) ? createEditor(m_tip, this) : nullptr;
    if (!e) {
        OsvjeziZapise();
        return;
    }
    e->setTipSifarnika(m_tip);
    e->setTipRada(editors::Pretrazivanje);
    e->ubRBroj->setVisible(false);
    pripremiEditor(*e, m_tip);
    // A trade book filtered again offers the sales point it already shows.
    if (isTradeBook(m_tip) && BrojProd != 0)
        e->setSkladište(BrojProd);
    if (UnosFiltera)
        e->prijePrikaza = [in = *UnosFiltera](RecordEditor& form) { restoreInput(form, in); };
    e->Prikaži(1);
    // Cancelled, nothing is reloaded: a trade book whose sales point was not chosen
    // at its opening stays empty (rather than listing every shop's entries with the
    // totals of none) until a filter chooses one.
    if (e->IzišaoSaPrekidom())
        return;
    const browser::FilterInput in = filterInput(*e);
    applyFilter(browser::buildFilter(m_tip, s.BrojPoduzeca, s.RadnaGodina, in));
    UnosFiltera = in;
}

void frmSifarnikKnj::applyFilter(const browser::FilterState& filter)
{
    WhereUvjet = filter.where;
    UvjetiFiltera = filter.conditions;
    OpisFiltera = filter.description;
    DatumOd = filter.periodStart;
    DatumDo = filter.periodEnd;
    if (filter.salesPoint != 0)
        BrojProd = filter.salesPoint;
    // A filter put in force from outside the form (a period) is what the form shows next.
    UnosFiltera = browser::FilterInput {};
    UnosFiltera->chkPoDatumima = true;
    UnosFiltera->dpDatum = DatumOd;
    UnosFiltera->dpDatumDo = DatumDo;
    m_txtFilter->setText(browser::filterLine(OpisFiltera));
    OsvjeziZapise();
}

} // namespace knjige
