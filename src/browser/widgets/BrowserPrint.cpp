// Printing from the browser: the book (command 6) and the income and expense
// recapitulation, both in the print preview.
#include "browser/widgets/BrowserPrint.h"

#include "browser/widgets/frmSifarnikKnj.h"
#include "output/ReportHeader.h"
#include "output/ReportLayout.h"
#include "output/ReportQueries.h"
#include "output/widgets/ReportPrinter.h"
#include "session/Failure.h"
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
        warn(failureText(error));
        return;
    }
    printer.preview(parent);
}

} // namespace

std::unique_ptr<ReportPrinter> bookReport(frmSifarnikKnj& w)
{
    const browser::BookQuery& query = w.query();
    const report::Layout layout = report::bookLayout(query.bookKind, query.salesPoint());
    report::BroughtForward forward;
    QString error;
    if (!report::broughtForward(query, layout, &forward, &error)) {
        warn(failureText(error));
        return nullptr;
    }
    auto printer = std::make_unique<ReportPrinter>(layout, report::bookHeader(query, w.rsStavke()), w.rsStavke());
    printer->bringForward(forward);
    return printer;
}

std::unique_ptr<ReportPrinter> recapitulationReport(frmSifarnikKnj& w)
{
    Database& db = session().db();
    ResultSet rows;
    if (!db.open(report::recapitulationSql(w.query().filter.where), rows)) {
        warn(failureText(db.errorDescription()));
        return nullptr;
    }
    return std::make_unique<ReportPrinter>(
        report::recapitulationLayout(), report::recapitulationHeader(w.query().filter.description), std::move(rows));
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
