// The host program's book chooser: what it lists, and that opening a book from it
// does what a host does (session values, the book's browser).
#include "books/BookKind.h"
#include "books/DemoData.h"
#include "host/BookChooser.h"
#include "host/HostRights.h"
#include "host/HostWindows.h"
#include "session/HostServices.h"
#include "session/Session.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <QApplication>
#include <QComboBox>
#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <memory>

using namespace knjige;
using namespace knjige::host;

namespace
{

void closeWindowsExcept(const QWidget* keep)
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != keep && w->isVisible())
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
        QString error;
        ASSERT_TRUE(fillDemoData(m_db->db(), m_year, &error)) << error.toStdString();
        m_db->exec(host::PravaRights::createSql()); // a host's database has its rights table
        m_conn = session().ConnString;
        // The chooser is the host: the component's session starts empty.
        session().reset();
        installProgramServices();
    }
    void TearDown() override
    {
        closeWindowsExcept(nullptr);
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

} // namespace

TEST_F(HostChooser, ListsTheTwelveBooksByCaptionUnderTheirEntitiesAndShowsTheCompany)
{
    BookChooser chooser(defaults());
    QStringList expected;
    for (const BookKind& b : allBooks())
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
}

TEST_F(HostChooser, OpeningABookSetsTheSessionAndShowsItsBrowser)
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
    QWidget* browser = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != &chooser && w->isVisible())
            browser = w;
    ASSERT_TRUE(browser);
    EXPECT_EQ(browser->objectName(), "frmSifarnikKnj");
    EXPECT_EQ(browser->windowTitle(), "Knjiga prometa za FBiH");
    EXPECT_TRUE(m_script->texts().isEmpty()) << m_script->texts().join(u'\n').toStdString();
}

TEST_F(HostChooser, RemembersTheLastOpeningForTheNextStart)
{
    {
        BookChooser chooser(defaults());
        chooser.selectBook(Knjiga::PrihRashDB);
        child<QLineEdit>(chooser, "txtOperater")->setText("Edin");
        child<QComboBox>(chooser, "cmbNivo")->setCurrentIndex(2);
        ASSERT_TRUE(chooser.Otvori());
    }
    closeWindowsExcept(nullptr);
    const BookRequest again = BookChooser::remembered(defaults(), {});
    EXPECT_EQ(again.operatorName, "Edin");
    EXPECT_EQ(again.level, "2");
    BookChooser next(again);
    EXPECT_EQ(next.selectedBook(), 109);
    // What the command line gives wins over what was remembered.
    EXPECT_EQ(BookChooser::remembered(defaults(), { "operator" }).operatorName, "Amra");
}

// The rights kept in dbo.PRAVA reach the browser through the installed service.
TEST_F(HostChooser, NothingSelectedOrABookTheOperatorMayNotOpenStaysClosed)
{
    BookChooser chooser(defaults());
    auto* tree = child<QTreeWidget>(chooser, "tvKnjige");
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
