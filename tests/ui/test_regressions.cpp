// Faults found by using the product end to end, each pinned where it was fixed.

#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "host/Cli.h"
#include "session/Database.h"
#include "session/ResultSet.h"
#include "session/widgets/DateTyping.h"
#include "support/Sandbox.h"
#include "test_editor_fixture.h"

#include <QApplication>
#include <QDateEdit>
#include <QTest>

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

using RegressionEditor = test::EditorTest;

// Every editor selects a field's whole text when it gains the focus; in a date picker
// that made the first digit typed a refused date. And a separator typed after a full
// day or month skipped the next part, so "15.03.2016" could not be typed either. A day
// the month shown before lacks was cut to fit it (31.03 typed over November became
// 30.03); a date that does not exist is refused with the date as typed.
TEST_F(RegressionEditor, ADateIsTypedIntoTheDatePickerAfterItGainsTheFocus)
{
    struct Case {
        int book;
        const char* typed;
        QDate date; // invalid: refused on saving
        QDate shown = {2016, 3, 20};
    };
    const Case cases[] = {
        {98, "15.03.2016", {2016, 3, 15}},
        {105, "31.12.2016", {2016, 12, 31}},
        {96, "01.01.2016", {2016, 1, 1}},
        {109, "1.3.2016", {2016, 3, 1}},
        {125, "31122016", {2016, 12, 31}},
        {96, "31.03.2026", {2026, 3, 31}, {2026, 11, 25}},
        {97, "31032026", {2026, 3, 31}, {2026, 11, 25}},
        {98, "31.12.2026", {2026, 12, 31}, {2026, 11, 25}},
        {109, "29.02.2028", {2028, 2, 29}, {2026, 11, 25}},
        {96, "29.02.2027", {}, {2026, 11, 25}},
        {125, "31.11.2026", {}, {2026, 9, 25}},
    };
    for (const Case& c : cases) {
        std::unique_ptr<RecordEditor> e = createEditor(c.book);
        e->setTipRada(1);
        run(*e, [&] {
            e->dpDatum->setDate(c.shown);
            e->ubRBroj->setFocus();
            e->dpDatum->setFocus();
            QApplication::processEvents();
            QTest::keyClicks(e->dpDatum, QString::fromLatin1(c.typed));
            if (c.date.isValid()) {
                EXPECT_EQ(e->dpDatum->date(), c.date) << c.book << " " << c.typed;
                return;
            }
            script->clear();
            e->ubRBroj->setFocus();
            e->cmdSpremi->click();
            EXPECT_EQ(script->texts(),
                QStringList{QStringLiteral("Datum %1 ne postoji. Upišite ispravan datum.").arg(c.typed)});
            EXPECT_TRUE(e->isVisible()) << c.typed;
            EXPECT_TRUE(e->dpDatum->hasFocus()) << c.typed;
            // A date chosen in the calendar takes the place of the one typed.
            e->dpDatum->setDate(c.shown);
            EXPECT_EQ(static_cast<DateField*>(e->dpDatum)->typedDateProblem(), QString()) << c.typed;
        });
    }
}
