#pragma once

#include <memory>

namespace knjige::output
{
class ReportPrinter;
} // namespace knjige::output

namespace knjige::browser
{

class frmSifarnikKnj;

// The book as the browser shows it (its rows in the grid's order, its filter and
// period), laid out for paper: what Print previews and prints. Nothing when what the
// period brings forward from the year before it cannot be read, which has then been
// reported.
std::unique_ptr<output::ReportPrinter> bookReport(frmSifarnikKnj& browser);
// The recapitulation of the rows the browser's WHERE clause selects; nothing when the
// query fails, which has then been reported.
std::unique_ptr<output::ReportPrinter> recapitulationReport(frmSifarnikKnj& browser);

} // namespace knjige::browser
