#include "generate/widgets/frmGenPrihRashDB.h"

#include "generate/widgets/KeychainStore.h"
#include "session/Clock.h"
#include "session/HostServices.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "session/Workstation.h"
#include "session/widgets/DateTyping.h"
#include "session/widgets/SelectWholeText.h"

#include <QDateEdit>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace knjige::generate
{
namespace
{

QLabel* label(QWidget* parent, const QString& name, const QString& text = {})
{
    auto* l = new QLabel(text, parent);
    l->setObjectName(name);
    return l;
}

QLineEdit* edit(QWidget* parent, const QString& name, int width = 0)
{
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    if (width > 0)
        e->setMaximumWidth(width);
    return e;
}

QDateEdit* dateEdit(QWidget* parent, const QString& name, const QDate& date)
{
    auto* d = new DateField(parent);
    d->setDate(date);
    d->setObjectName(name);
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    typeDatesAsWritten(d);
    return d;
}

QPushButton* button(QWidget* parent, const QString& name, const QString& text)
{
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

// The small "..." button beside a field that opens a chooser.
QPushButton* chooser(QWidget* parent, const QString& name)
{
    QPushButton* b = button(parent, name, QStringLiteral("..."));
    b->setFixedWidth(b->fontMetrics().horizontalAdvance(QStringLiteral("....")) + 16);
    return b;
}

} // namespace

frmGenPrihRashDB::frmGenPrihRashDB(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmGenPrihRashDB"));
    setModal(true);
    setLocale(componentLocale());
    napraviKontrole();
    setMinimumWidth(600);
}

void frmGenPrihRashDB::napraviKontrole()
{
    auto* outer = new QVBoxLayout(this);
    m_uputa = label(this, QStringLiteral("lblUputa"));
    m_uputa->setWordWrap(true);
    outer->addWidget(m_uputa);

    auto* grid = new QGridLayout;
    grid->setColumnStretch(3, 1);
    const QDate danas = clock::today();
    dpDatum = dateEdit(this, QStringLiteral("dpDatum"), danas.addDays(-7));
    dpDatum1 = dateEdit(this, QStringLiteral("dpDatum1"), danas);
    auto* razdoblje = new QHBoxLayout;
    razdoblje->addWidget(dpDatum);
    razdoblje->addWidget(label(this, QStringLiteral("lblDo"), QStringLiteral("do:")));
    razdoblje->addWidget(dpDatum1);
    razdoblje->addStretch(1);
    grid->addWidget(label(this, QStringLiteral("lblOd"), QStringLiteral("Od datuma:")), 0, 0);
    grid->addLayout(razdoblje, 0, 1, 1, 3);

    txtOrgJed = edit(this, QStringLiteral("txtOrgJed"), 90);
    auto* lblOrgJed = label(this, QStringLiteral("lblOrgJed"), QStringLiteral("Org.jedinica:"));
    grid->addWidget(lblOrgJed, 1, 0);
    grid->addWidget(txtOrgJed, 1, 1);
    m_orgJed = { lblOrgJed, txtOrgJed };

    txtKomit = edit(this, QStringLiteral("txtKomit"), 90);
    cmdPrKomit = chooser(this, QStringLiteral("cmdPrKomit"));
    m_lblKomit = label(this, QStringLiteral("lblKomit"));
    m_nazivKomit = label(this, QStringLiteral("lblNazivKomit"));
    grid->addWidget(m_lblKomit, 2, 0);
    grid->addWidget(txtKomit, 2, 1);
    grid->addWidget(cmdPrKomit, 2, 2);
    grid->addWidget(m_nazivKomit, 2, 3);
    m_supplier = { m_lblKomit, txtKomit, cmdPrKomit, m_nazivKomit };

    txtSkladište = edit(this, QStringLiteral("txtSkladište"), 90);
    cmdPrSkladište = chooser(this, QStringLiteral("cmdPrSkladište"));
    m_lblShop = label(this, QStringLiteral("lblSkladište"));
    m_shopName = label(this, QStringLiteral("lblNazivSkladište"));
    txtPrima = edit(this, QStringLiteral("txtPrima"), 90);
    m_lblPrima = label(this, QStringLiteral("lblPrima"));
    m_nazivPrima = label(this, QStringLiteral("lblNazivPrima"));
    grid->addWidget(m_lblShop, 3, 0);
    grid->addWidget(txtSkladište, 3, 1);
    grid->addWidget(cmdPrSkladište, 3, 2);
    grid->addWidget(m_shopName, 3, 3);
    grid->addWidget(m_lblPrima, 4, 0);
    grid->addWidget(txtPrima, 4, 1);
    grid->addWidget(m_nazivPrima, 4, 3);
    m_shop = { m_lblShop, txtSkladište, cmdPrSkladište, m_shopName, m_lblPrima, txtPrima, m_nazivPrima };
    outer->addLayout(grid);

    m_fraServer = new QGroupBox(this);
    m_fraServer->setObjectName(QStringLiteral("fraServer"));
    auto* server = new QGridLayout(m_fraServer);
    server->setColumnStretch(1, 1);
    txtImeServera = edit(m_fraServer, QStringLiteral("txtImeServera"));
    txtBazaPodataka = edit(m_fraServer, QStringLiteral("txtBazaPodataka"));
    txtLozinka = edit(m_fraServer, QStringLiteral("txtLozinka"));
    txtLozinka->setEchoMode(QLineEdit::Password);
    m_cmdBaza = chooser(m_fraServer, QStringLiteral("cmdBaza"));
    m_lblBaza = label(m_fraServer, QStringLiteral("lblBaza"));
    m_lblLozinka = label(m_fraServer, QStringLiteral("lblLozinka"), QStringLiteral("Lozinka (sa):"));
    server->addWidget(label(m_fraServer, QStringLiteral("lblServer"), QStringLiteral("Server:")), 0, 0);
    server->addWidget(txtImeServera, 0, 1, 1, 2);
    server->addWidget(m_lblBaza, 1, 0);
    server->addWidget(txtBazaPodataka, 1, 1);
    server->addWidget(m_cmdBaza, 1, 2);
    server->addWidget(m_lblLozinka, 2, 0);
    server->addWidget(txtLozinka, 2, 1, 1, 2);
    outer->addWidget(m_fraServer);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    OKButton = button(this, QStringLiteral("OKButton"), QStringLiteral("U redu"));
    OKButton->setDefault(true);
    CancelButton = button(this, QStringLiteral("CancelButton"), QStringLiteral("Odustani"));
    buttons->addWidget(OKButton);
    buttons->addWidget(CancelButton);
    outer->addLayout(buttons);

    selectWholeTextOnFocus(this);
    connect(OKButton, &QPushButton::clicked, this, [this] { OKButton_Click(); });
    connect(CancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(cmdPrKomit, &QPushButton::clicked, this, [this] { izaberi(true); });
    connect(cmdPrSkladište, &QPushButton::clicked, this, [this] { izaberi(false); });
    connect(m_cmdBaza, &QPushButton::clicked, this, [this] { izaberiDatoteku(); });
    connect(txtImeServera, &QLineEdit::textChanged, this, [this] { showSource(); });
    connect(txtKomit, &QLineEdit::editingFinished, this, [this] { showName(txtKomit, m_nazivKomit, true); });
    connect(txtSkladište, &QLineEdit::editingFinished, this, [this] { showName(txtSkladište, m_shopName, false); });
    connect(txtPrima, &QLineEdit::editingFinished, this, [this] { showName(txtPrima, m_nazivPrima, true); });
}

void frmGenPrihRashDB::setVrsta(int vrsta)
{
    if (!generate::valjanaVrsta(vrsta))
        return;
    m_vrsta = vrsta;
    const generate::OpisVrste& o = generate::opisVrste(vrsta);
    setWindowTitle(o.naslov);
    m_uputa->setText(o.uputa);
    m_fraServer->setTitle(o.oznakaServera);
    m_lblKomit->setText(o.oznakaDobavljaca);
    m_lblShop->setText(o.oznakaMjesta);
    m_lblPrima->setText(o.oznakaPrimatelja);
    for (QWidget* w : m_orgJed)
        w->setVisible(generate::imaOrgJedinicu(vrsta));
    for (QWidget* w : m_supplier)
        w->setVisible(generate::hasSupplier(vrsta));
    for (QWidget* w : m_shop)
        w->setVisible(generate::hasShop(vrsta));

    const generate::IzvorPodataka host = generate::hostSource(session().ConnString);
    const QString app = settings::sharedApplication();
    txtImeServera->setText(settings::text(app, settings::section(), o.kljucServera, host.server));
    txtBazaPodataka->setText(settings::text(app, settings::section(), o.kljucBaze, host.baza));
    showSource();
}

// The server field decides what the database field names: a catalog on that server,
// or with no server an embedded database file (the server is then not used).
void frmGenPrihRashDB::showSource()
{
    const bool embedded = izvor().embedded();
    txtImeServera->setPlaceholderText(
        embedded ? QStringLiteral("ne koristi se: izvor je datoteka ugrađene baze") : QString());
    m_lblBaza->setText(embedded ? QStringLiteral("Datoteka baze:") : QStringLiteral("Baza:"));
    m_cmdBaza->setVisible(embedded);
    m_lblLozinka->setVisible(!embedded);
    txtLozinka->setVisible(!embedded);
    if (embedded)
        return;
    // The store is asked once per dialog, not on every key typed into the server field.
    if (!m_imaLozinku) {
        generate::useSystemCredentialStore();
        m_imaLozinku = generate::passwordStore().read(generate::passwordKey()).has_value();
    }
    txtLozinka->setPlaceholderText(*m_imaLozinku ? QStringLiteral("spremljena; upišite novu samo ako se promijenila")
                                                 : QStringLiteral("lozinka korisnika sa"));
}

generate::IzvorPodataka frmGenPrihRashDB::izvor() const
{
    return { txtImeServera->text().trimmed(), txtBazaPodataka->text().trimmed() };
}

void frmGenPrihRashDB::izaberiDatoteku()
{
    const QFileInfo sada(txtBazaPodataka->text().trimmed());
    const QString put = interaction().chooseOpenFile(
        { QStringLiteral("Baza s dokumentima za generiranje"), sada.absolutePath(), sada.fileName(),
            QStringLiteral("Baza podataka (*.db *.sqlite *.sqlite3);;Sve "
                           "datoteke (*)"),
            {} });
    if (!put.isEmpty())
        txtBazaPodataka->setText(put);
}

void frmGenPrihRashDB::izaberi(bool supplier)
{
    PartnerRegister& registar = supplier ? *hostServices().partners : *hostServices().shops;
    const std::optional<Partner> p = registar.choose();
    if (!p)
        return;
    QLineEdit* polje = supplier ? txtKomit : txtSkladište;
    polje->setText(QString::number(p->SifKomit));
    (supplier ? m_nazivKomit : m_shopName)->setText(p->ImeKomit1);
}

void frmGenPrihRashDB::showName(QLineEdit* polje, QLabel* naziv, bool partner)
{
    bool ok = false;
    const qint32 code = polje->text().trimmed().toInt(&ok);
    std::optional<Partner> p;
    if (ok)
        p = (partner ? *hostServices().partners : *hostServices().shops).find(code);
    naziv->setText(p ? p->ImeKomit1 : QString());
}

generate::Parametri frmGenPrihRashDB::parametri() const
{
    generate::Parametri p;
    p.vrsta = m_vrsta;
    p.od = dpDatum->date();
    p.doDatuma = dpDatum1->date();
    p.brojPoduzeca = session().BrojPoduzeca;
    p.godina = session().RadnaGodina;
    p.orgJed = txtOrgJed->text();
    p.supplier = txtKomit->text();
    p.shop = txtSkladište->text();
    p.prima = txtPrima->text();
    p.operater = generate::imeOperateraSustava();
    return p;
}

std::optional<QString> frmGenPrihRashDB::lozinka()
{
    if (izvor().embedded())
        return QString();
    if (!txtLozinka->text().isEmpty())
        return txtLozinka->text();
    if (std::optional<QString> spremljena = generate::passwordStore().read(generate::passwordKey()))
        return spremljena;
    warn(QStringLiteral("Upišite lozinku korisnika sa za server ") + izvor().server + u'!');
    txtLozinka->setFocus();
    return std::nullopt;
}

void frmGenPrihRashDB::OKButton_Click()
{
    if (!generate::valjanaVrsta(m_vrsta) || !typedDatesHold(this))
        return;
    generate::Parametri p = parametri();
    const generate::Check check = generate::provjeri(p);
    if (!check.refusal.isEmpty()) {
        warn(check.refusal);
        return;
    }
    if (!check.question.isEmpty()
        && interaction().show({ check.question, {}, Icon::Question, Buttons::YesNo, Answer::No }) != Answer::Yes)
        return;
    const generate::OpisVrste& o = generate::opisVrste(m_vrsta);
    const QString app = settings::sharedApplication();
    settings::setText(app, settings::section(), o.kljucServera, izvor().server);
    settings::setText(app, settings::section(), o.kljucBaze, izvor().baza);
    const std::optional<QString> sa = lozinka();
    if (!sa)
        return;
    p.izvor = generate::vezaIzvora(izvor(), *sa);
    const generate::Rezultat r = generate::generiraj(p);
    tell(r.poruka);
    m_zapisano += r.zapisano;
    // A typed password is kept once the server took it.
    if (r.izvorOtvoren && !izvor().embedded() && !txtLozinka->text().isEmpty()) {
        generate::passwordStore().write(generate::passwordKey(), txtLozinka->text());
        txtLozinka->clear();
        m_imaLozinku.reset();
        showSource();
    }
    if (r.zapisano > 0)
        accept();
}

} // namespace knjige::generate
