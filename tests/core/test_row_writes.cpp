// Writing single rows: rows written by other programs (more decimals, a time of day)
// are found by value as the server compares them, and new entries never share a
// proposed number with an entry someone else saved meanwhile, even across processes.
#include "editors/EditorRules.h"
#include "session/DatabaseBackend.h"
#include "session/Session.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using namespace knjige;
using knjige::test::TestDatabase;

namespace {

const QString kBook = QStringLiteral("dbo.KnjPrihRashFBiH");

RowChange::Values entry(int rbroj, const QVariant& datum, const QVariant& iznos, const QString& opis)
{
    return {{"BrojPoduzeca", 1}, {"RBroj", rbroj}, {"Datum", datum}, {"GodinaKnj", 2016},
            {"Isprava", QStringLiteral("KIF")}, {"Opis", opis}, {"Vrsta", 11}, {"Iznos", iznos}};
}

// The entry as an editor reads it, changed or deleted the way an editor does.
bool rewrite(TestDatabase& t, RowChange::Kind kind, int rbroj, int listRow)
{
    const ResultSet read = t.query(editors::readEntrySql(96, 2016, 1, rbroj));
    const ResultSet row = editors::singleRow(read, listRow);
    RowChange change;
    change.kind = kind;
    change.table = kBook;
    for (int c = 0; c < row.fieldCount(); ++c)
        change.original.append({row.field(c).name, row.value(0, c)});
    if (kind == RowChange::Kind::Update)
        change.values = {{"Opis", QStringLiteral("Ispravljeno")}};
    return t.db().writeRow(change);
}

} // namespace

TEST(RowWrites, RowsOfOtherProgramsAreChangedAndDeletedOneAtATime)
{
    struct Case {
        QVariant datum; // as another program stored it
        double iznos;
    };
    const Case cases[] = {
        {QStringLiteral("2016-03-15 10:30:00"), 12.345678},
        {QStringLiteral("2016-03-15T23:59:59.997"), -0.00004},
        {QDate(2016, 3, 15), 1e11 + 0.123456},
    };
    for (const Case& c : cases) {
        TestDatabase t;
        // Two entries alike in all but the amount's sixth decimal: exactly one changes.
        t.insert(kBook, entry(5, c.datum, c.iznos, QStringLiteral("Prvi")));
        t.insert(kBook, entry(5, c.datum, c.iznos + 0.0003, QStringLiteral("Drugi")));
        ASSERT_TRUE(rewrite(t, RowChange::Kind::Update, 5, 0)) << t.db().errorDescription().toStdString();
        ResultSet rs = t.query(QStringLiteral("SELECT Opis FROM dbo.KnjPrihRashFBiH ORDER BY Iznos"));
        ASSERT_EQ(rs.rowCount(), 2);
        EXPECT_EQ(rs.text(0, 0), QStringLiteral("Ispravljeno")) << c.iznos;
        EXPECT_EQ(rs.text(1, 0), QStringLiteral("Drugi")) << c.iznos;

        ASSERT_TRUE(rewrite(t, RowChange::Kind::Delete, 5, 1)) << t.db().errorDescription().toStdString();
        rs = t.query(QStringLiteral("SELECT Opis FROM dbo.KnjPrihRashFBiH"));
        ASSERT_EQ(rs.rowCount(), 1);
        EXPECT_EQ(rs.text(0, 0), QStringLiteral("Ispravljeno"));
    }

    RowChange change;
    change.kind = RowChange::Kind::Delete;
    change.table = kBook;
    change.original = {{"RBroj", 5}, {"Datum", QDate(2016, 3, 15)}, {"Iznos", test::money(12.3457)}};
    const BoundStatement server = rowStatement(change, SqlDialect::SqlServer);
    EXPECT_EQ(server.sql, QStringLiteral("DELETE TOP (1) FROM dbo.KnjPrihRashFBiH WHERE RBroj = ? AND "
                                         "Datum >= ? AND Datum < ? AND Iznos >= ? AND Iznos <= ?"));
    ASSERT_EQ(server.values.size(), 5);
    EXPECT_EQ(server.values.mid(0, 3), (QVariantList{5, QDate(2016, 3, 15), QDate(2016, 3, 16)}));
    EXPECT_NEAR(server.values[3].toDouble(), 12.34565, 1e-12);
    EXPECT_NEAR(server.values[4].toDouble(), 12.34575, 1e-12);
}

TEST(RowWrites, AProposedNumberTakenMeanwhileGivesTheNextFreeOne)
{
    TestDatabase t;
    const NumberSlot slot{QStringLiteral("RBroj"), {QStringLiteral("BrojPoduzeca"), QStringLiteral("GodinaKnj")}};
    RowChange change;
    change.table = kBook;
    t.insert(kBook, entry(7, QDate(2016, 1, 2), test::money(1), QStringLiteral("Tuđa")));
    // Another company's numbers do not count.
    t.insert(kBook, {{"BrojPoduzeca", 2}, {"RBroj", 40}, {"GodinaKnj", 2016}, {"Datum", QDate(2016, 1, 2)}});
    struct Case {
        int proposed;
        qint64 saved;
    };
    for (const Case& c : {Case{3, 3}, Case{7, 8}, Case{3, 9}, Case{12, 12}}) {
        change.values = entry(c.proposed, QDate(2016, 1, 3), test::money(2), QStringLiteral("Moja"));
        qint64 saved = 0;
        ASSERT_TRUE(t.db().insertUnderFreeNumber(change, slot, &saved)) << t.db().errorDescription().toStdString();
        EXPECT_EQ(saved, c.saved) << c.proposed;
    }
    EXPECT_EQ(t.count(kBook), 6);
    EXPECT_EQ(insertIfFreeStatement(change, slot, SqlDialect::SqlServer).sql,
              QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,"
                             "Iznos) SELECT ?,?,?,?,?,?,?,? WHERE NOT EXISTS (SELECT 1 FROM dbo.KnjPrihRashFBiH WITH "
                             "(UPDLOCK, HOLDLOCK) WHERE RBroj = ? AND BrojPoduzeca = ? AND GodinaKnj = ?)"));
}

// One of the two operators of the test below: proposes the next number as the browser
// does, keeps the dialog open a moment, saves, and notes what it proposed and got.
TEST(RowWritesOperator, EntersTwoHundredEntries)
{
    const QString path = qEnvironmentVariable("KNJIGE_OPERATOR_DB");
    if (path.isEmpty())
        GTEST_SKIP() << "run by RowWrites.TwoOperatorsNeverShareANumber";
    Database db;
    ASSERT_TRUE(db.connect(QStringLiteral("sqlite:") + path)) << db.errorDescription().toStdString();
    // What is tried is who gets which number, not whether a commit survives a power cut.
    ASSERT_TRUE(db.execute(QStringLiteral("PRAGMA synchronous=OFF"))) << db.errorDescription().toStdString();
    QFile log(qEnvironmentVariable("KNJIGE_OPERATOR_LOG"));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    const NumberSlot slot{QStringLiteral("RBroj"), {QStringLiteral("BrojPoduzeca"), QStringLiteral("GodinaKnj")}};
    for (int i = 0; i < 200; ++i) {
        ResultSet next;
        ASSERT_TRUE(db.open(QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrihRashFBiH WHERE "
                                           "BROJPODUZECA=1 AND GODINAKNJ=2016"),
                            next));
        const int proposed = int(next.integer(0, 0)) + 1;
        QThread::usleep(QRandomGenerator::global()->bounded(1500));
        RowChange change;
        change.table = kBook;
        change.values = entry(proposed, QDate(2016, 5, 1), test::money(i + 1), QStringLiteral("Operater"));
        qint64 saved = 0;
        ASSERT_TRUE(db.insertUnderFreeNumber(change, slot, &saved)) << db.errorDescription().toStdString();
        log.write(QByteArray::number(proposed) + ' ' + QByteArray::number(saved) + '\n');
    }
}

TEST(RowWrites, TwoOperatorsNeverShareANumber)
{
    if (qEnvironmentVariableIsSet("KNJIGE_OPERATOR_DB"))
        GTEST_SKIP();
    TestDatabase t;
    QTemporaryDir logs;
    QProcess operators[2];
    for (int i = 0; i < 2; ++i) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("KNJIGE_OPERATOR_DB"), t.path());
        env.insert(QStringLiteral("KNJIGE_OPERATOR_LOG"), logs.filePath(QString::number(i)));
        operators[i].setProcessEnvironment(env);
        operators[i].start(QCoreApplication::applicationFilePath(),
                           {QStringLiteral("--gtest_filter=RowWritesOperator.*")});
    }
    for (QProcess& p : operators) {
        ASSERT_TRUE(p.waitForFinished(120000));
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardOutput().toStdString();
    }
    QSet<qint64> saved;
    int moved = 0;
    for (int i = 0; i < 2; ++i) {
        QFile log(logs.filePath(QString::number(i)));
        ASSERT_TRUE(log.open(QIODevice::ReadOnly));
        for (const QByteArray& line : log.readAll().split('\n')) {
            const QList<QByteArray> pair = line.split(' ');
            if (pair.size() != 2)
                continue;
            // Every entry not saved under its proposal was reported with its new number.
            moved += pair[0] != pair[1];
            saved.insert(pair[1].toLongLong());
        }
    }
    EXPECT_EQ(saved.size(), 400) << "each entry under a number of its own";
    const ResultSet rs = t.query(QStringLiteral("SELECT COUNT(DISTINCT RBroj) AS N, MAX(RBroj) AS M, COUNT(*) AS C "
                                                "FROM dbo.KnjPrihRashFBiH"));
    EXPECT_EQ(rs.integer(0, 0), 400);
    EXPECT_EQ(rs.integer(0, 1), 400);
    EXPECT_EQ(rs.integer(0, 2), 400);
    EXPECT_GT(moved, 0) << "the two operators never met: the race was not tried";
}
