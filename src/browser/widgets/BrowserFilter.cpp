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

namespace knjige::browser
{
namespace
{

using browser::FilterInput;

// The filter form's text boxes and number boxes and the fields they fill, in both
// directions: read when the form is confirmed, put back when it opens again.
const std::pair<const char*, QString FilterInput::*> kTexts[] = {
    { "txtIsprava", &FilterInput::txtIsprava },
    { "txtOpis", &FilterInput::txtOpis },
    { "txtKomitent", &FilterInput::txtKomitent },
    { "txtNazivSredstva", &FilterInput::txtNazivSredstva },
    { "txtNaziv", &FilterInput::txtNaziv },
    { "txtBrojDokumenta", &FilterInput::txtBrojDokumenta },
};
// The amount before its VAT share: setting the amount computes a share that the
// remembered one then replaces.
const std::pair<const char*, Money FilterInput::*> kAmounts[] = {
    { "ubIznos", &FilterInput::ubIznos },
    { "ubIznosPDV", &FilterInput::ubIznosPDV },
    { "ubKPR", &FilterInput::ubKPR },
    { "ubGotovina", &FilterInput::ubGotovina },
    { "ubCek", &FilterInput::ubCek },
    { "ubNabavna", &FilterInput::ubNabavna },
    { "ubKnjigovodstvena", &FilterInput::ubKnjigovodstvena },
    { "ubVijekTrajanja", &FilterInput::ubVijekTrajanja },
    { "ubZaduženje", &FilterInput::ubZaduženje },
    { "ubRazduženje", &FilterInput::ubRazduženje },
};

QLineEdit* textBox(const editors::RecordEditor& e, const char* name)
{
    return qobject_cast<QLineEdit*>(e.control(QString::fromUtf8(name)));
}

editors::MoneyBox* amountBox(const editors::RecordEditor& e, const char* name)
{
    return qobject_cast<editors::MoneyBox*>(e.control(QString::fromUtf8(name)));
}

QComboBox* kindList(const editors::RecordEditor& e)
{
    for (const QString& name : { QStringLiteral("cmbVrsta"), QStringLiteral("cboVrsta") })
        if (auto* combo = qobject_cast<QComboBox*>(e.control(name)))
            return combo;
    return nullptr;
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

browser::FilterInput filterInput(const editors::RecordEditor& e)
{
    browser::FilterInput in;
    in.chkPoDatumima = e.chkPoDatumima->isChecked();
    in.dpDatum = e.dpDatum->date();
    in.dpDatumDo = e.dpDatumDo->date();
    for (const auto& [name, field] : kTexts)
        if (const QLineEdit* box = textBox(e, name))
            in.*field = box->text();
    for (const auto& [name, field] : kAmounts)
        if (const editors::MoneyBox* box = amountBox(e, name))
            in.*field = box->value();
    if (const QComboBox* list = kindList(e))
        in.vrsta = list->currentText();
    if (e.TipSifarnika() == Knjiga::EvidPotObvRS) {
        if (const auto* evid = qobject_cast<const editors::frmKnjEvidPotObvFBiH*>(&e))
            in.imeKomitenta = nameOf(evid->cKomit(), in.txtKomitent.trimmed().toInt(), *hostServices().partners);
    }
    if (const auto* trg = qobject_cast<const editors::TrgKnjigaEditor*>(&e)) {
        in.prodavnica = trg->cSkladište().SifKomit;
        in.imeProdavnice = nameOf(trg->cSkladište(), in.prodavnica, *hostServices().shops);
    }
    return in;
}

// The filter form as it was when the filter in force was confirmed.
void restoreInput(editors::RecordEditor& e, const FilterInput& in)
{
    e.dpDatum->setDate(in.dpDatum);
    e.dpDatumDo->setDate(in.dpDatumDo);
    // After the dates: changing a date ticks the box.
    e.chkPoDatumima->setChecked(in.chkPoDatumima);
    for (const auto& [name, field] : kTexts)
        if (QLineEdit* box = textBox(e, name))
            box->setText(in.*field);
    for (const auto& [name, field] : kAmounts)
        if (editors::MoneyBox* box = amountBox(e, name))
            box->setValue(in.*field);
    if (QComboBox* list = kindList(e))
        list->setCurrentIndex(list->findText(in.vrsta));
}

} // namespace

void frmSifarnikKnj::PostaviFilter()
{
    // The description and the period start over before the dialog, so a cancelled
    // dialog leaves them reset while the rows and the WHERE clause stay.
    m_query.filter.description.clear();
    m_query.filter.periodStart = browser::periodStart(m_query.year);
    m_query.filter.periodEnd = browser::periodEnd(m_query.year);
    m_txtFilter->setText(browser::filterLine(m_query.filter.description));
    std::unique_ptr<editors::RecordEditor> e
        = browser::isFilterable(m_query.bookKind) ? editors::createEditor(m_query.bookKind, this) : nullptr;
    if (!e) {
        OsvjeziZapise();
        return;
    }
    e->setTipSifarnika(m_query.bookKind);
    e->setTipRada(editors::Pretrazivanje);
    e->ubRBroj->setVisible(false);
    editors::pripremiEditor(*e, m_query.bookKind);
    // A trade book filtered again offers the sales point it already shows.
    if (books::isTradeBook(m_query.bookKind) && BrojProd() != 0)
        e->setShop(BrojProd());
    if (UnosFiltera)
        e->prijePrikaza = [in = *UnosFiltera](editors::RecordEditor& form) { restoreInput(form, in); };
    e->Prikaži(1);
    // Cancelled, nothing is reloaded: a trade book whose sales point was not chosen
    // at its opening stays empty (rather than listing every shop's entries with the
    // totals of none) until a filter chooses one.
    if (e->IzišaoSaPrekidom())
        return;
    const browser::FilterInput in = filterInput(*e);
    applyFilter(browser::buildFilter(m_query.bookKind, m_query.company, m_query.year, in));
    UnosFiltera = in;
}

void frmSifarnikKnj::applyFilter(const browser::FilterState& filter)
{
    browser::applyFilter(m_query, filter);
    // A filter put in force from outside the form (a period) is what the form shows next.
    UnosFiltera = browser::FilterInput {};
    UnosFiltera->chkPoDatumima = true;
    UnosFiltera->dpDatum = m_query.filter.periodStart;
    UnosFiltera->dpDatumDo = m_query.filter.periodEnd;
    m_txtFilter->setText(browser::filterLine(m_query.filter.description));
    OsvjeziZapise();
}

} // namespace knjige::browser
