// Printing from the browser: the book (command 6) and the income and expense
// recapitulation, both in the print preview.
#include "browser/widgets/BrowserPrint.h"

#include "browser/widgets/frmSifarnikKnj.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/ReportQueries.h"
#include "output/widgets/ReportPrinter.h"
#include "session/Interaction.h"
#include "session/Session.h"

namespace knjige
{
namespace
{

void previewOrReport(ReportPrinter& printer, QWidget* parent)
{
    QString error;
    if (!printer.isReady(&error)) {
        warn(QStringLiteral("Desila se greška: ") + error);
        return;
    }
    printer.preview(parent);
}

} // namespace

std::unique_ptr<ReportPrinter> bookReport(frmSifarnikKnj& w)
{
    const report::BookFilter filter { w.OpisFiltera, w.DatumOd, w.DatumDo, w.BrojProd, w.WhereUvjet };
    const report::Layout layout = report::bookLayout(w.TipSifarnika(), w.BrojProd);
    report::BroughtForward forward;
    QString error;
    if (!report::broughtForward(w.TipSifarnika(), layout, filter, &forward, &error)) {
        warn(QStringLiteral("Desila se greška: ") + error);
        return nullptr;
    }
    auto printer = std::make_unique<ReportPrinter>(layout, report::bookHeader(w.TipSifarnika(), filter, w.rsStavke()), w.rsStavke());
    printer->bringForward(forward);
    return printer;
}

std::unique_ptr<ReportPrinter> recapitulationReport(frmSifarnikKnj& w)
{
    Database& db = session().db();
    ResultSet rows;
    if (!db.open(report::recapitulationSql(w.WhereUvjet), rows)) {
        warn(QStringLiteral("Desila se greška: ") + db.errorDescription());
        return nullptr;
    }
    return std::make_unique<ReportPrinter>(
        report::recapitulationLayout(), report::recapitulationHeader(w.OpisFiltera), std::move(rows));
}

void frmSifarnikKnj::IspišiZapise()
{
    if (const auto printer = bookReport(*this))
        previewOrReport(*printer, this);
}

void frmSifarnikKnj::Rekapitulacija()
{
    if (const auto printer = recapitulationReport(*this))
        previewOrReport(*printer, this);
}

} // namespace knjige
