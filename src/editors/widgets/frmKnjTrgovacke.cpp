#include "editors/widgets/frmKnjTrgovacke.h"

#include "books/BookKind.h"
#include "books/LastNumber.h"
#include "editors/widgets/MoneyBox.h"
#include "session/Session.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace knjige::editors
{

using namespace editors;

TrgKnjigaEditor::TrgKnjigaEditor(int bookKind, QWidget* parent)
    : RecordEditor(bookKind, parent)
{
}

void TrgKnjigaEditor::addHeadRows()
{
    txtSkladište = new QLineEdit(this);
    txtSkladište->setObjectName(QStringLiteral("txtSkladište"));
    makeCodeField(txtSkladište);
    txtSkladište->setMaximumWidth(110);
    txtSkladište->setToolTip(QStringLiteral("F2: izbor prodavnice"));
    cmdPrSkladište = new QPushButton(QStringLiteral("..."), this);
    cmdPrSkladište->setObjectName(QStringLiteral("cmdPrSkladište"));
    cmdPrSkladište->setFixedWidth(32);
    lblShop = new QLabel(this);
    lblShop->setObjectName(QStringLiteral("lblSkladište"));
    lblShop->setMinimumWidth(220);
    auto* shop = new QWidget(this);
    auto* line = new QHBoxLayout(shop);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(cmdPrSkladište);
    line->addWidget(lblShop, 1);
    addRow(QStringLiteral("Prodavnica:"), txtSkladište, shop);
    addLookupButton(cmdPrSkladište);
    addNumberRow();
    addDateRow();
    txtOpis = addTextRow(QStringLiteral("Opis:"), QStringLiteral("txtOpis"), QStringLiteral("Opis"), 320);
    txtSkladište->installEventFilter(this);
    connect(cmdPrSkladište, &QPushButton::clicked, this, &TrgKnjigaEditor::chooseShop);
}

qint32 TrgKnjigaEditor::shopCode() const
{
    return txtSkladište->text().trimmed().toInt();
}

Partner TrgKnjigaEditor::cSkladište() const
{
    return shopCode() == m_shop.SifKomit ? m_shop : Partner { shopCode(), QString() };
}

void TrgKnjigaEditor::setShop(qint32 shop)
{
    txtSkladište->setText(shop == 0 ? QString() : QString::number(shop));
    lookUpShop();
}

void TrgKnjigaEditor::lookUpShop()
{
    const qint32 code = shopCode();
    if (code == m_shop.SifKomit && !lblShop->text().isEmpty())
        return;
    m_shop = code == 0 ? Partner {} : hostServices().shops->find(code).value_or(Partner { code, QString() });
    lblShop->setText(m_shop.ImeKomit1.isEmpty() ? QString() : QStringLiteral(" ") + m_shop.ImeKomit1);
    predloziBroj();
}

void TrgKnjigaEditor::chooseShop()
{
    if (const std::optional<Partner> chosen = hostServices().shops->choose()) {
        m_shop = *chosen;
        txtSkladište->setText(QString::number(chosen->SifKomit));
        lblShop->setText(QStringLiteral(" ") + chosen->ImeKomit1);
        predloziBroj();
    }
    txtSkladište->setFocus();
}

// Numbers run per shop, so a new entry's number follows the shop it is booked to.
void TrgKnjigaEditor::predloziBroj()
{
    if (TipRada() != Novi || shopCode() == 0)
        return;
    const DefVarijabli::LastNumber last = DefVarijabli::ZadnjiRBroj(m_tip, shopCode());
    tell(last.failure);
    ubRBroj->setValue(Money::fromWhole(qint64(last.number) + 1));
}

void TrgKnjigaEditor::prepare()
{
    lookUpShop();
    predloziBroj();
}

bool TrgKnjigaEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == txtSkladište) {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F2) {
            chooseShop();
            return true;
        }
        if (event->type() == QEvent::FocusOut) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason
                && shopCode() != m_shop.SifKomit)
                lookUpShop();
        }
    }
    return RecordEditor::eventFilter(watched, event);
}

QString TrgKnjigaEditor::readStatement() const
{
    const Session& s = session();
    return readEntrySql(m_tip, s.RadnaGodina, s.BrojPoduzeca, sRedniBroj, shopCode());
}

void TrgKnjigaEditor::fillHead(const db::ResultSet& rs)
{
    setShop(qint32(integerOf(rs, QStringLiteral("BrojProd"))));
    ubRBroj->setValue(Money::fromWhole(integerOf(rs, QStringLiteral("RBroj"))));
    dpDatum->setDate(dateOf(rs, QStringLiteral("Datum")));
    txtOpis->setText(textOf(rs, QStringLiteral("Opis")));
}

void TrgKnjigaEditor::copyHead(const db::ResultSet& rs, int row)
{
    const qint32 shop = cell(rs, row, QStringLiteral("BrojProd")).toInt();
    m_shop = { shop, cell(rs, row, QStringLiteral("ImeProd")).toString() };
    txtSkladište->setText(QString::number(shop));
    lblShop->setText(QStringLiteral(" ") + m_shop.ImeKomit1);
    dpDatum->setDate(cell(rs, row, QStringLiteral("Datum")).toDate());
    txtOpis->setText(cell(rs, row, QStringLiteral("Opis")).toString());
}

TrgInput TrgKnjigaEditor::input() const
{
    TrgInput in;
    in.skladiste = txtSkladište->text();
    in.rbroj = ubRBroj->integerValue();
    in.datum = dpDatum->date();
    return in;
}

Findings TrgKnjigaEditor::unknownShop() const
{
    if (txtSkladište->text().trimmed().isEmpty())
        return {};
    const qint32 code = shopCode();
    db::ResultSet rs;
    // A failed read refuses nothing: the write that follows reports the database.
    if (!session().db().open(
            QStringLiteral("SELECT SifKomit FROM dbo.Komitent WHERE SifKomit=") + QString::number(code), rs)
        || !rs.isEmpty())
        return {};
    return { { QStringLiteral("Maloprodaja sa šifrom ") + QString::number(code) + QStringLiteral(" ne postoji!"),
        QStringLiteral("txtSkladište"), false, {}, Icon::Exclamation } };
}

db::RowChange::Values TrgKnjigaEditor::headValues() const
{
    const Session& s = session();
    return {
        { QStringLiteral("BrojPoduzeca"), int(s.BrojPoduzeca) },
        { QStringLiteral("BrojProd"), shopCode() },
        { QStringLiteral("RBroj"), qint32(ubRBroj->integerValue()) },
        { QStringLiteral("Datum"), dpDatum->date() },
        { QStringLiteral("GodinaKnj"), int(s.RadnaGodina) },
        { QStringLiteral("Opis"), txtOpis->text() },
    };
}

// ---- services ----

frmKnjUsluga::frmKnjUsluga(QWidget* parent)
    : TrgKnjigaEditor(Knjiga::TrgUsluga, parent)
{
    setObjectName(QStringLiteral("frmKnjUsluga"));
    addHeadRows();
    ubIznos = addMoneyRow(QStringLiteral("Iznos naknade:"), QStringLiteral("ubIznos"));
    finishLayout();
}

void frmKnjUsluga::fill(const db::ResultSet& rs)
{
    fillHead(rs);
    ubIznos->setValue(moneyOf(rs, QStringLiteral("Iznos")));
}

void frmKnjUsluga::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    copyHead(rs, row);
    ubIznos->setValue(cell(rs, row, QStringLiteral("Iznos")).value<Money>());
}

Findings frmKnjUsluga::checks()
{
    if (Findings unknown = unknownShop(); !unknown.isEmpty())
        return unknown;
    TrgInput in = input();
    in.iznos = ubIznos->value();
    return checkUsluga(in, session().RadnaGodina);
}

db::RowChange::Values frmKnjUsluga::rowValues() const
{
    db::RowChange::Values v = headValues();
    v.append({ QStringLiteral("Iznos"), QVariant::fromValue(ubIznos->value()) });
    return v;
}

// ---- commission ----

frmKnjKomisiona::frmKnjKomisiona(QWidget* parent)
    : TrgKnjigaEditor(Knjiga::TrgKomisiona, parent)
{
    setObjectName(QStringLiteral("frmKnjKomisiona"));
    addHeadRows();
    ubZaduženje = addMoneyRow(QStringLiteral("Zaduženje:"), QStringLiteral("ubZaduženje"));
    ubRazduženje = addMoneyRow(QStringLiteral("Razduženje:"), QStringLiteral("ubRazduženje"));
    finishLayout();
}

void frmKnjKomisiona::fill(const db::ResultSet& rs)
{
    fillHead(rs);
    ubZaduženje->setValue(moneyOf(rs, QStringLiteral("Zaduzenje")));
    ubRazduženje->setValue(moneyOf(rs, QStringLiteral("Razduzenje")));
}

void frmKnjKomisiona::PreuzmiStavku(const db::ResultSet& rs, int row)
{
    copyHead(rs, row);
    ubZaduženje->setValue(cell(rs, row, QStringLiteral("Zaduzenje")).value<Money>());
    ubRazduženje->setValue(cell(rs, row, QStringLiteral("Razduzenje")).value<Money>());
}

Findings frmKnjKomisiona::checks()
{
    if (Findings unknown = unknownShop(); !unknown.isEmpty())
        return unknown;
    TrgInput in = input();
    in.zaduzenje = ubZaduženje->value();
    in.razduzenje = ubRazduženje->value();
    return checkKomisiona(in, session().RadnaGodina);
}

db::RowChange::Values frmKnjKomisiona::rowValues() const
{
    db::RowChange::Values v = headValues();
    v.append({ QStringLiteral("Zaduzenje"), QVariant::fromValue(ubZaduženje->value()) });
    v.append({ QStringLiteral("Razduzenje"), QVariant::fromValue(ubRazduženje->value()) });
    return v;
}

} // namespace knjige::editors
