// A renumbering killed in the middle (kill -9) leaves the embedded book whole: either
// every number and link is the old one or every one is new. The child is this test
// program itself, started with --renumber-child.
#include "books/Schema.h"
#include "browser/Renumbering.h"
#include "session/Session.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"

#include <QCoreApplication>
#include <QDate>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>
#include <gtest/gtest.h>

using namespace knjige;

namespace
{

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
    ASSERT_TRUE(createEmbeddedDatabase(path, &error)) << error.toStdString();
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

namespace knjige::test
{

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
