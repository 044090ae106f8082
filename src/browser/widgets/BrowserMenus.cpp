// The browser's menus, toolbar and layout.
#include "browser/widgets/BookGrid.h"
#include "browser/widgets/frmSifarnikKnj.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace knjige::browser
{
namespace
{

QAction* addItem(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* a = menu->addAction(caption);
    a->setObjectName(name);
    return a;
}

QAction* addOption(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* a = addItem(menu, name, caption);
    a->setCheckable(true);
    return a;
}

// The generation kinds of the DB book, in the order of their index.
const QStringList& generationCaptions()
{
    static const QStringList captions = {
        QStringLiteral("Generiranje prihoda iz DGP izlaznih računa"),
        QStringLiteral("Generiranje prihoda iz uplata izlaznih računa"),
        QStringLiteral("Generiranje rashoda iz ulaznih računa za dobavljača"),
        QStringLiteral("Generiranje rashoda iz uplata ulaznih računa uz isključenje dobavljača"),
        QStringLiteral("Generiranje rashoda iz internih otpremnica MAT-velepr."),
        QStringLiteral("Generiranje rashoda iz internih otpremnica POS-malopr."),
        QStringLiteral("Generiranje rashoda u minus iz internih otpremnica POS-malopr.-povrat"),
    };
    return captions;
}

} // namespace

void frmSifarnikKnj::napraviIzbornike()
{
    auto* bar = new QMenuBar(this);
    bar->setObjectName(QStringLiteral("menuBar"));
    layout()->setMenuBar(bar);
    bar->installEventFilter(this);

    QMenu* naredbe = bar->addMenu(QStringLiteral("&Naredbe"));
    naredbe->setObjectName(QStringLiteral("mnuNaredbe"));
    const QStringList captions = {
        QStringLiteral("&Novi (F9)"),
        QStringLiteral("&Izmjena(Ret)"),
        QStringLiteral("Obriši(&Del)"),
        QStringLiteral("&Filter(F3)"),
        QStringLiteral("&Osvježi"),
        QStringLiteral("Is&pis"),
        QStringLiteral("I&zlaz(Esc)"),
        QStringLiteral("P&rijenos(F10)"),
    };
    m_mnu.fill(nullptr, 9);
    for (int i = 1; i <= 8; ++i) {
        if (i == 6 || i == 7)
            naredbe->addSeparator();
        m_mnu[i] = addItem(naredbe, QStringLiteral("mnu_%1").arg(i), captions[i - 1]);
        connect(m_mnu[i], &QAction::triggered, this, [this, i] { mnu_Click(i); });
    }
    m_mnu[8]->setEnabled(false);

    QMenu* alati = bar->addMenu(QStringLiteral("&Alati"));
    alati->setObjectName(QStringLiteral("mnuAlati"));
    connect(addItem(alati, QStringLiteral("mnuIstaStavka"), QStringLiteral("Ista stavka (F4)")), &QAction::triggered,
        this, [this] {
            // A copy needs an entry to copy; a totals row is none.
            if (trenutniRed() >= 0)
                IstaStavka();
        });
    connect(addItem(alati, QStringLiteral("mnuUbaciZapis"), QStringLiteral("Ubaci zapis na označeno mjesto")),
        &QAction::triggered, this, [this] { UbaciZapis(); });
    alati->addSeparator();
    connect(addItem(alati, QStringLiteral("mnuRenumeracija"), QStringLiteral("Renumeracija")), &QAction::triggered,
        this, [this] { ProvjeraNumeracije(); });
    connect(addItem(alati, QStringLiteral("mnuRenumeracijaPoDat"), QStringLiteral("Renumeracija po datumu")),
        &QAction::triggered, this, [this] { ReNumeracijaPoDatumu(); });
    connect(addItem(alati, QStringLiteral("mnuPocetnoStanje"), QStringLiteral("Početno stanje iz prethodne godine")),
        &QAction::triggered, this, [this] { generateOpeningState(); });
    connect(addItem(alati, QStringLiteral("mnuRekapKnjPrihRash"), QStringLiteral("Rekapitulacija")),
        &QAction::triggered, this, [this] { Rekapitulacija(); });
    m_mnuGen = alati->addMenu(QStringLiteral("&Generiranje"));
    m_mnuGen->setObjectName(QStringLiteral("mnuGen"));
    m_mnuGen->menuAction()->setObjectName(QStringLiteral("mnuGen"));
    for (int i = 0; i < generationCaptions().size(); ++i)
        connect(addItem(m_mnuGen, QStringLiteral("mnuGenDGP_%1").arg(i), generationCaptions()[i]), &QAction::triggered,
            this, [this, i] { Generiranje(i); });
    alati->addSeparator();
    connect(addItem(alati, QStringLiteral("mnuBrisPrikPod"), QStringLiteral("Brisanje prikazanih podataka")),
        &QAction::triggered, this, [this] { BrisanjePrikazanihPodataka(); });
    alati->addSeparator();
    connect(addItem(alati, QStringLiteral("mnuProvjeraKnjige"), QStringLiteral("Provjera knjige")), &QAction::triggered,
        this, [this] { ProvjeraKnjige(); });
    connect(addItem(alati, QStringLiteral("mnuZakljucajRazdoblje"), QStringLiteral("Zaključaj razdoblje")),
        &QAction::triggered, this, [this] { lockPeriod(); });

    QMenu* uvozIzvoz = bar->addMenu(QStringLiteral("&Uvoz/Izvoz"));
    uvozIzvoz->setObjectName(QStringLiteral("mnuUvozIzvoz"));
    connect(addItem(uvozIzvoz, QStringLiteral("mnuPrebaciUExcel"), QStringLiteral("Prebaci u Excel")),
        &QAction::triggered, this, [this] { PrebaciUExcel(); });
    connect(addItem(uvozIzvoz, QStringLiteral("mnuUvozIzvozPod"), QStringLiteral("Uvoz/izvoz podataka")),
        &QAction::triggered, this, [this] { notYetAvailable(QStringLiteral("Uvoz/izvoz podataka")); });

    QMenu* postavke = bar->addMenu(QStringLiteral("&Postavke"));
    postavke->setObjectName(QStringLiteral("mnuPostavke"));
    addOption(postavke, QStringLiteral("mnuNeKoristiNoviGrid"), QStringLiteral("Ne koristiti novi prikaz podataka"));
    addOption(postavke, QStringLiteral("mnuSelektMisem"), QStringLiteral("Selektiranje kretanjem miša"));
    addOption(postavke, QStringLiteral("mnuOpisiNaTipkama"), QStringLiteral("&Opisi na tipkama trake sa alatkama"));
    addOption(postavke, QStringLiteral("mnuPostFiltera"), QStringLiteral("Postavljanje filtera na početku"));
}

void frmSifarnikKnj::napraviAlatnuTraku()
{
    m_toolbar = new QToolBar(this);
    m_toolbar->setObjectName(QStringLiteral("Toolbar1"));
    m_toolbar->setIconSize(QSize(20, 20));
    QStyle* st = style();
    struct Button {
        QString key; // the button's key text, by which hosts and the menu know it
        QStyle::StandardPixmap icon;
        int command; // 0: a separator
    };
    // Ten buttons; the tenth ("Prenesi") stays hidden unless the host calls the book
    // as its sub-window.
    const QVector<Button> buttons = {
        { QStringLiteral("Novi"), QStyle::SP_FileIcon, 1 },
        { QStringLiteral("Izmjena"), QStyle::SP_FileDialogDetailedView, 2 },
        { QStringLiteral("Obriši"), QStyle::SP_TrashIcon, 3 },
        { QStringLiteral("Filter"), QStyle::SP_FileDialogContentsView, 4 },
        { QStringLiteral("Osvježi"), QStyle::SP_BrowserReload, 5 },
        { QStringLiteral("Print"), QStyle::SP_DriveFDIcon, 6 },
        { {}, {}, 0 },
        { QStringLiteral("Izlaz"), QStyle::SP_DialogCloseButton, 7 },
        { {}, {}, 0 },
        { QStringLiteral("Prenesi"), QStyle::SP_ArrowForward, 8 },
    };
    m_tbButtons.fill(nullptr, 11);
    for (int n = 1; n <= buttons.size(); ++n) {
        const Button& b = buttons[n - 1];
        if (b.command == 0) {
            m_tbButtons[n] = m_toolbar->addSeparator();
            continue;
        }
        // The print button's key is "Print"; the operator reads the menu's word.
        const QString caption = b.command == 6 ? QStringLiteral("Ispis") : b.key;
        QAction* a = m_toolbar->addAction(st->standardIcon(b.icon), caption);
        a->setObjectName(QStringLiteral("tb") + b.key);
        a->setData(b.key);
        QAction* command = m_mnu[b.command];
        a->setEnabled(command->isEnabled());
        connect(command, &QAction::changed, a, [a, command] { a->setEnabled(command->isEnabled()); });
        connect(a, &QAction::triggered, this, [this, c = b.command] { mnu_Click(c); });
        m_tbButtons[n] = a;
    }
    m_tbButtons[10]->setVisible(false);
    layout()->addWidget(m_toolbar);
}

void frmSifarnikKnj::napraviRaspored()
{
    m_fg = new BookGrid(this);
    m_model = new BookGridModel(this);
    m_fg->setModel(m_model);
    layout()->addWidget(m_fg);

    auto* bottom = new QHBoxLayout;
    m_txtFilter = new QLineEdit(this);
    m_txtFilter->setObjectName(QStringLiteral("txtFilter"));
    m_txtFilter->setReadOnly(true);
    m_txtFilter->setFocusPolicy(Qt::NoFocus);
    m_txtFilter->setText(browser::filterLine(m_query.filter.description));
    m_cmdFG = new QPushButton(QStringLiteral("Tablica u Excel"), this);
    m_cmdFG->setObjectName(QStringLiteral("cmdFG"));
    m_cmdFG->setAutoDefault(false);
    m_cmdFG->setFocusPolicy(Qt::NoFocus);
    connect(m_cmdFG, &QPushButton::clicked, this, [this] { SpremiGrid(); });
    bottom->addWidget(m_txtFilter, 1);
    bottom->addWidget(m_cmdFG);
    static_cast<QVBoxLayout*>(layout())->addLayout(bottom);

    m_lvStanje = new QTreeWidget(this);
    m_lvStanje->setObjectName(QStringLiteral("lvStanje"));
    m_lvStanje->setRootIsDecorated(false);
    m_lvStanje->setMaximumHeight(m_fg->verticalHeader()->defaultSectionSize() * 5);
    layout()->addWidget(m_lvStanje);

    m_fg->onKey = [this](int key) { return fg_KeyDown(key); };
    connect(m_fg->horizontalHeader(), &QHeaderView::sectionClicked, this,
        [this](int section) { fg_HeaderClick(section + 1); });
}

} // namespace knjige::browser
