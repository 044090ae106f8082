// A renumbering killed in the middle (kill -9) leaves the embedded book whole: either
// every number and link is the old one or every one is new. The child is this test
// program itself, started with --renumber-child.
#include "browser/Renumbering.h"
#include "books/Schema.h"
#include "session/Session.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDate>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>

using namespace knjige;

namespace {

constexpr int kEntries = 100000;
constexpr int kLinks = 20000;

// Runs `sql` on its own connection to `path` and gives the first column of the first row.
QString scalar(const QString& path, const QString& sql)
{
    QString out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("provjera"));
        db.setDatabaseName(path);
        db.open();
        QSqlQuery q(db);
        if (q.exec(sql) && q.next())
            out = q.value(0).toString();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("provjera"));
    return out;
}

// Entries numbered 1..n out of date order, each labelled with its number; receivables
// linked to them, labelled with the number they link to.
void fill(const QString& path)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("punjenje"));
    db.setDatabaseName(path);
    db.open();
    db.transaction();
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Vrsta) "
                             "VALUES (1,?,?,2016,?,?)"));
    for (int i = 1; i <= kEntries; ++i) {
        q.addBindValue(i);
        q.addBindValue(QDate(2016, 1, 1).addDays(i * 7919 % 366).toString(Qt::ISODate));
        q.addBindValue(QString::number(i));
        q.addBindValue(11 + i % 3);
        q.exec();
    }
    q.prepare(QStringLiteral("INSERT INTO KnjEvidPotrIObvFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,RBrojKPR) "
                             "VALUES (1,?,'2016-05-05',2016,?,?)"));
    for (int j = 1; j <= kLinks; ++j) {
        const int target = j * 37 % kEntries + 1;
        q.addBindValue(j);
        q.addBindValue(QString::number(target));
        q.addBindValue(target);
        q.exec();
    }
    db.commit();
    db.close();
}

} // namespace

namespace knjige::test {

int renumberChild(const QString& path)
{
    session().ConnString = path;
    session().BrojPoduzeca = 1;
    session().RadnaGodina = 2016;
    ScopedScript script;
    script->answers.enqueue(Answer::Yes);
    return renumber::byDate(renumber::sessionBook(96)) == renumber::After::Reload ? 0 : 1;
}

} // namespace knjige::test

TEST(RenumberingCrash, AKilledRenumberingLeavesEveryNumberOldOrEveryNumberNew)
{
    const QString master = test::scratchDir() + QStringLiteral("/sto-tisuca.db");
    QString error;
    ASSERT_TRUE(createEmbeddedDatabase(master, &error)) << error.toStdString();
    fill(master);
    QSqlDatabase::removeDatabase(QStringLiteral("punjenje"));

    // Killed as the first page is written, well into the writing, and not at all.
    for (int afterFirstWrite : { 0, 150, -1 }) {
        const QString path = test::scratchDir() + QStringLiteral("/renumber-%1.db").arg(afterFirstWrite);
        ASSERT_TRUE(QFile::copy(master, path));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--renumber-child"), path });
        if (afterFirstWrite < 0) {
            ASSERT_TRUE(child.waitForFinished(20000));
        } else {
            // The rollback journal appears with the transaction's first write.
            for (int waited = 0; QFile(path + QStringLiteral("-journal")).size() == 0; ++waited) {
                ASSERT_LT(waited, 20000) << "the child never began to write";
                QThread::msleep(1);
            }
            QThread::msleep(afterFirstWrite);
            child.kill();
            child.waitForFinished();
            EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
        }

        EXPECT_EQ(scalar(path, QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
        const int old = scalar(path, QStringLiteral("SELECT COUNT(*) FROM KnjPrihRashFBiH WHERE RBroj = "
                                                    "CAST(Opis AS INTEGER)")).toInt();
        const int outOfOrder = scalar(path, QStringLiteral("SELECT COUNT(*) FROM (SELECT Datum, Vrsta, LAG(Datum) OVER "
                                                           "(ORDER BY RBroj) AS D, LAG(Vrsta) OVER (ORDER BY RBroj) AS V "
                                                           "FROM KnjPrihRashFBiH) WHERE D > Datum OR (D = Datum AND "
                                                           "V > Vrsta)")).toInt();
        EXPECT_EQ(scalar(path, QStringLiteral("SELECT COUNT(DISTINCT RBroj) || ',' || MIN(RBroj) || ',' || MAX(RBroj) "
                                              "FROM KnjPrihRashFBiH")),
                  QStringLiteral("%1,1,%1").arg(kEntries));
        EXPECT_TRUE(old == kEntries || outOfOrder == 0) << old << " old, " << outOfOrder << " out of date order";
        if (afterFirstWrite < 0) {
            EXPECT_EQ(outOfOrder, 0) << "a renumbering left to finish orders the book by date";
        }
        EXPECT_EQ(scalar(path, QStringLiteral("SELECT COUNT(*) FROM KnjEvidPotrIObvFBiH E JOIN KnjPrihRashFBiH K ON "
                                              "K.Opis = E.Opis WHERE E.RBrojKPR <> K.RBroj")),
                  QStringLiteral("0"))
            << "every link stays on its own entry";
    }
}
