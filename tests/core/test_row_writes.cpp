// Rows written by other programs (more decimals, a time of day) are found by value as
// the server compares them; two operators numbering at once never share a number.
#include "editors/EditorRules.h"
#include "session/DatabaseBackend.h"
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

namespace
{

const QString kBook = QStringLiteral("dbo.KnjPrihRashFBiH");
const NumberSlot kSlot { QStringLiteral("RBroj"), { QStringLiteral("BrojPoduzeca"), QStringLiteral("GodinaKnj") } };

RowChange::Values entry(int rbroj, const QVariant& datum, const QVariant& iznos, const QString& opis)
{
    return { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", datum }, { "GodinaKnj", 2016 }, { "Opis", opis },
        { "Vrsta", 11 }, { "Iznos", iznos } };
}

} // namespace

TEST(RowWrites, RowsOfOtherProgramsAreChangedAndDeletedOneAtATime)
{
    const std::pair<QString, double> stored[] = { { "2016-03-15 10:30:00", 12.345678 },
        { "2016-03-15T23:59:59.997", -0.00004 }, { "2016-03-15", 1e11 + 0.123456 } };
    for (const auto& [datum, iznos] : stored) {
        test::TestDatabase t;
        // Alike in all but the amount's fourth decimal: exactly one row is meant.
        t.insert(kBook, entry(5, datum, iznos, QStringLiteral("Prvi")));
        t.insert(kBook, entry(5, datum, iznos + 0.0003, QStringLiteral("Drugi")));
        for (const auto kind : { RowChange::Kind::Update, RowChange::Kind::Delete }) {
            const int listRow = kind == RowChange::Kind::Update ? 0 : 1;
            const ResultSet row = editors::singleRow(t.query(editors::readEntrySql(96, 2016, 1, 5)), listRow);
            RowChange change { kind, kBook, {}, {} };
            for (int c = 0; c < row.fieldCount(); ++c)
                change.original.append({ row.field(c).name, row.value(0, c) });
            if (kind == RowChange::Kind::Update)
                change.values = { { "Opis", QStringLiteral("Ispravljeno") } };
            EXPECT_TRUE(t.db().writeRow(change)) << iznos << t.db().errorDescription().toStdString();
        }
        const ResultSet rs = t.query(QStringLiteral("SELECT Opis FROM dbo.KnjPrihRashFBiH"));
        ASSERT_EQ(rs.rowCount(), 1) << iznos;
        EXPECT_EQ(rs.text(0, 0), QStringLiteral("Ispravljeno")) << iznos;
    }

    RowChange change { RowChange::Kind::Delete, kBook, entry(5, {}, {}, {}),
        { { "Datum", QDate(2016, 3, 15) }, { "Iznos", test::money(12.3457) } } };
    EXPECT_EQ(rowStatement(change, SqlDialect::SqlServer).sql,
        QStringLiteral("DELETE TOP (1) FROM dbo.KnjPrihRashFBiH WHERE Datum >= ? AND Datum < ? AND Iznos >= ? "
                       "AND Iznos <= ?"));
    EXPECT_EQ(insertIfFreeStatement(change, kSlot, SqlDialect::SqlServer).sql,
        QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta,Iznos) "
                       "SELECT ?,?,?,?,?,?,? WHERE NOT EXISTS (SELECT 1 FROM dbo.KnjPrihRashFBiH WITH (UPDLOCK, "
                       "HOLDLOCK) WHERE RBroj = ? AND BrojPoduzeca = ? AND GodinaKnj = ?)"));
}

// One of the two operators below: proposes the next number as the browser does,
// keeps the dialog open a moment, saves, and notes what it proposed and got.
TEST(RowWritesOperator, EntersTwoHundredEntries)
{
    const QString path = qEnvironmentVariable("KNJIGE_OPERATOR_DB");
    if (path.isEmpty())
        GTEST_SKIP() << "run by RowWrites.TwoOperatorsNeverShareANumber";
    Database db;
    ASSERT_TRUE(db.connect(QStringLiteral("sqlite:") + path));
    // What is tried is who gets which number, not whether a commit survives a power cut.
    ASSERT_TRUE(db.execute(QStringLiteral("PRAGMA synchronous=OFF")));
    QFile log(qEnvironmentVariable("KNJIGE_OPERATOR_LOG"));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    for (int i = 0; i < 200; ++i) {
        const auto next = db.query(QStringLiteral("SELECT ISNULL(MAX(RBroj),0) AS BROJ FROM dbo.KnjPrihRashFBiH WHERE "
                                                  "BROJPODUZECA=1 AND GODINAKNJ=2016"));
        ASSERT_TRUE(next);
        const int proposed = int(next->integer(0, 0)) + 1;
        QThread::usleep(QRandomGenerator::global()->bounded(1500));
        RowChange change { RowChange::Kind::Insert, kBook, entry(proposed, QDate(2016, 5, 1), test::money(1), {}), {} };
        qint64 saved = 0;
        ASSERT_TRUE(db.insertUnderFreeNumber(change, kSlot, &saved)) << db.errorDescription().toStdString();
        log.write(QByteArray::number(proposed) + ' ' + QByteArray::number(saved) + '\n');
    }
}

TEST(RowWrites, TwoOperatorsNeverShareANumber)
{
    if (qEnvironmentVariableIsSet("KNJIGE_OPERATOR_DB"))
        GTEST_SKIP();
    test::TestDatabase t;
    QTemporaryDir logs;
    QProcess operators[2];
    for (int i = 0; i < 2; ++i) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("KNJIGE_OPERATOR_DB"), t.path());
        env.insert(QStringLiteral("KNJIGE_OPERATOR_LOG"), logs.filePath(QString::number(i)));
        operators[i].setProcessEnvironment(env);
        operators[i].start(QCoreApplication::applicationFilePath(), { "--gtest_filter=RowWritesOperator.*" });
    }
    QSet<QByteArray> saved;
    int moved = 0; // saved under another number than proposed, and so reported
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(operators[i].waitForFinished(120000));
        EXPECT_EQ(operators[i].exitCode(), 0) << operators[i].readAllStandardOutput().toStdString();
        QFile log(logs.filePath(QString::number(i)));
        ASSERT_TRUE(log.open(QIODevice::ReadOnly));
        for (const QByteArray& line : log.readAll().trimmed().split('\n')) {
            moved += line.split(' ').first() != line.split(' ').last();
            saved.insert(line.split(' ').last());
        }
    }
    EXPECT_EQ(saved.size(), 400) << "each entry under a number of its own";
    const ResultSet rs = t.query("SELECT COUNT(DISTINCT RBroj) AS N, MAX(RBroj) AS M FROM " + kBook);
    EXPECT_EQ(rs.integer(0, 0), 400);
    EXPECT_EQ(rs.integer(0, 1), 400);
    EXPECT_GT(moved, 0) << "the two operators never met: the race was not tried";
}
