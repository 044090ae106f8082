#include "session/DatabaseBackend.h"
#include "session/Interaction.h"
#include "session/Registry.h"
#include "session/ResultSet.h"
#include "session/SettingsStore.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"

#include <gtest/gtest.h>

using namespace knjige;

TEST(ResultSet, KeepsEachTypeAndReadsItBackByName)
{
    ResultSet rs({{"RBroj", FieldType::Integer},
                  {"Iznos", FieldType::Currency},
                  {"Datum", FieldType::Date},
                  {"Opis", FieldType::Text},
                  {"Stopa", FieldType::Decimal}});
    rs.appendRow();
    rs.set(0, 7);
    rs.set(1, QVariant::fromValue(Money::fromUnits(145299)));
    rs.set(2, QDate(2016, 3, 15));
    rs.set(3, QStringLiteral("Nabavka robe"));
    rs.set(4, 33.3333333);
    rs.appendRow();   // all NULL
    rs.appendRow();
    rs.setText(1, QStringLiteral("100"));
    rs.setText(2, QStringLiteral("2016-12-31 00:00:00"));

    ASSERT_EQ(rs.rowCount(), 3);
    EXPECT_EQ(rs.indexOf(QStringLiteral("iznos")), 1);
    EXPECT_EQ(rs.indexOf(QStringLiteral("nema")), -1);
    EXPECT_EQ(rs.value(0, QStringLiteral("RBROJ")).toLongLong(), 7);
    EXPECT_EQ(rs.money(0, 1).toString(), QStringLiteral("14.5299"));
    EXPECT_EQ(rs.date(0, 2), QDate(2016, 3, 15));
    EXPECT_EQ(rs.text(0, 3), QStringLiteral("Nabavka robe"));
    EXPECT_EQ(rs.money(0, 4).toString(), QStringLiteral("33.3333"));
    for (int c = 0; c < rs.fieldCount(); ++c) {
        EXPECT_TRUE(rs.isNull(1, c));
        EXPECT_FALSE(rs.value(1, c).isValid());
    }
    EXPECT_EQ(rs.money(1, 1), Money());
    EXPECT_EQ(rs.money(2, 1), Money::fromWhole(100));
    EXPECT_EQ(rs.date(2, 2), QDate(2016, 12, 31));
    EXPECT_TRUE(rs.isNull(2, 0));
}

TEST(ResultSet, PermutesEveryColumnTogether)
{
    ResultSet rs({{"RBroj", FieldType::Integer}, {"Opis", FieldType::Text}, {"Iznos", FieldType::Currency}});
    const int numbers[] = {3, 1, 2};
    for (int n : numbers) {
        rs.appendRow();
        rs.setInteger(0, n);
        rs.setText(1, QStringLiteral("stavka %1").arg(n));
        if (n != 2)
            rs.setMoney(2, Money::fromWhole(n * 10));
    }
    rs.permute({1, 2, 0});
    EXPECT_EQ(rs.integer(0, 0), 1);
    EXPECT_EQ(rs.text(1, 1), QStringLiteral("stavka 2"));
    EXPECT_TRUE(rs.isNull(1, 2));
    EXPECT_EQ(rs.money(2, 2), Money::fromWhole(30));
}

TEST(RowStatement, ChangesExactlyOneRowMatchingEveryColumnAsRead)
{
    RowChange change;
    change.kind = RowChange::Kind::Update;
    change.table = QStringLiteral("dbo.KnjPrometaFBiH");
    change.values = {{"RBroj", 3}, {"Opis", QStringLiteral("Pazar")}};
    change.original = {{"RBroj", 2}, {"Opis", QVariant()}};

    const BoundStatement server = rowStatement(change, SqlDialect::SqlServer);
    EXPECT_EQ(server.sql, QStringLiteral("UPDATE TOP (1) dbo.KnjPrometaFBiH SET RBroj = ?,Opis = ? WHERE RBroj = ? AND Opis IS NULL"));
    EXPECT_EQ(server.values, (QVariantList{3, QStringLiteral("Pazar"), 2}));

    const BoundStatement embedded = rowStatement(change, SqlDialect::Sqlite);
    EXPECT_EQ(embedded.sql, QStringLiteral("UPDATE KnjPrometaFBiH SET RBroj = ?,Opis = ? WHERE rowid IN "
                                           "(SELECT rowid FROM KnjPrometaFBiH WHERE RBroj = ? AND Opis IS NULL LIMIT 1)"));

    change.kind = RowChange::Kind::Delete;
    EXPECT_EQ(rowStatement(change, SqlDialect::SqlServer).sql,
              QStringLiteral("DELETE TOP (1) FROM dbo.KnjPrometaFBiH WHERE RBroj = ? AND Opis IS NULL"));
    EXPECT_EQ(rowStatement(change, SqlDialect::SqlServer).values, (QVariantList{2}));

    change.kind = RowChange::Kind::Insert;
    const BoundStatement insert = rowStatement(change, SqlDialect::SqlServer);
    EXPECT_EQ(insert.sql, QStringLiteral("INSERT INTO dbo.KnjPrometaFBiH (RBroj,Opis) VALUES (?,?)"));
    EXPECT_EQ(insert.values, (QVariantList{3, QStringLiteral("Pazar")}));
}

TEST(Interaction, ScriptRecordsMessagesAndAnswersQuestionsInTurn)
{
    test::ScopedScript script;
    script->answers.enqueue(Answer::No);
    warn(QStringLiteral("Mora se upisati isprava !"));
    EXPECT_FALSE(askYesNo(QStringLiteral("Želite li?"), QStringLiteral("Renumeracija")));
    // With the script run dry the question takes its default button.
    EXPECT_FALSE(askYesNo(QStringLiteral("Obrisati?"), {}, Answer::No));
    EXPECT_TRUE(askYesNo(QStringLiteral("Nastaviti?")));

    ASSERT_EQ(script->messages.size(), 4);
    EXPECT_EQ(script->messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(script->messages[0].buttons, Buttons::Ok);
    EXPECT_EQ(script->messages[1].title, QStringLiteral("Renumeracija"));
    EXPECT_EQ(script->messages[1].icon, Icon::Question);
    EXPECT_EQ(script->messages[1].buttons, Buttons::YesNo);
    EXPECT_EQ(script->texts().last(), QStringLiteral("Nastaviti?"));
}

TEST(Settings, BooleansAreTrueFalseTextsAndEachApplicationKeepsItsOwn)
{
    test::clearSettings();
    const QString book = QStringLiteral("Knjiga prometa za FBiH");
    EXPECT_TRUE(settings::flag(book, settings::section(), QStringLiteral("OpisiNaTipkama"), true));
    settings::setFlag(book, settings::section(), QStringLiteral("OpisiNaTipkama"), false);
    EXPECT_EQ(settings::text(book, settings::section(), QStringLiteral("OpisiNaTipkama")), QStringLiteral("False"));
    EXPECT_FALSE(settings::flag(book, settings::section(), QStringLiteral("OpisiNaTipkama"), true));
    EXPECT_TRUE(settings::flag(QStringLiteral("Knjiga prometa za RS"), settings::section(),
                               QStringLiteral("OpisiNaTipkama"), true));

    EXPECT_EQ(settings::number(book, settings::section(), QStringLiteral("MainWidth"), 9645), 9645);
    settings::setNumber(book, settings::section(), QStringLiteral("MainWidth"), 12000);
    EXPECT_EQ(settings::number(book, settings::section(), QStringLiteral("MainWidth"), 9645), 12000);
}

TEST(Registry, ReadsTextValuesCutToTheBufferAndNothingForMissingKeys)
{
    EXPECT_EQ(registryText(QStringLiteral("Software\\Arbosa\\Nema"), QStringLiteral("Server")), QString());
    ASSERT_TRUE(setRegistryText(QStringLiteral("Software\\Arbosa\\Knjige"), QStringLiteral("Server"),
                                QStringLiteral("SRV01")));
    EXPECT_EQ(registryText(QStringLiteral("Software\\Arbosa\\Knjige"), QStringLiteral("Server")),
              QStringLiteral("SRV01"));
    EXPECT_EQ(registryText(QStringLiteral("Software\\Arbosa\\Knjige"), QStringLiteral("Nema")), QString());

    const QString longValue(1500, u'x');
    ASSERT_TRUE(setRegistryText(QStringLiteral("Software\\Arbosa\\Knjige"), QStringLiteral("Dugo"), longValue));
    EXPECT_EQ(registryText(QStringLiteral("Software\\Arbosa\\Knjige"), QStringLiteral("Dugo")).size(), 1023);
}
