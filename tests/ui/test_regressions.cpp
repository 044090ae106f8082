// Faults found by using the product end to end, each pinned where it was fixed.

#include "host/Cli.h"
#include "session/Database.h"
#include "session/ResultSet.h"
#include "support/Sandbox.h"

#include <gtest/gtest.h>

using namespace knjige;

namespace {

int partners(Database& db)
{
    ResultSet rs;
    EXPECT_TRUE(db.open(QStringLiteral("SELECT COUNT(*) AS N FROM dbo.Komitent"), rs)) << db.errorDescription().toStdString();
    return rs.rowCount() == 1 ? int(rs.integer(0, 0)) : -1;
}

} // namespace

// A program that still had the old demo database open left its write-ahead log beside
// the name; "init --force" used to let SQLite replay it into the new database, which
// then showed the old file's changes (here: no partners at all).
TEST(Regression, InitForceStartsFromAFreshFileWhateverTheOldOneLeftBeside)
{
    const QString path = test::scratchDir() + QStringLiteral("/zamjena.db");
    const QStringList init = {QStringLiteral("--db"), path, QStringLiteral("--demo"), QStringLiteral("--force")};
    ASSERT_EQ(cli::runInit(init), 0);
    Database old;
    ASSERT_TRUE(old.connect(QStringLiteral("sqlite:") + path));
    const int demoPartners = partners(old);
    ASSERT_GT(demoPartners, 0);
    ASSERT_TRUE(old.execute(QStringLiteral("DELETE FROM dbo.Komitent")));

    ASSERT_EQ(cli::runInit(init), 0);
    Database fresh;
    ASSERT_TRUE(fresh.connect(QStringLiteral("sqlite:") + path));
    EXPECT_EQ(partners(fresh), demoPartners);
}
