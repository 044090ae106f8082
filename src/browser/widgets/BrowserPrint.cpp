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

namespace knjige::browser
{
namespace
{

void previewOrReport(output::ReportPrinter& printer, QWidget* parent)
{
    QString error;
    if (!printer.isReady(&error)) {
        warn(failureText(error));
        return;
    }
    printer.preview(parent);
}

} // namespace

std::unique_ptr<output::ReportPrinter> bookReport(frmSifarnikKnj& w)
{
    const browser::BookQuery& query = w.query();
    const output::report::Layout layout = output::report::bookLayout(query.bookKind, query.salesPoint());
    output::report::BroughtForward forward;
    QString error;
    if (!output::report::broughtForward(query, layout, &forward, &error)) {
        warn(failureText(error));
        return nullptr;
    }
    auto printer = std::make_unique<output::ReportPrinter>(
        layout, output::report::bookHeader(query, w.rsStavke()), w.rsStavke());
    printer->bringForward(forward);
    return printer;
}

std::unique_ptr<output::ReportPrinter> recapitulationReport(frmSifarnikKnj& w)
{
    db::Database& db = session().db();
    db::ResultSet rows;
    if (!db.open(output::report::recapitulationSql(w.query().filter.where), rows)) {
        warn(failureText(db.errorDescription()));
        return nullptr;
    }
    return std::make_unique<output::ReportPrinter>(output::report::recapitulationLayout(),
        output::report::recapitulationHeader(w.query().filter.description), std::move(rows));
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

} // namespace knjige::browser
