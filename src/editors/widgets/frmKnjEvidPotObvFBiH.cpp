#include "editors/widgets/frmKnjEvidPotObvFBiH.h"

#include "editors/widgets/MoneyBox.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace knjige::editors
{

using namespace editors;

frmKnjEvidPotObvFBiH::frmKnjEvidPotObvFBiH(int bookKind, QWidget* parent)
    : RecordEditor(bookKind, parent)
{
    setObjectName(QStringLiteral("frmKnjEvidPotObvFBiH"));
    addNumberRow();
    addDateRow();

    txtKomitent = new QLineEdit(this);
    txtKomitent->setObjectName(QStringLiteral("txtKomitent"));
    makeCodeField(txtKomitent);
    txtKomitent->setMaximumWidth(110);
    txtKomitent->setToolTip(QStringLiteral("F2: izbor komitenta"));
    cmdPrKomit = new QPushButton(QStringLiteral("..."), this);
    cmdPrKomit->setObjectName(QStringLiteral("cmdPrKomit"));
    cmdPrKomit->setFixedWidth(32);
    lblKomit = new QLabel(this);
    lblKomit->setObjectName(QStringLiteral("lblKomit"));
    lblKomit->setMinimumWidth(220);
    auto* partner = new QWidget(this);
    auto* line = new QHBoxLayout(partner);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(cmdPrKomit);
    line->addWidget(lblKomit, 1);
    addRow(QStringLiteral("Komitent:"), txtKomitent, partner);
    addLookupButton(cmdPrKomit);

    cboVrsta = addComboRow(QStringLiteral("Vrsta:"), QStringLiteral("cboVrsta"), vrstaTexts(bookKind));
    txtIsprava = addTextRow(QStringLiteral("Isprava:"), QStringLiteral("txtIsprava"), QStringLiteral("Isprava"));
    txtOpis = addTextRow(QStringLiteral("Opis:"), QStringLiteral("txtOpis"), QStringLiteral("Opis"), 320);
    ubIznos = addMoneyRow(QStringLiteral("Iznos:"), QStringLiteral("ubIznos"));
    ubKPR = addMoneyRow(QStringLiteral("R.br. u KPR:"), QStringLiteral("ubKPR"), true);
    ubKPR->setToolTip(QStringLiteral("Redni broj stavke u knjizi prihoda i rashoda"));
    finishLayout();
    txtKomitent->installEventFilter(this);

    connect(cmdPrKomit, &QPushButton::clicked, this, &frmKnjEvidPotObvFBiH::izaberiKomitenta);
    warnWhenNegative({ ubIznos });
}

void frmKnjEvidPotObvFBiH::showKomitent()
{
    lblKomit->setText(m_komitent.SifKomit == 0 ? QString() : QStringLiteral(" ") + m_komitent.ImeKomit1);
}

void frmKnjEvidPotObvFBiH::izaberiKomitenta()
{
    if (const std::optional<Partner> chosen = hostServices().partners->choose()) {
        m_komitent = *chosen;
        txtKomitent->setText(QString::number(chosen->SifKomit));
        showKomitent();
    }
    txtKomitent->setFocus();
}

void frmKnjEvidPotObvFBiH::nadjiKomitenta(qint32 code)
{
    m_komitent = hostServices().partners->find(code).value_or(Partner {});
    showKomitent();
}

// The partner follows the typed code even when the box was never left (a save by
// Page Down straight from the code).
void frmKnjEvidPotObvFBiH::syncKomitent()
{
    const QString text = txtKomitent->text().trimmed();
    const qint32 code = text.toInt();
    if (text.isEmpty())
        m_komitent = {};
    else if (code != m_komitent.SifKomit)
        nadjiKomitenta(code);
}

bool frmKnjEvidPotObvFBiH::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == txtKomitent) {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F2) {
            izaberiKomitenta();
            return true;
        }
        if (event->type() == QEvent::FocusOut) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason
                && !txtKomitent->text().trimmed().isEmpty())
                nadjiKomitenta(txtKomitent->text().trimmed().toInt());
        }
    }
    return RecordEditor::eventFilter(watched, event);
}

void frmKnjEvidPotObvFBiH::fill(const db::ResultSet& rs)
{
    dpDatum->setDate(dateOf(rs, QStringLiteral("Datum")));
    ubRBroj->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBroj"))));
    const qint32 code = qint32(integerOf(rs, QStringLiteral("SifKomit")));
    txtKomitent->setText(QString::number(code));
    nadjiKomitenta(code);
    cboVrsta->setCurrentIndex(vrstaPosition(m_tip, int(integerOf(rs, QStringLiteral("Vrsta")))));
    txtIsprava->setText(textOf(rs, QStringLiteral("Isprava")));
    txtOpis->setText(textOf(rs, QStringLiteral("Opis")));
    ubIznos->setValue(moneyOf(rs, QStringLiteral("Iznos")));
    ubKPR->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBrojKPR"))));
}

void frmKnjEvidPotObvFBiH::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    dpDatum->setDate(cell(rs, row, QStringLiteral("Datum")).toDate());
    const qint32 code = cell(rs, row, QStringLiteral("SifKomit")).toInt();
    txtKomitent->setText(QString::number(code));
    m_komitent = { code, cell(rs, row, QStringLiteral("ImeKomit1")).toString() };
    showKomitent();
    cboVrsta->setCurrentIndex(vrstaPosition(m_tip, cell(rs, row, QStringLiteral("Vrsta")).toInt()));
    txtIsprava->setText(cell(rs, row, QStringLiteral("Isprava")).toString());
    txtOpis->setText(cell(rs, row, QStringLiteral("Opis")).toString());
    ubIznos->setValue(cell(rs, row, QStringLiteral("Iznos")).value<Money>());
    // Two entries must not point at the same income/expense entry unnoticed: the copy
    // has no link, so the save warns until one is typed.
    ubKPR->setValue(Money());
}

Findings frmKnjEvidPotObvFBiH::checks()
{
    syncKomitent();
    return checkEvid({ ubRBroj->integerValue(), dpDatum->date(), m_komitent.SifKomit, cboVrsta->currentText(),
                         ubKPR->integerValue(), txtIsprava->text(), ubIznos->value() },
        session().RadnaGodina);
}

db::RowChange::Values frmKnjEvidPotObvFBiH::rowValues() const
{
    const Session& s = session();
    return {
        { QStringLiteral("BrojPoduzeca"), int(s.BrojPoduzeca) },
        { QStringLiteral("RBroj"), qint32(ubRBroj->integerValue()) },
        { QStringLiteral("SifKomit"), m_komitent.SifKomit },
        { QStringLiteral("Vrsta"), vrstaCode(cboVrsta->currentText()) },
        { QStringLiteral("Datum"), dpDatum->date() },
        { QStringLiteral("GodinaKnj"), int(s.RadnaGodina) },
        { QStringLiteral("Isprava"), txtIsprava->text() },
        { QStringLiteral("Opis"), txtOpis->text() },
        { QStringLiteral("Iznos"), QVariant::fromValue(ubIznos->value()) },
        { QStringLiteral("RBrojKPR"), qint32(ubKPR->integerValue()) },
    };
}

} // namespace knjige::editors
