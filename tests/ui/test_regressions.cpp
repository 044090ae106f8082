// Faults found by using the product end to end, each pinned where it was fixed.

#include "books/BookKind.h"
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "host/Cli.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/widgets/ReportPrinter.h"
#include "session/Session.h"
#include "session/db/Database.h"
#include "session/db/ResultSet.h"
#include "session/widgets/DateTyping.h"
#include "session/widgets/DialogInteraction.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"
#include "test_editor_fixture.h"

#include <QAction>
#include <QApplication>
#include <QDateEdit>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QProcess>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace knjige;

namespace
{

int partners(db::Database& db)
{
    db::ResultSet rs;
    EXPECT_TRUE(db.open(QStringLiteral("SELECT COUNT(*) AS N FROM dbo.Komitent"), rs))
        << db.errorDescription().toStdString();
    return rs.rowCount() == 1 ? int(rs.integer(0, 0)) : -1;
}

#ifdef KNJIGE_PROGRAM
// The other program on the same file: `knjige query`; its standard output.
std::string otherProgram(const QString& db, const QString& sql)
{
    QProcess p;
    p.start(QStringLiteral(KNJIGE_PROGRAM), { QStringLiteral("query"), QStringLiteral("--db"), db, sql });
    EXPECT_TRUE(p.waitForFinished(60000));
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return p.readAllStandardOutput().toStdString();
}

// Lets every file system model under `dialog` list `folder` whole, as a person's
// dialog does while it stands open.
void listWhole(QWidget& dialog, const QString& folder)
{
    const int files = int(QDir(folder).entryList(QDir::Files).size());
    const QDeadlineTimer enough(20000);
    for (QFileSystemModel* model : dialog.findChildren<QFileSystemModel*>()) {
        while (model->rowCount(model->index(folder)) < files && !enough.hasExpired()) {
            model->fetchMore(model->index(folder));
            QTest::qWait(10);
        }
        for (int r = 0; r < model->rowCount(model->index(folder)); ++r)
            model->data(model->index(r, 0, model->index(folder)), Qt::DecorationRole);
        EXPECT_EQ(model->rowCount(model->index(folder)), files) << folder.toStdString();
    }
    QApplication::processEvents();
}

#endif

} // namespace

#ifdef KNJIGE_PROGRAM
// A file chooser or the print preview's printer dialog listing the database's folder
// opened and closed the database, its -wal and its -shm to sniff their types; that close
// dropped every lock SQLite held, the next program to close the file deleted the
// write-ahead log under the open connection, and the rows it saved after that were seen
// by nobody and, at its close, written over the other program's. And the printer
// dialog's print to file, named as the database, truncated it.
TEST(Regression, ListingTheDatabasesFolderLosesNoSavedRow)
{
    test::TestDatabase t;
    test::ScopedScript script;
    const QString folder = QFileInfo(t.path()).absolutePath();
    const QString home = qEnvironmentVariable("HOME");
    const QString workingFolder = QDir::currentPath();
    // The printer dialog completes file names from the home folder, the preview
    // proposes the working one.
    const auto restore = qScopeGuard([&] {
        qputenv("HOME", home.toLocal8Bit());
        QDir::setCurrent(workingFolder);
    });
    qputenv("HOME", folder.toLocal8Bit());
    QDir::setCurrent(folder);
    t.exec(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (1, 'prvi')"));

    const auto chooser = fileChooser({ QStringLiteral("Izvorna baza"), folder, {}, {}, {} }, QFileDialog::AcceptOpen);
    chooser->show();
    listWhole(*chooser, folder);
    chooser->reject();

    bool printerDialog = false;
    script->onDialog = [&](QDialog& dialog) {
        auto* preview = qobject_cast<QPrintPreviewDialog*>(&dialog);
        if (!preview)
            return 0;
        preview->show();
        QApplication::processEvents();
        QTimer::singleShot(0, [&] {
            if (auto* printer = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget())) {
                printerDialog = true;
                listWhole(*printer, folder);
                // Printing to a file named as the database: the toolkit asks whether to
                // replace it, the person says yes, and the printout still refuses.
                printer->findChild<QLineEdit*>(QStringLiteral("filename"))->setText(t.path());
                QTimer::singleShot(0, [] {
                    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                        box->button(QMessageBox::Yes)->click();
                });
                printer->accept();
            }
        });
        for (QAction* a : preview->findChildren<QAction*>())
            if (a->text().remove(u'&') == QCoreApplication::translate("QPrintPreviewDialog", "Print")) {
                a->trigger();
                break;
            }
        preview->reject();
        return 0;
    };
    const db::ResultSet rows = t.query(books::findBook(96)->selectSql);
    output::ReportPrinter(
        output::report::bookLayout(96, 0), output::report::bookHeader(browser::openingQuery(96, 1, 2016), rows), rows)
        .preview(nullptr);
    EXPECT_TRUE(printerDialog);
    EXPECT_EQ(script->texts().join(u'\n').toStdString(),
        QStringLiteral("Desila se greška: Datoteka %1 je baza podataka s kojom program radi (ili njena pomoćna "
                       "datoteka) i ne smije se prepisati. Izaberite drugu datoteku.")
            .arg(t.path())
            .toStdString());

    const QString list = QStringLiteral("SELECT SifKomit FROM dbo.Komitent ORDER BY SifKomit");
    EXPECT_EQ(otherProgram(t.path(), list), "SifKomit\n1\n");
    t.exec(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (2, 'drugi')"));
    EXPECT_EQ(otherProgram(t.path(), list), "SifKomit\n1\n2\n");
    otherProgram(t.path(), QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (3, 'treći')"));
    session().db().disconnect();
    EXPECT_EQ(otherProgram(t.path(), list), "SifKomit\n1\n2\n3\n");

    // Connections of this process on the one file still share its locks, and a close
    // of another descriptor (as the dialogs did) takes none of them.
    db::Database a, b;
    ASSERT_TRUE(a.connect(QStringLiteral("sqlite:") + t.path()));
    ASSERT_TRUE(b.connect(QStringLiteral("sqlite:") + t.path()));
    ASSERT_TRUE(a.execute(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (4, 'a')")));
    ASSERT_TRUE(b.execute(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (5, 'b')")));
    a.disconnect();
    for (const char* suffix : { "", "-wal", "-shm" }) {
        QFile file(t.path() + QLatin1String(suffix));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << suffix;
    }
    otherProgram(t.path(), QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (6, 'drugi')"));
    ASSERT_TRUE(b.execute(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit, ImeKomit1) VALUES (7, 'b')")));
    EXPECT_EQ(otherProgram(t.path(), list), "SifKomit\n1\n2\n3\n4\n5\n6\n7\n");
    b.disconnect();
    // The last close took the whole file: no lock of this process outlived it.
    EXPECT_FALSE(QFileInfo::exists(t.path() + QStringLiteral("-wal")));
    EXPECT_EQ(otherProgram(t.path(), list), "SifKomit\n1\n2\n3\n4\n5\n6\n7\n");
}
#endif

// A program that still had the old demo database open left its write-ahead log beside
// the name; "init --force" used to let SQLite replay it into the new database, which
// then showed the old file's changes (here: no partners at all).
TEST(Regression, InitForceStartsFromAFreshFileWhateverTheOldOneLeftBeside)
{
    const QString path = test::scratchDir() + QStringLiteral("/zamjena.db");
    const QStringList init = { QStringLiteral("--db"), path, QStringLiteral("--demo"), QStringLiteral("--force") };
    ASSERT_EQ(host::cli::runInit(init), 0);
    db::Database old;
    ASSERT_TRUE(old.connect(QStringLiteral("sqlite:") + path));
    const int demoPartners = partners(old);
    ASSERT_GT(demoPartners, 0);
    ASSERT_TRUE(old.execute(QStringLiteral("DELETE FROM dbo.Komitent")));

    ASSERT_EQ(host::cli::runInit(init), 0);
    db::Database fresh;
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
        QDate shown = { 2016, 3, 20 };
    };
    const Case cases[] = {
        { 98, "15.03.2016", { 2016, 3, 15 } },
        { 105, "31.12.2016", { 2016, 12, 31 } },
        { 96, "01.01.2016", { 2016, 1, 1 } },
        { 109, "1.3.2016", { 2016, 3, 1 } },
        { 125, "31122016", { 2016, 12, 31 } },
        { 96, "31.03.2026", { 2026, 3, 31 }, { 2026, 11, 25 } },
        { 97, "31032026", { 2026, 3, 31 }, { 2026, 11, 25 } },
        { 98, "31.12.2026", { 2026, 12, 31 }, { 2026, 11, 25 } },
        { 109, "29.02.2028", { 2028, 2, 29 }, { 2026, 11, 25 } },
        { 96, "29.02.2027", {}, { 2026, 11, 25 } },
        { 125, "31.11.2026", {}, { 2026, 9, 25 } },
    };
    for (const Case& c : cases) {
        std::unique_ptr<editors::RecordEditor> e = editors::createEditor(c.book);
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
                QStringList { QStringLiteral("Datum %1 ne postoji. Upišite ispravan datum.").arg(c.typed) });
            EXPECT_TRUE(e->isVisible()) << c.typed;
            EXPECT_TRUE(e->dpDatum->hasFocus()) << c.typed;
            // A date chosen in the calendar takes the place of the one typed.
            e->dpDatum->setDate(c.shown);
            EXPECT_EQ(static_cast<DateField*>(e->dpDatum)->typedDateProblem(), QString()) << c.typed;
        });
    }
}
