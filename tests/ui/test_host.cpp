// The host program: its book chooser, its services (operator rights from dbo.PRAVA,
// the partner and shop pickers over dbo.Komitent), its window commands run in process,
// the command-line tool's output forms, and the public book classes a host creates
// (identifiers, properties with write-through, and Show).
#include "books/BookKind.h"
#include "core/ResultText.h"
#include "demo/DemoData.h"
#include "entry/BookClasses.h"
#include "host/BookChooser.h"
#include "host/Cli.h"
#include "host/Csv.h"
#include "host/HostRights.h"
#include "host/HostWindows.h"
#include "host/PartnerPicker.h"
#include "session/HostServices.h"
#include "session/Session.h"
#include "session/db/ResultSet.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"
#include "test_browser_fixture.h"
#include "test_helpers.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDate>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QSpinBox>
#include <QTest>
#include <QTextStream>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

using namespace knjige;
using namespace knjige::host;
using namespace knjige::test;

namespace
{

browser::frmSifarnikKnj* openBrowser()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* b = qobject_cast<browser::frmSifarnikKnj*>(w); b && b->isVisible())
            return b;
    return nullptr;
}

void closeAll()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible())
            w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class HostChooser : public ::testing::Test
{
protected:
    void SetUp() override
    {
        test::clearSettings();
        m_db = std::make_unique<test::TestDatabase>(demo::BrojPoduzeca, qint16(m_year));
        ASSERT_TRUE(test::fillDemo(m_db->db(), m_year));
        m_db->exec(host::PravaRights::createSql()); // a host's database has its rights table
        m_conn = session().ConnString;
        // The chooser is the host: the component's session starts empty.
        session().reset();
        installProgramServices();
    }
    void TearDown() override
    {
        closeAll();
        installHostServices({});
        m_db.reset();
    }

    BookRequest defaults() const
    {
        BookRequest r;
        r.connString = m_conn;
        r.company = demo::BrojPoduzeca;
        r.year = qint16(m_year);
        r.operatorName = "Amra";
        return r;
    }

    template <typename T> static T* child(QWidget& w, const char* name)
    {
        T* found = w.findChild<T*>(QString::fromLatin1(name));
        EXPECT_TRUE(found) << name;
        return found;
    }

    const int m_year = QDate::currentDate().year();
    std::unique_ptr<test::TestDatabase> m_db;
    QString m_conn;
    test::ScopedScript m_script;
};

class HostRights : public ::testing::Test
{
protected:
    // Rows "operator|program|right".
    void grant(const QStringList& rows)
    {
        for (const QString& row : rows) {
            const QStringList v = row.split(u'|');
            m_db.insert("dbo.PRAVA", { { "OPERATER", v[0] }, { "PROGRAM", v[1] }, { "PRAVO", v[2] } });
        }
    }
    PravaRights rightsOf(const QString& op)
    {
        PravaRights r;
        r.setConnectionString(session().ConnString);
        r.setOperatorName(op);
        return r;
    }

    test::TestDatabase m_db;
    test::ScopedScript m_script;
};

class HostPickers : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(test::fillDemo(m_db.db(), 2024)); }
    static QStringList names(const QVector<Partner>& list)
    {
        QStringList out;
        for (const Partner& p : list)
            out << p.ImeKomit1;
        return out;
    }

    test::TestDatabase m_db { demo::BrojPoduzeca, 2024 };
    test::ScopedScript m_script;
};

} // namespace

// The host program's book chooser: what it lists, and that opening a book from it
// does what a host does (session values, the book's browser).
TEST_F(HostChooser, ListsTheTwelveBooksUnderTheirEntitiesShowsTheCompanyAndOpensOnlyWhatMayBeOpened)
{
    BookChooser chooser(defaults());
    QStringList expected;
    for (const books::BookKind& b : books::allBooks())
        expected << b.caption;
    QStringList shown = chooser.captions();
    shown.sort();
    expected.sort();
    EXPECT_EQ(shown, expected);

    auto* tree = child<QTreeWidget>(chooser, "tvKnjige");
    ASSERT_EQ(tree->topLevelItemCount(), 4);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "Federacija BiH");
    EXPECT_EQ(tree->topLevelItem(2)->child(0)->text(0), "Knjiga prihoda i rashoda za DB");
    EXPECT_FALSE(chooser.selectBook(103));
    EXPECT_TRUE(chooser.selectBook(Knjiga::TrgKomisiona));
    EXPECT_EQ(chooser.selectedBook(), 126);

    auto* name = child<QLabel>(chooser, "lblNazivFirme");
    EXPECT_EQ(name->text(), demo::nazivFirme());
    child<QSpinBox>(chooser, "txtFirma")->setValue(7);
    EXPECT_EQ(name->text(), "(nema podataka o firmi)");

    // Nothing selected, or a book the operator may not open, stays closed; the rights
    // kept in dbo.PRAVA reach the browser through the installed service.
    tree->setCurrentItem(tree->topLevelItem(1));
    EXPECT_EQ(chooser.selectedBook(), 0);
    EXPECT_EQ(chooser.Otvori(), nullptr);
    EXPECT_EQ(m_script->texts(), QStringList { "Izaberite knjigu s popisa." });
    EXPECT_EQ(openBook(104, chooser.request()), nullptr);

    m_script->clear();
    session().ConnString = m_conn;
    m_db->insert("dbo.PRAVA", { { "OPERATER", "Amra" }, { "PROGRAM", "KNJIGE" }, { "PRAVO", "98" } });
    session().reset();
    chooser.selectBook(Knjiga::PrihRashFBiH);
    EXPECT_EQ(chooser.Otvori(), nullptr);
    EXPECT_EQ(m_script->texts(), QStringList { "Nemate pravo pristupa !" });
    chooser.selectBook(Knjiga::PrometaFBiH);
    EXPECT_NE(chooser.Otvori(), nullptr);
}

TEST_F(HostChooser, OpeningABookSetsTheSessionShowsItsBrowserAndIsRememberedForTheNextStart)
{
    {
        BookChooser chooser(defaults());
        chooser.show();
        ASSERT_TRUE(chooser.selectBook(Knjiga::PrometaFBiH));
        child<QSpinBox>(chooser, "txtGodina")->setValue(m_year - 1);
        child<QLineEdit>(chooser, "txtOperater")->setText("  Edin ");
        child<QComboBox>(chooser, "cmbNivo")->setCurrentIndex(1);

        QTest::mouseClick(child<QPushButton>(chooser, "cmdOtvori"), Qt::LeftButton);

        EXPECT_EQ(session().ConnString, m_conn);
        EXPECT_EQ(session().RadnaGodina, m_year - 1);
        EXPECT_EQ(session().BrojPoduzeca, demo::BrojPoduzeca);
        EXPECT_EQ(session().ImeOperatera, "Edin");
        EXPECT_EQ(session().NivoPristupa, "1");
        const browser::frmSifarnikKnj* browser = openBrowser();
        ASSERT_TRUE(browser);
        EXPECT_EQ(browser->windowTitle(), "Knjiga prometa za FBiH");
        EXPECT_TRUE(m_script->texts().isEmpty()) << m_script->texts().join(u'\n').toStdString();
    }
    closeAll();
    const BookRequest again = BookChooser::remembered(defaults(), {});
    EXPECT_EQ(again.operatorName, "Edin");
    EXPECT_EQ(again.level, "1");
    BookChooser next(again);
    EXPECT_EQ(next.selectedBook(), 98);
    // What the command line gives wins over what was remembered.
    EXPECT_EQ(BookChooser::remembered(defaults(), { "operator" }).operatorName, "Amra");
}

// The host's services: operator rights from dbo.PRAVA and the partner and shop
// pickers over dbo.Komitent.

TEST_F(HostRights, RightsThatCannotBeReadLetNobodyInAndRowsAllowOnlyWhatTheyName)
{
    PravaRights missing = rightsOf("Amra"); // no dbo.PRAVA
    PravaRights unreachable = rightsOf("Amra");
    unreachable.setConnectionString(m_db.path() + QStringLiteral(".nema"));
    for (PravaRights* r : { &missing, &unreachable }) {
        m_script->messages.clear();
        EXPECT_FALSE(r->mayOpenBook(96));
        EXPECT_FALSE(r->hasRight(96, OperatorRights::Novi));
        expectOneError(m_script->messages,
            "Prava operatera nije moguće pročitati iz tablice dbo.PRAVA, pa se knjiga ne otvara.\n");
    }
    // An empty table restricts nobody.
    m_db.exec(PravaRights::createSql());
    EXPECT_TRUE(missing.mayOpenBook(96));
    EXPECT_TRUE(missing.hasRight(96, OperatorRights::Brisanje));

    // An operator with rows may use only what they name, from the next question on.
    EXPECT_EQ(PravaRights::sql(), "SELECT OPERATER,PRAVO FROM dbo.PRAVA WHERE PROGRAM='KNJIGE'");
    grant({ "Amra|KNJIGE|96", "Amra|KNJIGE|96.1", "Amra|KNJIGE|96.4", "Amra|KNJIGE|98", "Amra|MALOPROBJEKT|97",
        "Edin|KNJIGE|125" });
    PravaRights amra = rightsOf(" amra ");
    const struct {
        int book;
        int group; // 0: may the book be opened
        bool allowed;
        const char* why;
    } questions[] = {
        { 96, 0, true, "named" },
        { 96, OperatorRights::Novi, true, "named" },
        { 96, OperatorRights::Izmjena, false, "not named" },
        { 96, OperatorRights::Brisanje, false, "not named" },
        { 96, OperatorRights::Ispis, true, "named" },
        { 97, 0, false, "a right of another program does not count" },
        { 97, OperatorRights::Novi, false, "a right of another program does not count" },
        { 98, 0, true, "named" },
        { 98, OperatorRights::Izvoz, true, "no group named: every group" },
        { 106, 0, false, "not named" },
    };
    for (const auto& q : questions)
        EXPECT_EQ(q.group ? amra.hasRight(q.book, OperatorRights::Group(q.group)) : amra.mayOpenBook(q.book), q.allowed)
            << q.book << "." << q.group << ": " << q.why;
    EXPECT_TRUE(rightsOf("Selma").mayOpenBook(97)) << "an operator without rows is not restricted";
    grant({ "Amra|KNJIGE|106" });
    EXPECT_TRUE(amra.mayOpenBook(106)) << "a change counts from the next question";
}

TEST_F(HostPickers, TheListNarrowsAsThePersonTypesAndChooseRunsThroughTheSeamUntilAFailedRead)
{
    EXPECT_EQ(searchForm("Ilidža ČAĐAVICA Šuće"), "ilidza cadavica suce");
    const auto all = KomitentRegister::readAll();
    ASSERT_TRUE(all);
    PartnerPickerDialog dialog("Izbor komitenta", *all);
    EXPECT_EQ(dialog.visiblePartners().size(), all->size());
    auto* box = dialog.findChild<QLineEdit*>("txtTrazi");
    ASSERT_TRUE(box);
    QTest::keyClicks(box, "ilidza");
    EXPECT_EQ(names(dialog.visiblePartners()), QStringList({ "Elektro-Servis Ilidža d.o.o.", "Maloprodaja 1 Ilidža" }));

    // The sales-point chooser offers the shops the trade books keep, not the suppliers
    // that share a town with them; by name, or by code and the arrow key.
    QString title;
    QStringList offered;
    QString typed;
    m_script->onDialog = [&](QDialog& d) {
        title = d.windowTitle();
        offered = names(static_cast<PartnerPickerDialog&>(d).visiblePartners());
        auto* search = d.findChild<QLineEdit*>("txtTrazi");
        QTest::keyClicks(search, typed);
        if (typed == "50")
            QTest::keyClick(search, Qt::Key_Down);
        QTest::keyClick(search, Qt::Key_Enter);
        return d.result();
    };
    // Each shop kept by one of the two trade books only.
    m_db.exec(QStringLiteral("DELETE FROM dbo.TrgKnjUsluga WHERE BrojProd=%1").arg(demo::Maloprodaja2));
    m_db.exec(QStringLiteral("DELETE FROM dbo.TrgKnjKomisiona WHERE BrojProd=%1").arg(demo::Maloprodaja1));
    KomitentRegister shops(KomitentRegister::Kind::Shops);
    for (const auto& [search, code] : { std::pair("Ilid", demo::Maloprodaja1), std::pair("50", demo::Maloprodaja2) }) {
        typed = search;
        const auto shop = shops.choose();
        EXPECT_EQ(title, "Izbor maloprodaje / skladišta");
        EXPECT_EQ(offered, QStringList({ "Maloprodaja 1 Ilidža", "Maloprodaja 2 Grbavica" }));
        ASSERT_TRUE(shop) << search;
        EXPECT_EQ(shop->SifKomit, code);
    }
    // Before the first entry of any trade book every partner is offered, and said so.
    m_db.exec("DELETE FROM dbo.TrgKnjUsluga");
    m_db.exec("DELETE FROM dbo.TrgKnjKomisiona");
    typed = "Ilid";
    EXPECT_EQ(shops.choose()->SifKomit, 202);
    EXPECT_EQ(title, "Izbor maloprodaje / skladišta (trgovačke knjige još nemaju stavki: svi komitenti)");
    EXPECT_EQ(offered.size(), KomitentRegister::readAll()->size());

    KomitentRegister partners(KomitentRegister::Kind::Partners);
    m_script->onDialog = [](QDialog&) { return int(QDialog::Rejected); };
    EXPECT_FALSE(partners.choose());
    const auto found = partners.find(101);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->ImeKomit1, "Tehno-Mont d.o.o.");
    EXPECT_FALSE(partners.find(9999));

    // A failed read is reported and chooses nothing.
    m_script->clear();
    m_db.exec("DROP TABLE dbo.Komitent");
    m_script->onDialog = [](QDialog&) -> int {
        ADD_FAILURE() << "no picker without partners";
        return QDialog::Rejected;
    };
    EXPECT_FALSE(KomitentRegister(KomitentRegister::Kind::Partners).choose());
    expectOneError(m_script->messages, "Desila se greška: ");
}

// The window commands of the knjige program, run in process: the book drawn into a
// picture, refused command lines, and the advice given without a display.
using HostCommands = HostChooser;

TEST_F(HostCommands, OpenDrawsTheBookIntoAPictureLeavesTheCallersSeamAndRefusesWrongLines)
{
    const QString path = m_db->path();
    const QString picture = test::scratchDir() + QStringLiteral("/knjiga.png");

    EXPECT_EQ(host::runOpen({ "96", "--db", path, "--screenshot", picture }), 0);
    const QImage image(picture);
    ASSERT_FALSE(image.isNull());
    EXPECT_GT(image.width(), 300);
    EXPECT_EQ(session().RadnaGodina, m_year);
    EXPECT_EQ(session().ConnString, QStringLiteral("sqlite:") + QFileInfo(path).absoluteFilePath());

    // The scripted person is still the one in charge.
    warn("probna poruka");
    EXPECT_EQ(m_script->texts(), QStringList { QStringLiteral("probna poruka") });

    const QString missing = test::scratchDir() + QStringLiteral("/nema.db");
    // Unknown books, bad years and levels; a period that is no period, or not of the
    // year; a sales point of a book without one.
    const QStringList refused[] = { { "104" }, { "clsNemaTakve" }, {}, { "96", "--year", "dvije" },
        { "96", "--level", "12" }, { "96", "--level", "\uFF10" }, { "96", "--level", "\u0660" },
        { "96", "--year=2016", "--db", missing, "--period", "31.03.2016-01.03.2016" },
        { "96", "--year=2016", "--db", missing, "--period", "1.3.2016" },
        { "96", "--year=2016", "--db", missing, "--period", "01.03.2015-31.03.2015" }, { "96", "--prod", "501" },
        { "125", "--prod", "-1" } };
    for (const QStringList& args : refused)
        EXPECT_EQ(host::runOpen(args), 2) << args.join(u' ').toStdString();
    EXPECT_EQ(host::runChooser({ "--nepoznato" }), 2);
    EXPECT_EQ(host::runChooser({ "--period", "01.03.2016-31.03.2016" }), 2);
    EXPECT_EQ(host::runOpen({ "96", "--db", missing }), 1);
    EXPECT_EQ(host::runChooser({ "--db", missing, "--conn", missing }), 2);
    EXPECT_FALSE(QFileInfo::exists(missing));
}

TEST(HostWindowSystem, WithoutADisplayOnlyAPictureCanBeMade)
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    // The variables come back as they were, set or not.
    std::vector<std::pair<const char*, std::optional<QByteArray>>> saved;
    for (const char* name : { "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM" }) {
        saved.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
        qunsetenv(name);
    }
    const auto restore = qScopeGuard([&] {
        for (const auto& [name, value] : saved)
            value ? qputenv(name, *value) : qunsetenv(name);
    });
    EXPECT_EQ(host::prepareWindowSystem({}), 1);
    EXPECT_EQ(host::prepareWindowSystem({ "open", "96" }), 1);
    EXPECT_EQ(host::prepareWindowSystem({ "--screenshot", "a.png" }), 0);
    EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), QByteArray("offscreen"));
#else
    GTEST_SKIP() << "a display is always there";
#endif
}

// The command-line tool's output forms (knjige query), checked without a process.
TEST(CliOutput, NumbersTypesStatementsAndBatches)
{
    const std::pair<double, const char*> cases[]
        = { { 0, "0" }, { -0.0, "0" }, { 0.17, "0.17" }, { 100.0 / 3, "33.3333333333333" }, { -2.5, "-2.5" },
              { 1e-7, "0.0000001" }, { 2.5e20, "250000000000000000000" }, { 1234567.125, "1234567.125" } };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(host::cli::plainNumber(value), text) << value;

    const db::ResultSet rs = resultSet(
        { { "RBroj", db::FieldType::Integer }, { "Iznos", db::FieldType::Currency }, { "Stopa", db::FieldType::Float },
            { "Datum", db::FieldType::Date }, { "Opis", db::FieldType::Text }, { "Placeno", db::FieldType::Boolean } },
        { { -12, "1234567.5", 0.1, QDate(2016, 3, 5), "Račun 7, \"Centar\"\ndrugi red", true }, {} }); // all NULL
    QString text;
    QTextStream out(&text);
    host::cli::writeCsv(rs, true, out);
    EXPECT_EQ(text,
        "RBroj,Iznos,Stopa,Datum,Opis,Placeno\n"
        "integer,currency,float,date,text,boolean\n"
        "-12,1234567.5,0.1,2016-03-05,\"Račun 7, \"\"Centar\"\"\ndrugi red\",1\n"
        ",,,,,\n");

    text.clear();
    host::cli::writeCsv(db::ResultSet({ { "a,b", db::FieldType::Text } }), false, out);
    EXPECT_EQ(text, "\"a,b\"\n");

    for (const char* sql :
        { "SELECT 1", "  select * from dbo.CONFIG", "-- zadnji broj\n/* knjiga 96 */ (SELECT MAX(RBroj) FROM T)",
            "WITH x AS (SELECT 1 AS a) SELECT a FROM x", "EXEC sp_help" })
        EXPECT_TRUE(host::cli::returnsRows(sql)) << sql;
    for (const char* sql : { "CREATE TABLE dbo.KUF (BrojKUFa int)", "INSERT INTO T SELECT * FROM U",
             "UPDATE T SET a = 1", "SELECTIONS", "-- samo komentar" })
        EXPECT_FALSE(host::cli::returnsRows(sql)) << sql;

    const QStringList parts = host::cli::batchStatements(
        "SELECT 'a;b' AS x; /* ; */ VALUES (1);; INSERT INTO T (a) VALUES (');'); -- kraj; \n");
    ASSERT_EQ(parts.size(), 3) << parts.join(u'|').toStdString();
    EXPECT_EQ(parts[0], "SELECT 'a;b' AS x");
    EXPECT_EQ(parts[1].trimmed(), "/* ; */ VALUES (1)");
    EXPECT_EQ(parts[2].trimmed(), "INSERT INTO T (a) VALUES (');')");
    EXPECT_TRUE(host::cli::batchStatements(" -- samo komentar; \n /* i ovo */ ;").isEmpty());
}

using EntryClasses = BrowserTest;

TEST(EntryClassObjects, TwelveClassesUnderTheLibraryNameEachKeepingItsOwnProperties)
{
    const QStringList ids = entry::bookObjectIds();
    ASSERT_EQ(ids.size(), 12);
    EXPECT_EQ(ids.first(), "ArbosaPOSKnjige17.clsKnjPrihRashFBiH");
    EXPECT_EQ(ids.last(), "ArbosaPOSKnjige17.clsTrgKnjKomisiona");
    for (const books::BookKind& book : books::allBooks()) {
        auto object = entry::createBookObject(books::programmaticId(book.className));
        ASSERT_TRUE(object) << book.className.toStdString();
        EXPECT_EQ(object->kodKnjige(), book.code);
        EXPECT_EQ(object->className(), book.className);
    }
    EXPECT_EQ(entry::createBookObject("arbosaposknjige17.CLSKNJPROMETARS")->kodKnjige(), 106);
    EXPECT_FALSE(entry::createBookObject("ArbosaPOSKnjige17.clsNema"));
    EXPECT_FALSE(entry::createBookObject("clsKnjPrihRashFBiH"));
    EXPECT_FALSE(entry::createBookObject("Drugo.clsKnjPrihRashFBiH"));

    // Each object keeps its own copy and writes through to the session.
    session().reset();
    entry::clsKnjPrihRashFBiH a;
    entry::clsTrgKnjUsluga b;
    EXPECT_FALSE(a.Pozvan());
    EXPECT_EQ(a.ConnString(), QString());
    EXPECT_EQ(a.RadnaGodina(), 0);
    EXPECT_EQ(a.BrojPoduzeca(), 0);

    a.setRadnaGodina(2016);
    a.setBrojPoduzeca(7);
    a.setConnString("sqlite:/tmp/a.db");
    a.setPozvan(true);
    EXPECT_EQ(b.RadnaGodina(), 0); // the other object's own value
    EXPECT_EQ(b.BrojPoduzeca(), 0);
    EXPECT_FALSE(b.Pozvan());
    EXPECT_EQ(session().RadnaGodina, 2016);
    EXPECT_EQ(session().BrojPoduzeca, 7);
    EXPECT_EQ(session().ConnString, "sqlite:/tmp/a.db");

    b.setRadnaGodina(2017);
    EXPECT_EQ(a.RadnaGodina(), 2016); // reading never looks at the session
    EXPECT_EQ(session().RadnaGodina, 2017);
    session().reset();
}

TEST_F(EntryClasses, ShowUsesTheSessionAsItStandsAndACalledOrRefusedBookLeavesNoWindow)
{
    // The fixture set company 1 and year 2016 directly in the session.
    entry::clsKnjPrometaFBiH fresh;
    fresh.Show("1", "Marko");
    browser::frmSifarnikKnj* w = openBrowser();
    ASSERT_TRUE(w);
    EXPECT_EQ(session().NivoPristupa, "1");
    EXPECT_EQ(session().ImeOperatera, "Marko");
    EXPECT_EQ(w->TipSifarnika(), 98);
    EXPECT_EQ(w->windowTitle(), "Knjiga prometa za FBiH");
    EXPECT_TRUE(w->query().filter.where.endsWith("K.GodinaKnj=2016 AND K.BrojPoduzeca=1"));
    EXPECT_FALSE(w->toolbarButton(10)->isVisible());
    EXPECT_TRUE(w->testAttribute(Qt::WA_DeleteOnClose));
    QPointer<browser::frmSifarnikKnj> guard(w);
    w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(guard.isNull());

    // A called book shows button ten and is unloaded when it closes.
    entry::clsKnjPrihRashFBiH book;
    book.setPozvan(true);
    book.setRadnaGodina(2016);
    bool buttonShown = false;
    QPointer<browser::frmSifarnikKnj> seen;
    QTimer::singleShot(0, [&] {
        seen = openBrowser();
        if (!seen)
            return;
        buttonShown = seen->toolbarButton(10)->isVisible();
        seen->close();
    });
    book.Show("0", "Ana");
    EXPECT_TRUE(buttonShown);
    EXPECT_TRUE(seen.isNull()); // deleted by Show
    EXPECT_FALSE(openBrowser());

    // A refused book leaves no window.
    installRights(false);
    entry::clsKnjRashodaRS refused;
    refused.Show("0", "Ana");
    EXPECT_EQ(script->texts(), QStringList { QStringLiteral("Nemate pravo pristupa !") });
    EXPECT_FALSE(openBrowser());
    // A level is one ASCII digit: Unicode's other digits compare above "2" as text and
    // would pass by the rights service.
    installRights(true);
    for (const QString& level : { QStringLiteral("\uFF10"), QStringLiteral("\u0660"), QStringLiteral("\uFF19"),
             QStringLiteral("12"), QString() }) {
        script->clear();
        refused.Show(level, "Ana");
        EXPECT_EQ(script->texts(),
            QStringList {
                QStringLiteral("Nivo pristupa mora biti jedna znamenka od 0 do 9, a zadan je \"%1\".").arg(level) });
        EXPECT_FALSE(openBrowser());
    }
    closeAll();
}
