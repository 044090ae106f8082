#include "browser/widgets/frmSifarnikKnj.h"

#include "books/BookKind.h"
#include "browser/BrowserRules.h"
#include "browser/widgets/BookGrid.h"
#include "journal/Journal.h"
#include "session/HostServices.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "session/Workstation.h"
#include "session/widgets/DialogInteraction.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QToolBar>
#include <QVBoxLayout>

namespace knjige::browser
{

frmSifarnikKnj::frmSifarnikKnj(QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint)
{
    setObjectName(QStringLiteral("frmSifarnikKnj"));
    setLocale(componentLocale());
    setSizeGripEnabled(true);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(4, 0, 4, 4);
    box->setSpacing(3);
    napraviIzbornike();
    napraviAlatnuTraku();
    napraviRaspored();
    menuItem(QStringLiteral("mnuOpisiNaTipkama"))->setChecked(true);
    primijeniPrikaz();

    connect(menuItem(QStringLiteral("mnuNeKoristiNoviGrid")), &QAction::triggered, this, [this](bool checked) {
        settings::setFlag(
            settings::sharedApplication(), settings::section(), browser::keys::neKoristiNoviGrid(), checked);
        primijeniPrikaz();
    });
    connect(menuItem(QStringLiteral("mnuSelektMisem")), &QAction::triggered, this, [this](bool checked) {
        settings::setFlag(
            settings::sharedApplication(), settings::section(), browser::keys::selektiranjeKretanjemMisa(), checked);
        primijeniPrikaz();
    });
    connect(menuItem(QStringLiteral("mnuOpisiNaTipkama")), &QAction::triggered, this, [this](bool checked) {
        settings::setFlag(settings::sharedApplication(), settings::section(), browser::keys::opisiNaTipkama(), checked);
        primijeniPrikaz();
    });
    connect(menuItem(QStringLiteral("mnuPostFiltera")), &QAction::triggered, this, [](bool checked) {
        settings::setFlag(
            settings::sharedApplication(), settings::section(), browser::keys::postaviFilterNaPocetku(), checked);
    });
}

frmSifarnikKnj::~frmSifarnikKnj() = default;

void frmSifarnikKnj::setQuery(const browser::BookQuery& query)
{
    const int kind = m_query.bookKind;
    m_query = query;
    m_query.bookKind = kind;
}

const db::ResultSet& frmSifarnikKnj::rsStavke() const
{
    return m_model->resultSet();
}
BookModel& frmSifarnikKnj::model()
{
    return *m_model;
}

QAction* frmSifarnikKnj::mnu(int index) const
{
    return index >= 1 && index <= 8 ? m_mnu[index] : nullptr;
}

QAction* frmSifarnikKnj::toolbarButton(int number) const
{
    return number >= 1 && number < m_tbButtons.size() ? m_tbButtons[number] : nullptr;
}

QAction* frmSifarnikKnj::menuItem(const QString& objectName) const
{
    return findChild<QAction*>(objectName);
}

void frmSifarnikKnj::setPrijenos(bool on)
{
    m_prijenos = on;
    m_mnu[8]->setEnabled(on);
}

void frmSifarnikKnj::setTipSifarnika(int kod)
{
    m_query = browser::openingQuery(kod, session().BrojPoduzeca, session().RadnaGodina);
    if (const books::BookKind* book = books::findBook(kod))
        setWindowTitle(book->caption);
    m_model->setBookKind(m_query.bookKind);
    citajPostavke();
}

void frmSifarnikKnj::citajPostavke()
{
    const QString app = settings::sharedApplication();
    const QString sec = settings::section();
    m_velNazivaSifri
        = settings::number(postavkeAplikacija(), sec, browser::keys::velNazivaSifri(), browser::kDefaultVelNazivaSifri);
    menuItem(QStringLiteral("mnuPostFiltera"))
        ->setChecked(settings::flag(app, sec, browser::keys::postaviFilterNaPocetku(), false));
    menuItem(QStringLiteral("mnuSelektMisem"))
        ->setChecked(settings::flag(app, sec, browser::keys::selektiranjeKretanjemMisa(), false));
    menuItem(QStringLiteral("mnuOpisiNaTipkama"))
        ->setChecked(settings::flag(app, sec, browser::keys::opisiNaTipkama(), true));
    menuItem(QStringLiteral("mnuNeKoristiNoviGrid"))
        ->setChecked(settings::flag(app, sec, browser::keys::neKoristiNoviGrid(), false));
    primijeniPrikaz();
}

void frmSifarnikKnj::primijeniPrikaz()
{
    KoristiNoviPrikaz = !menuItem(QStringLiteral("mnuNeKoristiNoviGrid"))->isChecked();
    // The new display stripes the rows; the older one is a plain ruled grid.
    m_fg->setAlternatingRowColors(KoristiNoviPrikaz);
    m_fg->setShowGrid(true);
    m_fg->setRowFollowsMouse(menuItem(QStringLiteral("mnuSelektMisem"))->isChecked());
    m_toolbar->setToolButtonStyle(menuItem(QStringLiteral("mnuOpisiNaTipkama"))->isChecked()
            ? Qt::ToolButtonTextUnderIcon
            : Qt::ToolButtonIconOnly);
}

void frmSifarnikKnj::postaviIzbornikeKnjige()
{
    const browser::MenuVisibility v = browser::menuVisibility(m_query.bookKind, session().NivoPristupa);
    menuItem(QStringLiteral("mnuRekapKnjPrihRash"))->setVisible(v.rekapitulacija);
    menuItem(QStringLiteral("mnuIstaStavka"))->setVisible(v.istaStavka);
    menuItem(QStringLiteral("mnuRenumeracija"))->setVisible(v.renumeracija);
    menuItem(QStringLiteral("mnuRenumeracijaPoDat"))->setVisible(v.renumeracijaPoDat);
    menuItem(QStringLiteral("mnuUbaciZapis"))->setVisible(v.ubaciZapis);
    menuItem(QStringLiteral("mnuPocetnoStanje"))->setVisible(v.pocetnoStanje);
    m_mnuGen->menuAction()->setVisible(v.generiranje);
    menuItem(QStringLiteral("mnuUvozIzvozPod"))->setVisible(v.uvozIzvozPod);
    menuItem(QStringLiteral("mnuBrisPrikPod"))->setVisible(v.brisPrikPod);
}

void frmSifarnikKnj::Prikaži(int mode, const QVariant& extra)
{
    Q_UNUSED(extra);
    m_prikazan = false;
    postaviIzbornikeKnjige();
    const Session& s = session();
    m_query = browser::openingQuery(m_query.bookKind, s.BrojPoduzeca, s.RadnaGodina);

    if (const QString problem = browser::accessLevelProblem(s.NivoPristupa); !problem.isEmpty()) {
        warn(problem);
        return;
    }
    if (!ProvjeraPristupa()) {
        inform(QStringLiteral("Nemate pravo pristupa !"));
        return;
    }
    // The company's name and configuration row head every printed report.
    tell(DefVarijabli::CitajKonfiguraciju(true));
    // A book the journal has not met yet is fingerprinted as it stands; the check
    // reports (rather than this window) a journal that cannot be written.
    QString ignored;
    journal::ensureBaseline(session().db(), { m_query.bookKind, m_query.company, m_query.year, 0 }, &ignored);
    vratiPoziciju();
    if (menuItem(QStringLiteral("mnuPostFiltera"))->isChecked() || books::isTradeBook(m_query.bookKind))
        PostaviFilter();
    else
        OsvjeziZapise();
    m_nacinPrikaza = mode;
    primijeniNivoPristupa();
    m_prikazan = true;
    setBookWindow(this);
    if (mode == 1)
        interaction().exec(*this);
    else
        show();
}

bool frmSifarnikKnj::ProvjeraPristupa()
{
    const Session& s = session();
    if (browser::levelSkipsRightsService(s.NivoPristupa)) {
        menuItem(QStringLiteral("mnuUvozIzvozPod"))->setEnabled(false);
        return true;
    }
    OperatorRights& rights = *hostServices().rights;
    rights.setConnectionString(s.ConnString);
    rights.setOperatorName(s.ImeOperatera);
    if (!rights.mayOpenBook(m_query.bookKind))
        return false;
    for (int group = OperatorRights::Novi; group <= OperatorRights::Izvoz; ++group)
        if (!rights.hasRight(m_query.bookKind, OperatorRights::Group(group)))
            disableGroup(group);
    return true;
}

// The five optional groups a denied right withholds: new, change, delete, print and
// export. Each takes its command, the toolbar button that forwards to it, and the
// menu entries of the same nature.
void frmSifarnikKnj::disableGroup(int group)
{
    auto off = [this](const char* name) { menuItem(QString::fromLatin1(name))->setEnabled(false); };
    switch (group) {
    case OperatorRights::Novi:
        m_mnu[1]->setEnabled(false);
        off("mnuIstaStavka");
        off("mnuUbaciZapis");
        break;
    case OperatorRights::Izmjena:
        m_mnu[2]->setEnabled(false);
        off("mnuRenumeracija");
        off("mnuRenumeracijaPoDat");
        off("mnuPocetnoStanje");
        m_mnuGen->menuAction()->setEnabled(false);
        break;
    case OperatorRights::Brisanje:
        m_mnu[3]->setEnabled(false);
        off("mnuBrisPrikPod");
        break;
    case OperatorRights::Ispis:
        m_mnu[6]->setEnabled(false);
        off("mnuRekapKnjPrihRash");
        break;
    case OperatorRights::Izvoz:
        off("mnuPrebaciUExcel");
        m_cmdFG->setEnabled(false);
        menuItem(QStringLiteral("mnuUvozIzvozPod"))->setVisible(false);
        break;
    default:
        break;
    }
}

void frmSifarnikKnj::primijeniNivoPristupa()
{
    const browser::LevelRestrictions r = browser::levelRestrictions(session().NivoPristupa);
    if (r.ubaciZapis)
        menuItem(QStringLiteral("mnuUbaciZapis"))->setEnabled(false);
    if (r.istaStavka)
        menuItem(QStringLiteral("mnuIstaStavka"))->setEnabled(false);
    if (r.rekapitulacija)
        menuItem(QStringLiteral("mnuRekapKnjPrihRash"))->setEnabled(false);
}

// Positions are kept in twips, converted at the screen's logical resolution.
void frmSifarnikKnj::vratiPoziciju()
{
    const QString app = postavkeAplikacija();
    const QString sec = settings::section();
    const int dpiX = logicalDpiX();
    const int dpiY = logicalDpiY();
    const int left = settings::number(app, sec, browser::keys::mainLeft(), browser::kDefaultLeft);
    const int top = settings::number(app, sec, browser::keys::mainTop(), browser::kDefaultTop);
    const int width = settings::number(app, sec, browser::keys::mainWidth(), browser::kDefaultWidth);
    const int height = settings::number(app, sec, browser::keys::mainHeight(), browser::kDefaultHeight);
    QRect window(browser::twipsToPixels(left, dpiX), browser::twipsToPixels(top, dpiY),
        browser::twipsToPixels(width, dpiX), browser::twipsToPixels(height, dpiY));
    const QScreen* monitor = QGuiApplication::screenAt(window.center());
    if (!monitor)
        monitor = screen();
    window.setSize(window.size().expandedTo(minimumSizeHint()));
    if (monitor)
        window = browser::onScreen(window, monitor->availableGeometry());
    move(window.topLeft());
    resize(window.size());
}

void frmSifarnikKnj::spremiPoziciju()
{
    if (isMinimized() || isMaximized() || windowTitle().isEmpty())
        return;
    const QString app = postavkeAplikacija();
    const QString sec = settings::section();
    const int dpiX = logicalDpiX();
    const int dpiY = logicalDpiY();
    settings::setNumber(app, sec, browser::keys::mainLeft(), browser::pixelsToTwips(x(), dpiX));
    settings::setNumber(app, sec, browser::keys::mainTop(), browser::pixelsToTwips(y(), dpiY));
    settings::setNumber(app, sec, browser::keys::mainWidth(), browser::pixelsToTwips(width(), dpiX));
    settings::setNumber(app, sec, browser::keys::mainHeight(), browser::pixelsToTwips(height(), dpiY));
}

// Esc closes the book whatever had the keys before: a menu opened with the mouse and
// closed with Esc leaves the menu bar holding them, and the bar would take the next Esc
// for itself.
bool frmSifarnikKnj::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && watched == layout()->menuBar()
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        mnu_Click(7);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmSifarnikKnj::changeEvent(QEvent* event)
{
    // The book last used owns the messages that come while no window is active.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        setBookWindow(this);
    QDialog::changeEvent(event);
}

void frmSifarnikKnj::done(int result)
{
    if (m_prikazan && isVisible())
        spremiPoziciju();
    QDialog::done(result);
}

} // namespace knjige::browser
