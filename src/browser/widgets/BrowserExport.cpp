// "Prebaci u Excel": the rows the grid shows, in the order it shows them.
#include "browser/widgets/frmSifarnikKnj.h"
#include "output/widgets/frmOfficeExportPost.h"
#include "session/Interaction.h"

namespace knjige::browser
{

void frmSifarnikKnj::PrebaciUExcel()
{
    output::frmOfficeExportPost dialog(rsStavke(), this);
    interaction().exec(dialog);
}

} // namespace knjige::browser
