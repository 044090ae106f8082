// Generation of the DB book from the host's documents (mnuGen): the generator of the
// chosen kind, then a reload that shows what it wrote.
#include "browser/widgets/frmSifarnikKnj.h"
#include "generate/widgets/frmGenPrihRashDB.h"
#include "session/Interaction.h"

namespace knjige::browser
{

void frmSifarnikKnj::Generiranje(int vrsta)
{
    generate::frmGenPrihRashDB dialog(this);
    dialog.setVrsta(vrsta);
    interaction().exec(dialog);
    OsvjeziZapise();
}

} // namespace knjige::browser
