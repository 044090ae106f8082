// The host's services: operator rights from dbo.PRAVA and the partner and shop
// pickers over dbo.Komitent.
#include "books/DemoData.h"
#include "host/HostRights.h"
#include "host/PartnerPicker.h"
#include "session/Session.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <QDate>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::host;

namespace
{

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

} // namespace

TEST_F(HostRights, RightsThatCannotBeReadLetNobodyIn)
{
    PravaRights missing = rightsOf("Amra"); // no dbo.PRAVA
    PravaRights unreachable = rightsOf("Amra");
    unreachable.setConnectionString(m_db.path() + QStringLiteral(".nema"));
    for (PravaRights* r : { &missing, &unreachable }) {
        m_script->messages.clear();
        EXPECT_FALSE(r->mayOpenBook(96));
        EXPECT_FALSE(r->hasRight(96, OperatorRights::Novi));
        ASSERT_EQ(m_script->messages.size(), 1);
        EXPECT_TRUE(m_script->messages[0].text.startsWith(
            "Prava operatera nije moguće pročitati iz tablice dbo.PRAVA, pa se knjiga ne otvara.\n"));
        EXPECT_GT(m_script->messages[0].text.size(), 90) << "the data layer's reason follows";
        EXPECT_EQ(m_script->messages[0].icon, Icon::Exclamation);
    }
    // An empty table restricts nobody.
    m_db.exec(PravaRights::createSql());
    EXPECT_TRUE(missing.mayOpenBook(96));
    EXPECT_TRUE(missing.hasRight(96, OperatorRights::Brisanje));
}

TEST_F(HostRights, AnOperatorWithRowsMayUseOnlyWhatTheyNameFromTheNextQuestionOn)
{
    EXPECT_EQ(PravaRights::sql(), "SELECT OPERATER,PRAVO FROM dbo.PRAVA WHERE PROGRAM='KNJIGE'");
    m_db.exec(PravaRights::createSql());
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

namespace
{

class HostPickers : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QString error;
        ASSERT_TRUE(fillDemoData(m_db.db(), 2024, &error)) << error.toStdString();
    }
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

TEST_F(HostPickers, TheListNarrowsAsThePersonTypesIgnoringCaseAndAccents)
{
    EXPECT_EQ(searchForm("Ilidža ČAĐAVICA Šuće"), "ilidza cadavica suce");
    const auto all = KomitentRegister::readAll();
    ASSERT_TRUE(all);
    PartnerPickerDialog dialog("Izbor komitenta", *all);
    EXPECT_EQ(dialog.visiblePartners().size(), all->size());
    auto* search = dialog.findChild<QLineEdit*>("txtTrazi");
    ASSERT_TRUE(search);
    QTest::keyClicks(search, "ilidza");
    EXPECT_EQ(names(dialog.visiblePartners()), QStringList({ "Elektro-Servis Ilidža d.o.o.", "Maloprodaja 1 Ilidža" }));
    search->setText("50");
    ASSERT_EQ(dialog.visiblePartners().size(), 2);
    EXPECT_EQ(dialog.visiblePartners().first().SifKomit, demo::Maloprodaja1);
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    ASSERT_TRUE(dialog.chosen());
    EXPECT_EQ(dialog.chosen()->SifKomit, demo::Maloprodaja2);
    EXPECT_EQ(dialog.chosen()->ImeKomit1, "Maloprodaja 2 Grbavica");
}

TEST_F(HostPickers, ChooseRunsThePickerThroughTheSeamAndFindLooksTheNameUp)
{
    QString title;
    m_script->onDialog = [&title](QDialog& d) {
        title = d.windowTitle();
        auto* search = d.findChild<QLineEdit*>("txtTrazi");
        QTest::keyClicks(search, "grbav");
        QTest::keyClick(search, Qt::Key_Enter);
        return d.result();
    };
    const auto shop = KomitentRegister(KomitentRegister::Kind::Shops).choose();
    EXPECT_EQ(title, "Izbor maloprodaje / skladišta");
    ASSERT_TRUE(shop);
    EXPECT_EQ(shop->SifKomit, demo::Maloprodaja2);

    KomitentRegister partners(KomitentRegister::Kind::Partners);
    m_script->onDialog = [](QDialog&) { return int(QDialog::Rejected); };
    EXPECT_FALSE(partners.choose());
    const auto found = partners.find(101);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->ImeKomit1, "Tehno-Mont d.o.o.");
    EXPECT_FALSE(partners.find(9999));
}

TEST_F(HostPickers, AFailedReadIsReportedAndChoosesNothing)
{
    m_db.exec("DROP TABLE dbo.Komitent");
    m_script->onDialog = [](QDialog&) -> int {
        ADD_FAILURE() << "no picker without partners";
        return QDialog::Rejected;
    };
    EXPECT_FALSE(KomitentRegister(KomitentRegister::Kind::Partners).choose());
    ASSERT_EQ(m_script->messages.size(), 1);
    EXPECT_TRUE(m_script->messages.first().text.startsWith("Desila se greška: "));
    EXPECT_EQ(m_script->messages.first().icon, Icon::Exclamation);
}
