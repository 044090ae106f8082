// The shared routines when the data layer fails: the person is told in the one
// message form, and the routine hands back its neutral value.
#include "session/Session.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

using namespace knjige;

TEST(SessionRoutines, NextNumberFailureIsReportedAndGivesZero)
{
    test::TestDatabase t;
    t.insert(QStringLiteral("dbo.KnjPrometaFBiH"),
             {{"BrojPoduzeca", 1}, {"RBroj", 4}, {"Datum", QDate(2016, 2, 1)}, {"GodinaKnj", 2016}});
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(98), 4);

    t.exec(QStringLiteral("DROP TABLE dbo.KnjPrometaFBiH"));
    test::ScopedScript script;
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(98), 0);
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_TRUE(script->messages[0].text.startsWith(QStringLiteral("Desila se greška: ")));
    EXPECT_TRUE(script->messages[0].text.contains(QStringLiteral("KnjPrometaFBiH"), Qt::CaseInsensitive))
        << script->messages[0].text.toStdString();
    EXPECT_EQ(script->messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(t.db().lastSql(),
              QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrometaFBiH WHERE BROJPODUZECA=1 AND GODINAKNJ=2016"));

    // An unknown kind asks nothing and says nothing.
    script->clear();
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(103), 0);
    EXPECT_TRUE(script->messages.isEmpty());
}

TEST(SessionRoutines, ConfigurationFailureWarnsAndKeepsTheCompanyName)
{
    test::TestDatabase t;
    session().NazivFirme = QStringLiteral("Prethodna firma");
    t.exec(QStringLiteral("DROP TABLE dbo.CONFIG"));
    test::ScopedScript script;
    DefVarijabli::CitajKonfiguraciju(false);
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(script->messages[0].text, QStringLiteral("\nDesila se greška u pristupu podacima o firmi. Ponovite!"));
    EXPECT_EQ(script->messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(session().NazivFirme, QStringLiteral("Prethodna firma"));
    EXPECT_EQ(t.db().lastSql(), QStringLiteral("SELECT NazivFirme FROM dbo.CONFIG WHERE BROJPODUZECA=1"));
}

TEST(SessionRoutines, AMissingConnectionIsReportedNotCrashed)
{
    session().reset();
    session().ConnString = QStringLiteral("Provider=SQLOLEDB.1;Data Source=srv;User ID=sa");
    session().BrojPoduzeca = 1;
    session().RadnaGodina = 2016;
    test::ScopedScript script;
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(96), 0);
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_TRUE(script->messages[0].text.startsWith(QStringLiteral("Desila se greška: Neispravan connection string")))
        << script->messages[0].text.toStdString();
    session().reset();
}
