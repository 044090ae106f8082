// Pictures for the documentation and for a look at layouts, drawn on the demonstration
// company: every book's browser, every record editor in each mode, the renumbering
// questions and a book before and after renumbering. Each runs only when its
// environment variable names the folder to write to.
#include "books/BookKind.h"
#include "books/DemoData.h"
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/RecordEditor.h"
#include "journal/PeriodLock.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "session/widgets/DialogInteraction.h"
#include "test_browser_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QMessageBox>
#include <QPixmap>
#include <QScreen>
#include <QTimer>

using namespace knjige;
using namespace knjige::test;

// Pictures of every book's browser on the demonstration company, for the
// documentation and for a look at column widths and totals. Runs only when
// KNJIGE_SCREENSHOT_DIR names the folder to write to.
TEST_F(BrowserTest, ScreenshotsOfEveryBookOnDemoData)
{
    const QString dir = qEnvironmentVariable("KNJIGE_SCREENSHOT_DIR");
    if (dir.isEmpty())
        GTEST_SKIP() << "set KNJIGE_SCREENSHOT_DIR to write the pictures";
    QDir().mkpath(dir);
    ASSERT_TRUE(fillDemo(db->db(), 2016));
    // The filter form is answered as an operator would: the trade books get the first
    // shop, and book 96 drawn a second time gets March.
    QDate from;
    script->onDialog = [&from](QDialog& d) {
        auto* e = dynamic_cast<RecordEditor*>(&d);
        if (!e)
            return int(QDialog::Rejected);
        e->setSkladište(demo::Maloprodaja1);
        if (from.isValid()) {
            e->dpDatum->setDate(from);
            e->dpDatumDo->setDate(from.addMonths(1).addDays(-1));
        }
        e->cmdSpremi->click();
        return e->result();
    };
    auto shoot = [&](int code, const QString& name) {
        auto w = open(code);
        ASSERT_TRUE(w->jePrikazan());
        if (from.isValid())
            w->PostaviFilter();
        // Wider than the default window, so that every summed column is in the picture.
        w->resize(1240, 520);
        QApplication::processEvents();
        const QPixmap picture = w->grab();
        ASSERT_FALSE(picture.isNull());
        EXPECT_TRUE(picture.save(dir + u'/' + name));
        w->close();
    };
    for (const BookKind& book : allBooks())
        shoot(book.code, QStringLiteral("browser-%1.png").arg(book.code));
    from = QDate(2016, 3, 1);
    shoot(96, "browser-96-filter.png");
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}

// Pictures of every book's record editor in each mode, opened from the browser on the
// demonstration company as an operator opens it (F9, Enter, the filter, Delete), for
// the documentation and for a look at the layout. Runs only when
// KNJIGE_EDITOR_SCREENSHOTS names the folder to write to.
using EditorScreenshots = BrowserTest;

TEST_F(EditorScreenshots, EveryBookInEveryMode)
{
    const QString out = qEnvironmentVariable("KNJIGE_EDITOR_SCREENSHOTS");
    if (out.isEmpty())
        GTEST_SKIP() << "set KNJIGE_EDITOR_SCREENSHOTS to a folder";
    QDir().mkpath(out);
    ASSERT_TRUE(fillDemo(db->db(), 2016));
    for (const BookKind& book : allBooks())
        for (int mode = 1; mode <= 4; ++mode) {
            // The editor as an operator opens it, saved as editor-<book>-<mode>.png, then cancelled.
            auto w = open(book.code);
            ASSERT_TRUE(w->jePrikazan()) << book.code;
            if (isTradeBook(book.code))
                change(*w, [](browser::BookQuery& q) { q.filter.salesPoint = demo::Maloprodaja1; });
            const QString file = QDir(out).filePath(QStringLiteral("editor-%1-%2.png").arg(book.code).arg(mode));
            int shown = 0;
            script->onDialog = [&](QDialog& d) -> int {
                auto* e = dynamic_cast<RecordEditor*>(&d);
                if (!e)
                    return QDialog::Rejected;
                ++shown;
                EXPECT_EQ(e->TipRada(), mode) << book.code;
                d.show();
                d.adjustSize();
                QApplication::processEvents();
                // A palette of 256 colours keeps the pictures small enough for the repository.
                const QImage picture = d.grab().toImage().convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither);
                EXPECT_TRUE(picture.save(file, "PNG", 0)) << file.toStdString();
                d.hide();
                return QDialog::Rejected;
            };
            if (mode != 1)
                w->postaviTrenutniRed(0);
            if (mode == 1)
                w->NoviZapis();
            else if (mode == 3)
                w->PostaviFilter();
            else
                w->IzmjenaZapisa(mode);
            script->onDialog = nullptr;
            EXPECT_EQ(shown, 1) << book.code << " mode " << mode;
        }
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}

// With KNJIGE_SCREENSHOT_DIR set, pictures of the renumbering questions (drawn by the
// real message boxes) and of a book before and after renumbering.
// Answers the next message box with `button` once it is drawn, after saving its picture.
void pictureOfNextBox(const QString& file, QMessageBox::StandardButton button)
{
    QTimer::singleShot(300, [file, button] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_TRUE(box->grab().save(file));
        box->button(button)->click();
    });
}

TEST_F(BrowserTest, RenumberingScreenshots)
{
    const QString dir = qEnvironmentVariable("KNJIGE_SCREENSHOT_DIR");
    if (dir.isEmpty())
        GTEST_SKIP() << "set KNJIGE_SCREENSHOT_DIR to write the pictures";
    ASSERT_TRUE(fillDemo(db->db(), 2016));
    // Documents entered late or with a mistyped date, as a book looks before renumbering.
    db->exec("UPDATE dbo.KnjPrihRashFBiH SET Datum='01.25.2016' WHERE GodinaKnj=2016 AND RBroj=2");
    db->exec("UPDATE dbo.KnjPrihRashFBiH SET Datum='01.21.2016' WHERE GodinaKnj=2016 AND RBroj=4");
    db->exec("UPDATE dbo.KnjPrihRashFBiH SET Datum='01.07.2016' WHERE GodinaKnj=2016 AND RBroj=9");
    auto scripted = setInteraction(std::make_unique<DialogInteraction>());

    auto w = open(Knjiga::PrihRashFBiH);
    w->resize(1240, 520);
    QApplication::processEvents();
    EXPECT_TRUE(w->grab().save(dir + QStringLiteral("/renumeracija-prije.png")));
    pictureOfNextBox(dir + QStringLiteral("/renumeracija-po-datumu-pitanje.png"), QMessageBox::Yes);
    w->ReNumeracijaPoDatumu();
    QApplication::processEvents();
    EXPECT_TRUE(w->grab().save(dir + QStringLiteral("/renumeracija-poslije.png")));

    // The book check after an insertion at a position moved the receivables' links and
    // someone changed an amount behind the program's back; then the refusal of an
    // editor in a closed period, on the whole screen.
    w->postaviTrenutniRed(2);
    w->UbaciZapis();
    db->exec("UPDATE dbo.KnjPrihRashFBiH SET Iznos=1 WHERE GodinaKnj=2016 AND RBroj=7");
    QTimer::singleShot(300, [dir] {
        QWidget* viewer = QApplication::activeModalWidget();
        ASSERT_NE(viewer, nullptr);
        viewer->resize(900, 560);
        QApplication::processEvents();
        EXPECT_TRUE(viewer->grab().save(dir + QStringLiteral("/provjera-knjige.png")));
        viewer->close();
    });
    w->ProvjeraKnjige();
    QString error;
    ASSERT_TRUE(periodlock::lock(db->db(), { Knjiga::PrihRashFBiH, 1, 2016, 0 }, QDate(2016, 3, 31), &error));
    w->postaviTrenutniRed(3);
    QTimer::singleShot(300, [dir] {
        auto* editor = qobject_cast<RecordEditor*>(QApplication::activeModalWidget());
        ASSERT_NE(editor, nullptr);
        QTimer::singleShot(300, [dir, editor] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            EXPECT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).copy(0, 0, 900, 600).save(
                dir + QStringLiteral("/zakljucano-odbijanje.png")));
            box->button(QMessageBox::Ok)->click();
            QTimer::singleShot(100, editor, &QDialog::reject);
        });
        editor->cmdSpremi->click();
    });
    w->IzmjenaZapisa(2);
    w->close();

    db->insert("dbo.KnjPopListaDugImovFBiH",
        { { "BrojPoduzeca", 1 }, { "GodinaKnj", 2017 }, { "RBroj", 1 }, { "Naziv", "Kombi" },
            { "Datum", QDate(2017, 1, 1) }, { "Isprava", "1" }, { "VijekTr", 5 } });
    clock::setToday(QDate(2017, 2, 1));
    auto assets = open(Knjiga::PopListaFBiH);
    pictureOfNextBox(dir + QStringLiteral("/pocetno-stanje-pitanje.png"), QMessageBox::No);
    assets->PočetnoStanje();
    clock::setToday({});
    setInteraction(std::move(scripted));
}
