// The generator of the DB book, the export dialog and the print previews, drawn on a
// display server.
#include "Pictures.h"
#include "books/BookKind.h"
#include "browser/widgets/BrowserPrint.h"
#include "demo/DemoData.h"
#include "demo/DemoSources.h"
#include "generate/SourceDatabase.h"
#include "generate/widgets/frmGenPrihRashDB.h"
#include "output/widgets/ReportPrinter.h"
#include "output/widgets/frmOfficeExportPost.h"
#include "session/Session.h"
#include "session/SettingsStore.h"
#include "session/Workstation.h"

#include <QAction>
#include <QApplication>
#include <QDateEdit>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>

namespace knjige::pictures
{

namespace
{

// The March 2016 values that give every kind entries on the demo documents.
void fillMarch(generate::frmGenPrihRashDB& d)
{
    d.dpDatum->setDate(QDate(2016, 3, 1));
    d.dpDatum1->setDate(QDate(2016, 3, 31));
    d.txtOrgJed->setText(QString::number(demo::OrgJed));
    d.txtKomit->setText(QString::number(demo::CompensationSupplier));
    d.txtSkladište->setText(QString::number(demo::Maloprodaja1));
    d.txtPrima->setText(QString::number(demo::Primatelj));
    for (QLineEdit* e : { d.txtKomit, d.txtSkladište, d.txtPrima })
        emit e->editingFinished();
}

} // namespace

// The generator for three kinds, and the DB book after generating March's takings.
void generator(Scene& s)
{
    auto previousStore = generate::setPasswordStore(std::make_unique<generate::MemoryPasswordStore>(true));
    QString error;
    s.check(demo::createSourceTables(session().db(), &error), error);
    s.check(demo::fillDemoSources(session().db(), 2016, { generate::imeOperateraSustava() }, &error), error);
    for (int vrsta : { generate::DgpRacuni, generate::UlazniRacuni, generate::PosOtpremnice }) {
        generate::frmGenPrihRashDB d;
        d.setVrsta(vrsta);
        fillMarch(d);
        d.show();
        d.adjustSize();
        QApplication::processEvents();
        s.save(d.grab(), QStringLiteral("generator-%1.png").arg(vrsta));
    }
    auto w = s.open(Knjiga::PrihRashDB);
    s.person->onDialog = [&](QDialog& dialog) {
        auto& d = dynamic_cast<generate::frmGenPrihRashDB&>(dialog);
        fillMarch(d);
        d.OKButton->click();
        return d.result();
    };
    w->menuItem("mnuGenDGP_0")->trigger();
    w->resize(1240, 520);
    w->postaviTrenutniRed(w->rsStavke().rowCount() - 1);
    QApplication::processEvents();
    s.save(w->grab(), QStringLiteral("browser-109-generirano.png"));
    generate::setPasswordStore(std::move(previousStore));
}

// "Prebaci u Excel" over book 96, with a file name an operator would have chosen.
void exportDialog(Scene& s)
{
    settings::setText("Arbosa", "Settings", "ExpNazivDat", "/home/amra/Dokumenti/Export.csv");
    auto w = s.open(96);
    s.person->onDialog = [&](QDialog& d) {
        d.show();
        d.adjustSize();
        QApplication::processEvents();
        s.save(d.grab(), QStringLiteral("export-dialog.png"));
        d.hide();
        return d.result();
    };
    w->menuItem("mnuPrebaciUExcel")->trigger();
}

// The print preview of book 96 and of its recapitulation, Qt's print dialog over the
// preview in the workstation's language, and the recapitulation as a PDF (the
// screenshot script turns it into a picture).
void printing(Scene& s)
{
    s.check(installQtTranslations(), QStringLiteral("Qt's translations are not installed"));
    auto w = s.open(96);
    QString picture;
    s.person->onDialog = [&](QDialog& dialog) {
        dialog.resize(1100, 800);
        dialog.show();
        QApplication::processEvents();
        s.save(dialog.grab(), picture);
        if (picture == QLatin1String("ispis-pregled-96.png")) {
            QPrinter printer;
            QPrintDialog print(&printer, &dialog);
            print.show();
            print.move(dialog.geometry().center() - print.rect().center());
            QApplication::processEvents();
            const QRect area = dialog.frameGeometry().united(print.frameGeometry());
            s.save(dialog.screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()),
                QStringLiteral("ispis-dijalog.png"));
        }
        return 0;
    };
    picture = QStringLiteral("ispis-pregled-96.png");
    w->mnu_Click(6);
    picture = QStringLiteral("ispis-pregled-rekapitulacija.png");
    w->Rekapitulacija();
    QString error;
    s.check(browser::recapitulationReport(*w)->writePdf(s.file(QStringLiteral("rekapitulacija.pdf")), &error), error);
    s.noMessages();
}

} // namespace knjige::pictures
