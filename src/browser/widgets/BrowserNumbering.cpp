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
    if (!renumber::insertAt(renumber::bookOf(m_query), n))
        return;
    // The blank entry stands where the operator was.
    m_query.returnTo = n;
    OsvjeziZapise();
}

void frmSifarnikKnj::ProvjeraNumeracije()
{
    if (renumber::byOrdinal(renumber::bookOf(m_query)) == renumber::After::Reload)
        OsvjeziZapise();
}

void frmSifarnikKnj::ReNumeracijaPoDatumu()
{
    if (renumber::byDate(renumber::bookOf(m_query)) == renumber::After::Reload)
        OsvjeziZapise();
}

void frmSifarnikKnj::PočetnoStanje()
{
    if (!isAssetList(m_query.bookKind))
        return;
    const openingstate::Generated generated = openingstate::generate(m_query.bookKind);
    tell(generated.notice);
    if (generated.made)
        OsvjeziZapise();
}

} // namespace knjige
