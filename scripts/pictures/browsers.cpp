// Every book's browser, every record editor in each mode, the renumbering questions
// and a book before and after renumbering, on the demonstration company.
#include "Pictures.h"
#include "books/BookKind.h"
#include "demo/DemoData.h"
#include "editors/widgets/RecordEditor.h"
#include "journal/PeriodLock.h"
#include "output/widgets/frmPrikazTeksta.h"
#include "session/Clock.h"
#include "session/Session.h"
#include "session/widgets/DialogInteraction.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDateEdit>
#include <QImage>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

namespace knjige::pictures
{

// Browsers are drawn wider than the default window, so that every summed column shows.
void browsers(Scene& s)
{
    // The filter form is answered as an operator would: the trade books get the first
    // shop, and book 96 drawn a second time gets March.
    QDate from;
    s.person->onDialog = [&from](QDialog& d) {
        auto* e = dynamic_cast<editors::RecordEditor*>(&d);
        if (!e)
            return int(QDialog::Rejected);
        e->setShop(demo::Maloprodaja1);
        if (from.isValid()) {
            e->dpDatum->setDate(from);
            e->dpDatumDo->setDate(from.addMonths(1).addDays(-1));
        }
        e->cmdSpremi->click();
        return e->result();
    };
    auto shoot = [&](int code, const QString& name) {
        auto w = s.open(code);
        if (from.isValid())
            w->PostaviFilter();
        w->resize(1240, 520);
        QApplication::processEvents();
        s.save(w->grab(), name);
        w->close();
    };
    for (const books::BookKind& book : books::allBooks())
        shoot(book.code, QStringLiteral("browser-%1.png").arg(book.code));
    from = QDate(2016, 3, 1);
    shoot(96, QStringLiteral("browser-96-filter.png"));
    s.noMessages();
}

// Each editor opened from the browser as an operator opens it (F9, Enter, the filter,
// Delete), saved as editor-<book>-<mode>.png, then cancelled.
void editors(Scene& s)
{
    for (const books::BookKind& book : books::allBooks())
        for (int mode = 1; mode <= 4; ++mode) {
            // A trade book opens on the first shop, as in the browsers' pictures.
            s.person->onDialog = [](QDialog& d) {
                auto* e = dynamic_cast<editors::RecordEditor*>(&d);
                if (!e)
                    return int(QDialog::Rejected);
                e->setShop(demo::Maloprodaja1);
                e->cmdSpremi->click();
                return e->result();
            };
            auto w = s.open(book.code);
            const QString name = QStringLiteral("editor-%1-%2.png").arg(book.code).arg(mode);
            int shown = 0;
            s.person->onDialog = [&](QDialog& d) -> int {
                auto* e = dynamic_cast<editors::RecordEditor*>(&d);
                if (!e)
                    return QDialog::Rejected;
                ++shown;
                s.check(e->TipRada() == mode, name + QStringLiteral(": the editor opened in another mode"));
                d.show();
                d.adjustSize();
                QApplication::processEvents();
                // A palette of 256 colours keeps the pictures small enough for the repository.
                s.save(d.grab().toImage().convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither), name, 0);
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
            s.person->onDialog = nullptr;
            s.check(shown == 1, name + QStringLiteral(": no editor was opened"));
        }
    s.noMessages();
}

namespace
{

// Answers the next message box with `button` once it is drawn, after saving its picture.
void pictureOfNextBox(Scene& s, const QString& name, QMessageBox::StandardButton button)
{
    QTimer::singleShot(300, [&s, name, button] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!s.check(box != nullptr, name + QStringLiteral(": no message box")))
            return;
        s.save(box->grab(), name);
        box->button(button)->click();
    });
}

} // namespace

// The questions are drawn by the real message boxes, on a display server.
void renumbering(Scene& s)
{
    // Documents entered late or with a mistyped date, as a book looks before renumbering.
    s.exec("UPDATE dbo.KnjPrihRashFBiH SET Datum='01.25.2016' WHERE GodinaKnj=2016 AND RBroj=2");
    s.exec("UPDATE dbo.KnjPrihRashFBiH SET Datum='01.21.2016' WHERE GodinaKnj=2016 AND RBroj=4");
    s.exec("UPDATE dbo.KnjPrihRashFBiH SET Datum='01.07.2016' WHERE GodinaKnj=2016 AND RBroj=9");
    output::useTextViewerForLongTexts();
    auto answering = setInteraction(std::make_unique<DialogInteraction>());

    auto w = s.open(Knjiga::PrihRashFBiH);
    w->resize(1240, 520);
    QApplication::processEvents();
    s.save(w->grab(), QStringLiteral("renumeracija-prije.png"));
    pictureOfNextBox(s, QStringLiteral("renumeracija-po-datumu-pitanje.png"), QMessageBox::Yes);
    w->ReNumeracijaPoDatumu();
    QApplication::processEvents();
    s.save(w->grab(), QStringLiteral("renumeracija-poslije.png"));

    // The book check after an insertion at a position moved the receivables' links and
    // someone changed an amount behind the program's back; then the refusal of an
    // editor in a closed period, on the whole screen.
    w->postaviTrenutniRed(2);
    w->UbaciZapis();
    s.exec("UPDATE dbo.KnjPrihRashFBiH SET Iznos=1 WHERE GodinaKnj=2016 AND RBroj=7");
    QTimer::singleShot(300, [&s] {
        QWidget* viewer = QApplication::activeModalWidget();
        if (!s.check(viewer != nullptr, QStringLiteral("the book check showed no report")))
            return;
        viewer->resize(900, 560);
        QApplication::processEvents();
        s.save(viewer->grab(), QStringLiteral("provjera-knjige.png"));
        viewer->close();
    });
    w->ProvjeraKnjige();
    QString error;
    s.check(journal::periodlock::lock(session().db(), { Knjiga::PrihRashFBiH, 1, 2016, 0 }, QDate(2016, 3, 31), &error),
        QStringLiteral("lock: ") + error);
    w->postaviTrenutniRed(3);
    QTimer::singleShot(300, [&s] {
        auto* editor = qobject_cast<editors::RecordEditor*>(QApplication::activeModalWidget());
        if (!s.check(editor != nullptr, QStringLiteral("no editor")))
            return;
        QTimer::singleShot(300, [&s, editor] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (s.check(box != nullptr, QStringLiteral("the closed period was not refused"))) {
                s.save(QGuiApplication::primaryScreen()->grabWindow(0).copy(0, 0, 900, 600),
                    QStringLiteral("zakljucano-odbijanje.png"));
                box->button(QMessageBox::Ok)->click();
            }
            QTimer::singleShot(100, editor, &QDialog::reject);
        });
        editor->cmdSpremi->click();
    });
    w->IzmjenaZapisa(2);
    w->close();

    s.exec("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca, GodinaKnj, RBroj, Naziv, Datum, Isprava, VijekTr) "
           "VALUES (1, 2017, 1, 'Kombi', '01.01.2017', '1', 5)");
    clock::setToday(QDate(2017, 2, 1));
    auto assets = s.open(Knjiga::PopListaFBiH);
    pictureOfNextBox(s, QStringLiteral("pocetno-stanje-pitanje.png"), QMessageBox::No);
    assets->generateOpeningState();
    clock::setToday({});
    setInteraction(std::move(answering));
}

} // namespace knjige::pictures
