// The session's shared pieces: result sets, one-row statements, the interaction seam,
// settings and registry, the next ordinal number of every book and the company's
// configuration, each with its failure told in the one message form; money and dates
// (parsing, half-to-even storage and half-away display rounding, the VAT share, amounts
// as people type them in the workstation's form, SQL date literals).
#include "ResultText.h"
#include "books/BookKind.h"
#include "books/LastNumber.h"
#include "session/AmountText.h"
#include "session/Dates.h"
#include "session/Registry.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "session/Workstation.h"
#include "session/db/DatabaseBackend.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

using namespace knjige;
using knjige::test::ScopedScript;
using knjige::test::TestDatabase;
using State = AmountReading::State;

TEST(ResultSet, KeepsEachTypeReadsItBackByNameAndPermutesEveryColumnTogether)
{
    db::ResultSet rs = test::resultSet(
        { { "RBroj", db::FieldType::Integer }, { "Iznos", db::FieldType::Currency }, { "Datum", db::FieldType::Date },
            { "Opis", db::FieldType::Text }, { "Stopa", db::FieldType::Decimal } },
        { { 7, QVariant::fromValue(Money::fromUnits(145299)), QDate(2016, 3, 15), "Nabavka robe", 33.3333333 }, {},
            { {}, "100", "2016-12-31 00:00:00" } });
    ASSERT_EQ(rs.rowCount(), 3);
    EXPECT_EQ(rs.indexOf(QStringLiteral("iznos")), 1);
    EXPECT_EQ(rs.indexOf(QStringLiteral("nema")), -1);
    EXPECT_EQ(rs.value(0, QStringLiteral("RBROJ")).toLongLong(), 7);
    EXPECT_EQ(rs.money(0, 1).toString(), QStringLiteral("14.5299"));
    EXPECT_EQ(rs.date(0, 2), QDate(2016, 3, 15));
    EXPECT_EQ(rs.money(0, 4).toString(), QStringLiteral("33.3333"));
    EXPECT_EQ(rs.money(1, 1), Money());
    EXPECT_FALSE(rs.value(1, 1).isValid());
    // Texts set into typed columns are read as their types.
    const char* rows[] = { "7|14.5299|2016-03-15|Nabavka robe|33.3333333", "<null>|<null>|<null>|<null>|<null>",
        "<null>|100|2016-12-31|<null>|<null>" };
    for (int r = 0; r < 3; ++r)
        EXPECT_EQ(test::rowText(rs, r), rows[r]);
    // Rows 0,1,2 become 2,0,1 in every column, NULLs included.
    rs.permute({ 2, 0, 1 });
    for (int r = 0; r < 3; ++r)
        EXPECT_EQ(test::rowText(rs, r), rows[(r + 2) % 3]);

    // The compact columns at their edges: whole numbers and amounts past 32 bits after
    // small ones (the column widens, keeping what it had), the first and last dates, a
    // NULL among them, texts shared while they repeat and stored one by one once they
    // do not, a long one, an empty one beside NULL, one set twice; and a part's rows
    // cleared and read again.
    db::ResultSet edges({ { "N", db::FieldType::Integer }, { "Iznos", db::FieldType::Currency },
        { "Datum", db::FieldType::Date }, { "Vrsta", db::FieldType::Text }, { "Opis", db::FieldType::Text } });
    const qint64 numbers[] = { 1, -2147483648LL, 2147483648LL, std::numeric_limits<qint64>::max(),
        std::numeric_limits<qint64>::min() + 1, 0 };
    const QDate days[] = { QDate(1753, 1, 1), QDate(), QDate(9999, 12, 31) };
    const QString longText = QString(200, u'ž');
    for (int pass = 0; pass < 2; ++pass) {
        edges.clearRows();
        for (int r = 0; r < 600; ++r) {
            edges.appendRow();
            edges.setInteger(0, numbers[r % 6]);
            edges.setMoney(1, Money::fromUnits(numbers[(r + 1) % 6]));
            edges.setDate(2, days[r % 3]);
            edges.setText(3, r % 7 == 6 ? QString() : QStringLiteral("Rashod - Doprinosi %1").arg(r % 7));
            edges.setText(4, QStringLiteral("prvi"));
            if (r % 5 != 4)
                edges.setText(4, r == 1 ? longText : QStringLiteral("Stavka %1").arg(r));
        }
        ASSERT_EQ(edges.rowCount(), 600);
        for (int r = 0; r < 600; ++r) {
            ASSERT_EQ(edges.integer(r, 0), numbers[r % 6]) << r;
            ASSERT_EQ(edges.money(r, 1).units(), numbers[(r + 1) % 6]) << r;
            ASSERT_EQ(edges.isNull(r, 2), r % 3 == 1) << r;
            ASSERT_EQ(edges.date(r, 2), days[r % 3]) << r;
            ASSERT_FALSE(edges.isNull(r, 3)) << r;
            ASSERT_EQ(edges.text(r, 3), r % 7 == 6 ? QString() : QStringLiteral("Rashod - Doprinosi %1").arg(r % 7));
            ASSERT_EQ(edges.text(r, 4),
                r % 5 == 4 ? QStringLiteral("prvi") : (r == 1 ? longText : QStringLiteral("Stavka %1").arg(r)))
                << r;
        }
    }
    std::vector<int> reversed(600);
    std::iota(reversed.rbegin(), reversed.rend(), 0);
    edges.permute(reversed);
    EXPECT_EQ(edges.integer(599, 0), 1);
    EXPECT_EQ(edges.money(0, 1).units(), numbers[0]); // row 599: (599 + 1) % 6 == 0
    EXPECT_EQ(edges.text(598, 4), longText);
    EXPECT_EQ(edges.utf8(598, 4).size(), 400);
}

TEST(RowStatement, ChangesExactlyOneRowMatchingEveryColumnAsRead)
{
    db::RowChange change { db::RowChange::Kind::Update, QStringLiteral("dbo.KnjPrometaFBiH"),
        { { "RBroj", 3 }, { "Opis", QStringLiteral("Pazar") } }, { { "RBroj", 2 }, { "Opis", QVariant() } } };

    const db::BoundStatement server = db::rowStatement(change, db::SqlDialect::SqlServer);
    EXPECT_EQ(server.sql,
        QStringLiteral("UPDATE TOP (1) dbo.KnjPrometaFBiH SET RBroj = ?,Opis = ? WHERE RBroj = ? AND Opis IS NULL"));
    EXPECT_EQ(server.values, (QVariantList { 3, QStringLiteral("Pazar"), 2 }));

    // The deletion's text, matched the same way, is RowWrites'.
    change.kind = db::RowChange::Kind::Delete;
    EXPECT_EQ(db::rowStatement(change, db::SqlDialect::SqlServer).values, (QVariantList { 2 }));

    change.kind = db::RowChange::Kind::Insert;
    const db::BoundStatement insert = db::rowStatement(change, db::SqlDialect::SqlServer);
    EXPECT_EQ(insert.sql, QStringLiteral("INSERT INTO dbo.KnjPrometaFBiH (RBroj,Opis) VALUES (?,?)"));
    EXPECT_EQ(insert.values, (QVariantList { 3, QStringLiteral("Pazar") }));
}

// The settings' True/False texts, defaults and per-book stores are the browser's
// (DisplayOptions..., EachBookRemembers...); here the registry.
TEST(Settings, TheRegistryCutsLongValues)
{
    const QString knjige = QStringLiteral("Software\\Arbosa\\Knjige");
    EXPECT_EQ(registryText(QStringLiteral("Software\\Arbosa\\Nema"), QStringLiteral("Server")), QString());
    ASSERT_TRUE(setRegistryText(knjige, QStringLiteral("Server"), QStringLiteral("SRV01")));
    EXPECT_EQ(registryText(knjige, QStringLiteral("Server")), QStringLiteral("SRV01"));
    EXPECT_EQ(registryText(knjige, QStringLiteral("Nema")), QString());
    ASSERT_TRUE(setRegistryText(knjige, QStringLiteral("Dugo"), QString(1500, u'x')));
    EXPECT_EQ(registryText(knjige, QStringLiteral("Dugo")).size(), 1023);
}

// Both SQL forms of every book; only the company, year and sales point count; an
// unknown kind asks nothing; a failure gives 0 and its text for the caller to tell.
TEST(Numbering, NextNumberOfEveryBookItsFailuresAndUnknownKinds)
{
    TestDatabase t;
    ScopedScript script;
    for (const books::BookKind& book : books::allBooks()) {
        EXPECT_EQ(DefVarijabli::ZadnjiRBroj(book.code, 3).number, 0) << book.code;
        const QString sql = DefVarijabli::ZadnjiRBrojSql(book.code, 1, 2016, 3);
        const db::ResultSet rs = t.query(sql);
        ASSERT_EQ(rs.rowCount(), 1);
        EXPECT_EQ(rs.field(0).type, db::FieldType::Integer);
        // The ISNULL form gives 0, the plain MAX form NULL: the routine treats both as 0.
        EXPECT_EQ(!rs.isNull(0, 0), sql.contains(QStringLiteral("ISNULL"))) << book.code;
    }
    for (const books::BookKind& book : books::allBooks()) {
        if (t.count(book.table) > 0)
            continue; // shared tables are filled once
        // Other company, other year, other sales point.
        for (const auto& [company, year, rbroj, prod] : { std::array { 1, 2016, 4, 3 }, { 1, 2016, 9, 3 },
                 { 2, 2016, 50, 3 }, { 1, 2015, 60, 3 }, { 1, 2016, 70, 8 } }) {
            db::RowChange::Values v { { "BrojPoduzeca", company }, { "GodinaKnj", year }, { "RBroj", rbroj },
                { "Datum", QDate(year, 1, 1) } };
            if (books::isTradeBook(book.code))
                v.push_back({ "BrojProd", prod });
            else if (prod == 8)
                continue;
            t.insert(book.table, v);
        }
    }
    for (const books::BookKind& book : books::allBooks())
        EXPECT_EQ(DefVarijabli::ZadnjiRBroj(book.code, 3).number, 9) << book.code;
    EXPECT_TRUE(DefVarijabli::ZadnjiRBrojSql(103, 1, 2016).isEmpty());
    EXPECT_EQ(DefVarijabli::ZadnjiRBroj(103).number, 0);
    EXPECT_TRUE(DefVarijabli::ZadnjiRBroj(0).failure.text.isEmpty());

    t.exec(QStringLiteral("DROP TABLE dbo.KnjPrometaFBiH"));
    DefVarijabli::LastNumber last = DefVarijabli::ZadnjiRBroj(98);
    EXPECT_EQ(last.number, 0);
    EXPECT_TRUE(last.failure.text.startsWith(QStringLiteral("Desila se greška: ")));
    EXPECT_TRUE(last.failure.text.contains(QStringLiteral("KnjPrometaFBiH"), Qt::CaseInsensitive))
        << last.failure.text.toStdString();
    EXPECT_EQ(last.failure.icon, Icon::Exclamation);
    EXPECT_TRUE(script->messages.isEmpty());
    EXPECT_EQ(t.db().lastSql(),
        QStringLiteral(
            "SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrometaFBiH WHERE BROJPODUZECA=1 AND GODINAKNJ=2016"));

    // A connection string the data layer cannot use is told, not crashed on.
    session().reset();
    session().ConnString = QStringLiteral("Provider=SQLOLEDB.1;Data Source=srv;User ID=sa");
    last = DefVarijabli::ZadnjiRBroj(96);
    EXPECT_EQ(last.number, 0);
    EXPECT_TRUE(last.failure.text.startsWith(QStringLiteral("Desila se greška: Neispravan connection string")))
        << last.failure.text.toStdString();
}

TEST(Configuration, ReadsTheWholeRowAndOnAFailureWarnsAndKeepsTheCompanyName)
{
    TestDatabase t;
    t.insert("dbo.CONFIG",
        { { "BrojPoduzeca", 1 }, { "NazivFirme", QStringLiteral("Obrt Šimić") }, { "Napomena", QString(5000, u'x') } });
    EXPECT_TRUE(DefVarijabli::CitajKonfiguraciju(true).isEmpty());
    EXPECT_EQ(session().NazivFirme, QStringLiteral("Obrt Šimić"));
    const db::ResultSet& cfg = session().Konfiguracija;
    ASSERT_EQ(cfg.rowCount(), 1);
    EXPECT_EQ(cfg.text(0, cfg.indexOf("Napomena")).size(), 5000);

    t.exec(QStringLiteral("DROP TABLE dbo.CONFIG"));
    const Notices notices = DefVarijabli::CitajKonfiguraciju(false);
    ASSERT_EQ(notices.size(), 1);
    EXPECT_EQ(notices[0].text, QStringLiteral("\nDesila se greška u pristupu podacima o firmi. Ponovite!"));
    EXPECT_EQ(notices[0].icon, Icon::Exclamation);
    EXPECT_EQ(session().NazivFirme, QStringLiteral("Obrt Šimić"));
    EXPECT_EQ(t.db().lastSql(), QStringLiteral("SELECT NazivFirme FROM dbo.CONFIG WHERE BROJPODUZECA=1"));
}

TEST(Money, ParsesStoresRoundsShowsAndTakesAnExactVatShare)
{
    // How the parsed text comes back: s toString, r rounded(2). The display and plain
    // forms are in every grid and row compared.
    const struct {
        const char* text;
        char op;
        const char* expected;
    } cases[] = {
        { " 1234,5 ", 's', "1234.5000" },
        { "-.25", 's', "-0.2500" },
        // Half to even at the fifth decimal.
        { "1.00005", 's', "1.0000" },
        { "1.00015", 's', "1.0002" },
        { "1.000151", 's', "1.0002" },
        { "1.000051", 's', "1.0001" },
        { "0.125", 'r', "0.1200" },
        { "0.135", 'r', "0.1400" },
        { "-0.135", 'r', "-0.1400" },
        // The edges of the range (one past each is refused below).
        { "-922337203685477.5808", 's', "-922337203685477.5808" },
        { "922337203685477.5807", 's', "922337203685477.5807" },
    };
    for (const char* refused :
        { "", "1.234,56", "12a", "-", "-922337203685477.58086", "922337203685477.5808", "-922337203685477.5809" })
        EXPECT_FALSE(Money::parse(QString::fromLatin1(refused))) << refused;
    for (const auto& c : cases) {
        const std::optional<Money> m = Money::parse(QString::fromLatin1(c.text));
        QString shown = QStringLiteral("-");
        if (m)
            shown = c.op == 's' ? m->toString() : m->rounded(2).toString();
        EXPECT_EQ(shown, QString::fromLatin1(c.expected)) << c.text << " " << c.op;
    }
    for (const auto& [value, units] :
        { std::pair { 0.00005, 0 }, { 0.00015, 2 }, { -0.00015, -2 }, { 2.00004, 20000 } })
        EXPECT_EQ(Money::fromDouble(value).units(), units) << value;
    EXPECT_EQ(Money().toDisplayString(u'.', u','), QStringLiteral("0,00"));

    // The VAT share is exact for every amount the type holds.
    const qint64 most = std::numeric_limits<qint64>::max();
    const std::pair<Money, qint64> shares[] = {
        { Money::fromWhole(100), 145299 },
        { -Money::fromUnits(585000), -85000 },
        { Money::fromWhole(99999999999999), 145299145299143846 }, // 17 x this overflowed
        { -Money::fromUnits(most), -1340148073731035801 },
    };
    for (const auto& [gross, share] : shares)
        EXPECT_EQ(gross.fraction(17, 117).units(), share) << gross.toString().toStdString();
}

TEST(Dates, SqlLiteralsAreMonthFirstScreenDatesDayFirstStoredTextIso)
{
    // The forms written are in every SQL text, grid and row the other tests compare.
    const QDate d(2016, 3, 15);
    // Each reader against texts it takes and texts it refuses (an invalid date).
    const struct {
        QDate (*read)(const QString&);
        const char* text;
        QDate expected;
    } reads[] = {
        { dates::parseDayFirst, "31.12.2015", { 2015, 12, 31 } },
        { dates::parseDayFirst, "31.12.15", {} },
        { dates::parseMonthFirst, "1.1.2016", { 2016, 1, 1 } },
        { dates::parseMonthFirst, "03.15.2016", d },
        { dates::parseMonthFirst, "15.03.2016", {} },
        { dates::fromIsoText, "2016-03-15", d },
        { dates::fromIsoText, "2016-12-31 00:00:00", { 2016, 12, 31 } },
        { dates::fromIsoText, "2016-12-31T10:00:00.000", { 2016, 12, 31 } },
        { dates::fromIsoText, "2016-02-30", {} },
        { dates::fromIsoText, "2016-1a-01", {} },
        { dates::fromIsoText, "03.15.2016", {} },
    };
    for (const auto& r : reads)
        EXPECT_EQ(r.read(QString::fromLatin1(r.text)), r.expected) << r.text;
}

// The forms people type most are tried through the number box (MoneyBoxInput); here the edges.
TEST(AmountText, ReadsOnlyTheWorkstationsOwnFormAndDisplaysAsSqlRoundDoes)
{
    const NumberConventions bs = NumberConventions::of(QLocale(QLocale::Bosnian));
    const NumberConventions en = NumberConventions::of(QLocale(QLocale::English));
    const struct {
        NumberConventions c;
        const char* text;
        State state;
        qint64 units;
    } cases[] = {
        { bs, "1.234,", State::Exact, 12340000 },
        { bs, "", State::Exact, 0 },
        { bs, "12.34.567", State::Refused, 0 },
        { bs, "1,234", State::Refused, 0 },
        { bs, "1.000.000.000.000", State::Refused, 0 },
        { bs, "12 KM", State::Refused, 0 },
        { en, "000000000000012", State::Exact, 120000 },
    };
    for (const auto& c : cases) {
        const AmountReading r = readAmount(QString::fromUtf8(c.text), c.c, AmountLimits {});
        EXPECT_EQ(r.state, c.state) << c.text;
        EXPECT_EQ(r.value.units(), c.units) << c.text;
        EXPECT_EQ(r.problem.isEmpty(), c.state == State::Exact) << c.text;
    }
    EXPECT_EQ(readAmount(QStringLiteral("1234567890123"), bs, {}).problem,
        QStringLiteral("Broj može imati najviše 12 cijelih mjesta."));

    // The display rounds as SQL's ROUND does.
    test::TestDatabase t;
    for (const char* text : { "0.125", "-0.125", "0.145", "2.675", "1234.005", "-0.005", "0.0049" }) {
        const db::ResultSet rs = t.query(QStringLiteral("SELECT ROUND(CAST(%1 AS money), 2) AS R").arg(text));
        EXPECT_EQ(amountDisplay(Money::parse(QString::fromLatin1(text)).value(), QLocale::c()),
            amountDisplay(rs.money(0, 0), QLocale::c()))
            << text;
    }
    EXPECT_EQ(amountDisplay(Money::parse(QStringLiteral("-1234567.125")).value(), QLocale(QLocale::Bosnian)),
        QStringLiteral("-1.234.567,13"));
}

// A workstation without conventions of its own (C, POSIX) gets the Bosnian ones, and
// Qt's own dialogs speak Croatian wherever the component's Bosnian is spoken.
TEST(Workstation, BosnianConventionsForCAndCroatianQtTextsForTheLanguagesOfBiH)
{
    const struct {
        QLocale locale;
        const char* amount;
        const char* catalogue;
    } cases[] = {
        { QLocale::c(), "52.482,39", "qtbase_hr" },
        { QLocale(QLocale::Bosnian, QLocale::BosniaAndHerzegovina), "52.482,39", "qtbase_hr" },
        { QLocale(QLocale::Serbian, QLocale::LatinScript, QLocale::Serbia), "52.482,39", "qtbase_hr" },
        { QLocale(QLocale::Serbian, QLocale::CyrillicScript, QLocale::BosniaAndHerzegovina), "52.482,39", "qtbase_sr" },
        { QLocale(QLocale::English, QLocale::UnitedStates), "52,482.39", "" },
        { QLocale(QLocale::German, QLocale::Germany), "52.482,39", "qtbase_de_DE" },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(amountDisplay(Money::fromUnits(524823900), componentLocale(c.locale)), c.amount) << c.catalogue;
        EXPECT_EQ(qtCatalogueName(c.locale), c.catalogue) << c.locale.name().toStdString();
    }
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    EXPECT_TRUE(installQtTranslations()) << "qt6-translations-l10n (scripts/setup) gives qtbase_hr.qm";
    QLocale::setDefault(before);
    EXPECT_EQ(QCoreApplication::translate("QPrintPreviewDialog", "Page setup"), "Postavke stranice");
}
