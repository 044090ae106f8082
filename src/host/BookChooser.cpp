#include "host/BookChooser.h"

#include "books/BookKind.h"
#include "entry/BookClasses.h"
#include "session/Interaction.h"
#include "session/SettingsStore.h"
#include "session/db/ConnectionString.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QSpinBox>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace knjige::host
{
namespace
{

const char* const kCompanyKey = "IzborKnjigeFirma";
const char* const kOperatorKey = "IzborKnjigeOperater";
const char* const kLevelKey = "IzborKnjigeNivo";
const char* const kLastBookKey = "IzborKnjigeZadnja";

QString storedText(const char* key)
{
    return settings::text(settings::sharedApplication(), settings::section(), QString::fromLatin1(key));
}
void store(const char* key, const QString& value)
{
    settings::setText(settings::sharedApplication(), settings::section(), QString::fromLatin1(key), value);
}

struct Group {
    const char* title;
    QVector<int> codes;
};

// The books as an accountant looks for them: by entity, the trade books apart.
const QVector<Group>& groups()
{
    static const QVector<Group> list = {
        { "Federacija BiH",
            { Knjiga::PrihRashFBiH, Knjiga::EvidPotObvFBiH, Knjiga::PrometaFBiH, Knjiga::PopListaFBiH } },
        { "Republika Srpska",
            { Knjiga::PrihodaRS, Knjiga::RashodaRS, Knjiga::EvidPotObvRS, Knjiga::PrometaRS, Knjiga::PopListaRS } },
        { "Brčko distrikt", { Knjiga::PrihRashDB } },
        { "Trgovačke knjige", { Knjiga::TrgUsluga, Knjiga::TrgKomisiona } },
    };
    return list;
}

// Where the books are kept, for the status line; a password never shows.
QString describeConnection(const QString& connString)
{
    const db::ConnectionTarget target = db::parseConnectionString(connString);
    if (target.kind == db::ConnectionTarget::Kind::Sqlite)
        return QStringLiteral("Baza: ") + QDir::toNativeSeparators(target.sqlitePath);
    QString shown = connString;
    shown.replace(
        QRegularExpression(QStringLiteral("((?:Password|PWD)\\s*=)[^;]*"), QRegularExpression::CaseInsensitiveOption),
        QStringLiteral("\\1*****"));
    return QStringLiteral("Veza: ") + shown;
}

} // namespace

QString companyName(db::Database& db, qint16 company)
{
    db::ResultSet rs;
    if (!db.open(QStringLiteral("SELECT NazivFirme FROM dbo.CONFIG WHERE BROJPODUZECA=") + QString::number(company), rs)
        || rs.isEmpty())
        return {};
    return rs.text(0, 0).trimmed();
}

QWidget* openBook(int bookCode, const BookRequest& request)
{
    const books::BookKind* kind = books::findBook(bookCode);
    if (!kind)
        return nullptr;
    std::unique_ptr<entry::KnjigaKlasa> book = entry::createBookObject(books::programmaticId(kind->className));
    if (!book)
        return nullptr;
    const QWidgetList before = QApplication::topLevelWidgets();
    book->setConnString(request.connString);
    book->setRadnaGodina(request.year);
    book->setBrojPoduzeca(request.company);
    book->setPozvan(false);
    book->Show(request.level, request.operatorName);
    QWidget* found = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (before.contains(w) || !w->isVisible())
            continue;
        if (!found || w->objectName() == QLatin1String("frmSifarnikKnj"))
            found = w;
    }
    return found;
}

BookChooser::BookChooser(const BookRequest& defaults, QWidget* parent)
    : QWidget(parent)
    , m_connString(defaults.connString)
    , m_title(new QLabel(this))
    , m_database(new QLabel(this))
    , m_books(new QTreeWidget(this))
    , m_details(new QLabel(this))
    , m_company(new QSpinBox(this))
    , m_companyName(new QLabel(this))
    , m_year(new QSpinBox(this))
    , m_operator(new QLineEdit(this))
    , m_level(new QComboBox(this))
{
    setObjectName(QStringLiteral("frmIzborKnjige"));
    setWindowTitle(QStringLiteral("Poslovne knjige - izbor knjige"));
    m_db.connect(m_connString);

    m_title->setObjectName(QStringLiteral("lblFirma"));
    QFont big = m_title->font();
    big.setPointSizeF(big.pointSizeF() * 1.5);
    big.setBold(true);
    m_title->setFont(big);
    auto* subtitle = new QLabel(QStringLiteral("Poslovne knjige za FBiH, RS i Brčko distrikt"), this);
    auto* header = new QFrame(this);
    header->setObjectName(QStringLiteral("fraZaglavlje"));
    header->setAutoFillBackground(true);
    header->setStyleSheet(
        QStringLiteral("#fraZaglavlje { background: #2b4c6f; } #fraZaglavlje QLabel { color: white; }"));
    auto* headerLayout = new QVBoxLayout(header);
    headerLayout->setContentsMargins(16, 10, 16, 10);
    headerLayout->addWidget(m_title);
    headerLayout->addWidget(subtitle);

    buildList();
    m_details->setObjectName(QStringLiteral("lblOpisKnjige"));
    m_details->setWordWrap(true);
    auto* booksBox = new QGroupBox(QStringLiteral("Knjige"), this);
    auto* booksLayout = new QVBoxLayout(booksBox);
    booksLayout->addWidget(m_books, 1);
    booksLayout->addWidget(m_details);

    auto* open = new QPushButton(style()->standardIcon(QStyle::SP_DialogOpenButton), QStringLiteral("Otvori"), this);
    open->setObjectName(QStringLiteral("cmdOtvori"));
    open->setDefault(true);
    auto* quit = new QPushButton(style()->standardIcon(QStyle::SP_DialogCloseButton), QStringLiteral("Izlaz"), this);
    quit->setObjectName(QStringLiteral("cmdIzlaz"));

    auto* hint = new QLabel(QStringLiteral("Knjigu otvara dvostruki klik, tipka Enter ili gumb \"Otvori\". "
                                           "Otvorena knjiga radi s firmom, godinom i operaterom upisanim ovdje."),
        this);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(open);
    buttons->addWidget(quit);

    auto* side = new QVBoxLayout;
    side->addWidget(buildSessionBox());
    side->addWidget(hint);
    side->addStretch(1);
    side->addLayout(buttons);

    auto* body = new QHBoxLayout;
    body->setContentsMargins(12, 12, 12, 4);
    body->addWidget(booksBox, 3);
    body->addLayout(side, 2);

    m_database->setObjectName(QStringLiteral("lblBaza"));
    m_database->setText(describeConnection(m_connString));
    m_database->setForegroundRole(QPalette::PlaceholderText);
    m_database->setContentsMargins(14, 0, 14, 8);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(header);
    layout->addLayout(body, 1);
    layout->addWidget(m_database);

    m_company->setValue(defaults.company);
    m_year->setValue(defaults.year);
    m_operator->setText(defaults.operatorName);
    const int level = m_level->findData(defaults.level);
    if (level >= 0)
        m_level->setCurrentIndex(level);
    else
        m_level->setEditText(defaults.level);
    showCompanyName();
    if (!selectBook(storedText(kLastBookKey).toInt()))
        selectBook(Knjiga::PrihRashFBiH);

    connect(m_company, &QSpinBox::valueChanged, this, [this] { showCompanyName(); });
    connect(m_books, &QTreeWidget::currentItemChanged, this, [this] { showBookDetails(); });
    connect(m_books, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        if (item && item->data(0, Qt::UserRole).toInt())
            Otvori();
    });
    connect(open, &QPushButton::clicked, this, [this] { Otvori(); });
    connect(quit, &QPushButton::clicked, this, &QWidget::close);
    resize(800, 470);
}

void BookChooser::buildList()
{
    m_books->setObjectName(QStringLiteral("tvKnjige"));
    m_books->setHeaderLabels({ QStringLiteral("Knjiga"), QStringLiteral("Šifra") });
    m_books->setColumnCount(2);
    m_books->setAlternatingRowColors(true);
    m_books->setUniformRowHeights(true);
    m_books->header()->setStretchLastSection(false);
    m_books->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_books->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    for (const Group& g : groups()) {
        auto* heading = new QTreeWidgetItem(m_books, { QString::fromUtf8(g.title) });
        QFont bold = heading->font(0);
        bold.setBold(true);
        heading->setFont(0, bold);
        heading->setFlags(Qt::ItemIsEnabled);
        for (int code : g.codes) {
            const books::BookKind* kind = books::findBook(code);
            auto* item = new QTreeWidgetItem(heading, { kind->caption, QString::number(code) });
            item->setData(0, Qt::UserRole, code);
            item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    m_books->expandAll();
}

QWidget* BookChooser::buildSessionBox()
{
    auto* box = new QGroupBox(QStringLiteral("Rad u knjizi"), this);
    m_company->setObjectName(QStringLiteral("txtFirma"));
    m_company->setRange(1, 32767);
    m_companyName->setObjectName(QStringLiteral("lblNazivFirme"));
    m_companyName->setWordWrap(true);
    m_year->setObjectName(QStringLiteral("txtGodina"));
    m_year->setRange(1990, 2100);
    m_operator->setObjectName(QStringLiteral("txtOperater"));
    m_operator->setMaxLength(30);
    m_level->setObjectName(QStringLiteral("cmbNivo"));
    m_level->addItem(QStringLiteral("0 - bez ograničenja"), QStringLiteral("0"));
    m_level->addItem(QStringLiteral("1 - bez umetanja i kopiranja"), QStringLiteral("1"));
    m_level->addItem(QStringLiteral("2 - i bez rekapitulacije"), QStringLiteral("2"));
    m_level->addItem(QStringLiteral("3 - kao 2, bez provjere prava"), QStringLiteral("3"));

    auto* form = new QFormLayout(box);
    form->addRow(QStringLiteral("Firma:"), m_company);
    form->addRow(QString(), m_companyName);
    form->addRow(QStringLiteral("Radna godina:"), m_year);
    form->addRow(QStringLiteral("Operater:"), m_operator);
    form->addRow(QStringLiteral("Nivo pristupa:"), m_level);
    return box;
}

void BookChooser::showCompanyName()
{
    const QString name = companyName(m_db, qint16(m_company->value()));
    m_companyName->setText(name.isEmpty() ? QStringLiteral("(nema podataka o firmi)") : name);
    m_title->setText(name.isEmpty() ? QStringLiteral("Firma %1").arg(m_company->value()) : name);
}

void BookChooser::showBookDetails()
{
    const books::BookKind* kind = books::findBook(selectedBook());
    m_details->setText(kind ? QStringLiteral("%1  ·  tablica %2").arg(kind->className, kind->table)
                            : QStringLiteral("Izaberite knjigu."));
}

QStringList BookChooser::captions() const
{
    QStringList out;
    for (int g = 0; g < m_books->topLevelItemCount(); ++g) {
        const QTreeWidgetItem* heading = m_books->topLevelItem(g);
        for (int i = 0; i < heading->childCount(); ++i)
            out << heading->child(i)->text(0);
    }
    return out;
}

bool BookChooser::selectBook(int code)
{
    for (int g = 0; g < m_books->topLevelItemCount(); ++g) {
        QTreeWidgetItem* heading = m_books->topLevelItem(g);
        for (int i = 0; i < heading->childCount(); ++i) {
            if (heading->child(i)->data(0, Qt::UserRole).toInt() == code) {
                m_books->setCurrentItem(heading->child(i));
                showBookDetails();
                return true;
            }
        }
    }
    return false;
}

int BookChooser::selectedBook() const
{
    const QTreeWidgetItem* item = m_books->currentItem();
    return item ? item->data(0, Qt::UserRole).toInt() : 0;
}

BookRequest BookChooser::request() const
{
    BookRequest r;
    r.connString = m_connString;
    r.company = qint16(m_company->value());
    r.year = qint16(m_year->value());
    r.operatorName = m_operator->text().trimmed();
    const QString level = m_level->currentData().toString();
    r.level = level.isEmpty() ? m_level->currentText().left(1) : level;
    return r;
}

QWidget* BookChooser::Otvori()
{
    const int code = selectedBook();
    if (!code) {
        inform(QStringLiteral("Izaberite knjigu s popisa."), windowTitle(), Icon::Information);
        return nullptr;
    }
    remember();
    return openBook(code, request());
}

void BookChooser::remember() const
{
    const BookRequest r = request();
    store(kCompanyKey, QString::number(r.company));
    store(kOperatorKey, r.operatorName);
    store(kLevelKey, r.level);
    store(kLastBookKey, QString::number(selectedBook()));
}

BookRequest BookChooser::remembered(BookRequest defaults, const QStringList& given)
{
    const QString company = storedText(kCompanyKey);
    if (!given.contains(QStringLiteral("company")) && company.toInt() > 0)
        defaults.company = qint16(company.toInt());
    const QString op = storedText(kOperatorKey);
    if (!given.contains(QStringLiteral("operator")) && !op.isEmpty())
        defaults.operatorName = op;
    const QString level = storedText(kLevelKey);
    if (!given.contains(QStringLiteral("level")) && !level.isEmpty())
        defaults.level = level;
    return defaults;
}

} // namespace knjige::host
