// Insertion at a position, the two renumberings and the asset list's opening state:
// the browser picks the book and the entry, the core does the work, the browser
// re-reads the book.
#include "books/BookKind.h"
#include "browser/OpeningState.h"
#include "browser/Renumbering.h"
#include "browser/widgets/frmSifarnikKnj.h"

namespace knjige
{

void frmSifarnikKnj::UbaciZapis()
{
    if (rsStavke().isEmpty())
        return;
    const qint32 n = trenutniRBroj();
    if (!renumber::insertAt(renumber::sessionBook(m_tip, BrojProd), n))
        return;
    // The blank entry stands where the operator was.
    RBrojZaPovratak = n;
    OsvjeziZapise();
}

void frmSifarnikKnj::ProvjeraNumeracije()
{
    if (renumber::byOrdinal(renumber::sessionBook(m_tip, BrojProd)) == renumber::After::Reload)
        OsvjeziZapise();
}

void frmSifarnikKnj::ReNumeracijaPoDatumu()
{
    if (renumber::byDate(renumber::sessionBook(m_tip, BrojProd)) == renumber::After::Reload)
        OsvjeziZapise();
}

void frmSifarnikKnj::PočetnoStanje()
{
    if (isAssetList(m_tip) && openingstate::generate(m_tip))
        OsvjeziZapise();
}

} // namespace knjige
