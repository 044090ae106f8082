// Insertion at a position, the two renumberings and the asset list's opening state:
// the browser picks the book and the entry, the core does the work and returns how it
// ended, the browser tells that and re-reads the book.
#include "books/BookKind.h"
#include "browser/OpeningState.h"
#include "browser/Renumbering.h"
#include "browser/widgets/frmSifarnikKnj.h"

namespace knjige::browser
{
namespace
{

// Tells how the operation ended, before the book is read again.
bool reloads(const renumber::Outcome& outcome)
{
    tell(outcome.notice);
    return outcome.after == renumber::After::Reload;
}

} // namespace

void frmSifarnikKnj::UbaciZapis()
{
    if (rsStavke().isEmpty())
        return;
    const qint32 n = trenutniRBroj();
    if (!reloads(renumber::insertAt(renumber::bookOf(m_query), n)))
        return;
    // The blank entry stands where the operator was.
    m_query.returnTo = n;
    OsvjeziZapise();
}

void frmSifarnikKnj::ProvjeraNumeracije()
{
    if (reloads(renumber::byOrdinal(renumber::bookOf(m_query))))
        OsvjeziZapise();
}

void frmSifarnikKnj::ReNumeracijaPoDatumu()
{
    if (reloads(renumber::byDate(renumber::bookOf(m_query))))
        OsvjeziZapise();
}

void frmSifarnikKnj::generateOpeningState()
{
    if (!books::isAssetList(m_query.bookKind))
        return;
    const openingstate::Generated generated = openingstate::generate(m_query.bookKind);
    tell(generated.notice);
    if (generated.made)
        OsvjeziZapise();
}

} // namespace knjige::browser
