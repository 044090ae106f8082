// Writes other programs and processes meet: rows written by other programs (more
// decimals, a time of day) are found by value as the server compares them; two
// operators numbering at once never share a number; a renumbering killed in the middle
// (kill -9) leaves the book whole, every number and link old or every one new. The
// other processes are this test program itself (--renumber-child, or an operator run
// through its environment).
#include "books/Schema.h"
#include "browser/Renumbering.h"
#include "editors/EditorRules.h"
#include "session/Session.h"
#include "session/db/DatabaseBackend.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

using namespace knjige;

namespace
{

const QString kBook = QStringLiteral("dbo.KnjPrihRashFBiH");
const db::NumberSlot kSlot { QStringLiteral("RBroj"), { QStringLiteral("BrojPoduzeca"), QStringLiteral("GodinaKnj") } };

db::RowChange::Values entry(int rbroj, const QVariant& datum, const QVariant& iznos, const QString& opis)
{
    return { { "BrojPoduzeca", 1 }, { "RBroj", rbroj }, { "Datum", datum }, { "GodinaKnj", 2016 }, { "Opis", opis },
        { "Vrsta", 11 }, { "Iznos", iznos } };
}

constexpr int kEntries = 100000;
constexpr int kLinks = 20000;

// The book at `path` in one line: the integrity check; "old" when every entry has its
// first number, "new" when the numbers follow the dates, else "mixed"; the count,
// lowest and highest number; the links that do not point at their own entry.
std::string state(const QString& path)
{
    QString out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("provjera"));
        db.setDatabaseName(path);
        db.open();
        QSqlQuery q(db);
        q.exec(QStringLiteral(
            "SELECT (SELECT integrity_check FROM pragma_integrity_check) || ' ' || CASE "
            "WHEN (SELECT COUNT(*) FROM KnjPrihRashFBiH WHERE RBroj = CAST(Opis AS INTEGER)) = %1 THEN 'old' "
            "WHEN (SELECT COUNT(*) FROM (SELECT Datum, Vrsta, LAG(Datum) OVER w AS D, LAG(Vrsta) OVER w AS V FROM "
            "KnjPrihRashFBiH WINDOW w AS (ORDER BY RBroj)) WHERE D > Datum OR (D = Datum AND V > Vrsta)) = 0 "
            "THEN 'new' ELSE 'mixed' END || ' ' || "
            "(SELECT COUNT(DISTINCT RBroj) || ',' || MIN(RBroj) || ',' || MAX(RBroj) FROM KnjPrihRashFBiH) || ' ' || "
            "(SELECT COUNT(*) FROM KnjEvidPotrIObvFBiH E JOIN KnjPrihRashFBiH K ON K.Opis = E.Opis "
            "WHERE E.RBrojKPR <> K.RBroj)")
                   .arg(kEntries));
        if (q.next())
            out = q.value(0).toString();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("provjera"));
    return out.toStdString();
}

// Entries numbered 1..n out of date order and labelled with their number; receivables
// linked to them, labelled with the number they link to.
void fill(const QString& path)
{
    QString error;
    ASSERT_TRUE(books::createEmbeddedDatabase(path, &error)) << error.toStdString();
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("punjenje"));
    db.setDatabaseName(path);
    db.open();
    db.transaction();
    QSqlQuery q(db);
    q.prepare("INSERT INTO KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta) VALUES (1,?,?,2016,?,?)");
    for (int i = 1; i <= kEntries; ++i) {
        q.addBindValue(i);
        q.addBindValue(QDate(2016, 1, 1).addDays(i * 7919 % 366).toString(Qt::ISODate));
        q.addBindValue(QString::number(i));
        q.addBindValue(11 + i % 3);
        q.exec();
    }
    q.prepare("INSERT INTO KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,GodinaKnj,Opis,RBrojKPR) VALUES (1,?,2016,?,?)");
    for (int j = 1; j <= kLinks; ++j) {
        q.addBindValue(j);
        q.addBindValue(QString::number(j * 37 % kEntries + 1));
        q.addBindValue(j * 37 % kEntries + 1);
        q.exec();
    }
    db.commit();
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
        for (const auto kind : { db::RowChange::Kind::Update, db::RowChange::Kind::Delete }) {
            const int listRow = kind == db::RowChange::Kind::Update ? 0 : 1;
            const db::ResultSet row = editors::singleRow(t.query(editors::readEntrySql(96, 2016, 1, 5)), listRow);
            db::RowChange change { kind, kBook, {}, {} };
            for (int c = 0; c < row.fieldCount(); ++c)
                change.original.append({ row.field(c).name, row.value(0, c) });
            if (kind == db::RowChange::Kind::Update)
                change.values = { { "Opis", QStringLiteral("Ispravljeno") } };
            EXPECT_TRUE(t.db().writeRow(change)) << iznos << t.db().errorDescription().toStdString();
        }
        const db::ResultSet rs = t.query(QStringLiteral("SELECT Opis FROM dbo.KnjPrihRashFBiH"));
        ASSERT_EQ(rs.rowCount(), 1) << iznos;
        EXPECT_EQ(rs.text(0, 0), QStringLiteral("Ispravljeno")) << iznos;
    }

    db::RowChange change { db::RowChange::Kind::Delete, kBook, entry(5, {}, {}, {}),
        { { "Datum", QDate(2016, 3, 15) }, { "Iznos", test::money(12.3457) } } };
    EXPECT_EQ(db::rowStatement(change, db::SqlDialect::SqlServer).sql,
        QStringLiteral("DELETE TOP (1) FROM dbo.KnjPrihRashFBiH WHERE Datum >= ? AND Datum < ? AND Iznos >= ? "
                       "AND Iznos <= ?"));
    EXPECT_EQ(db::insertIfFreeStatement(change, kSlot, db::SqlDialect::SqlServer).sql,
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
    db::Database db;
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
        db::RowChange change { db::RowChange::Kind::Insert, kBook,
            entry(proposed, QDate(2016, 5, 1), test::money(1), {}), {} };
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
    const db::ResultSet rs = t.query("SELECT COUNT(DISTINCT RBroj) AS N, MAX(RBroj) AS M FROM " + kBook);
    EXPECT_EQ(rs.integer(0, 0), 400);
    EXPECT_EQ(rs.integer(0, 1), 400);
    EXPECT_GT(moved, 0) << "the two operators never met: the race was not tried";
}

namespace knjige::test
{

int renumberChild(const QString& path)
{
    session().ConnString = path;
    session().BrojPoduzeca = 1;
    session().RadnaGodina = 2016;
    ScopedScript script;
    script->answers.enqueue(Answer::Yes);
    return browser::renumber::byDate(browser::renumber::sessionBook(96)).after == browser::renumber::After::Reload ? 0
                                                                                                                   : 1;
}

} // namespace knjige::test

TEST(RenumberingCrash, AKilledRenumberingLeavesEveryNumberOldOrEveryNumberNew)
{
    const QString master = test::scratchDir() + QStringLiteral("/sto-tisuca.db");
    fill(master);
    QSqlDatabase::removeDatabase(QStringLiteral("punjenje"));

    // Killed while it writes, and left to finish.
    for (int afterFirstWrite : { 60, -1 }) {
        const QString path = test::scratchDir() + QStringLiteral("/renumber-%1.db").arg(afterFirstWrite);
        ASSERT_TRUE(QFile::copy(master, path));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--renumber-child"), path });
        if (afterFirstWrite < 0) {
            ASSERT_TRUE(child.waitForFinished(20000));
        } else {
            // The write-ahead log (or a rollback journal) takes the transaction's first
            // written pages.
            const auto writing = [&path] {
                return QFile(path + QStringLiteral("-wal")).size() > 0
                    || QFile(path + QStringLiteral("-journal")).size() > 0;
            };
            for (int waited = 0; !writing(); ++waited) {
                ASSERT_LT(waited, 20000) << "the child never began to write";
                QThread::msleep(1);
            }
            QThread::msleep(afterFirstWrite);
            child.kill();
            child.waitForFinished();
            EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
        }

        const std::string now = state(path);
        EXPECT_TRUE(now == "ok new 100000,1,100000 0" || (afterFirstWrite >= 0 && now == "ok old 100000,1,100000 0"))
            << now;
    }
}
