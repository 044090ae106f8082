// Browser operations whose own windows and statements are not built yet. Each menu
// entry already leads here, so the operator is told plainly instead of getting nothing.
#include "browser/BrowserRules.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <QLineEdit>

namespace knjige {

void frmSifarnikKnj::nijeJošDostupno(const QString& what)
{
    inform(what + QStringLiteral(": ova mogućnost još nije dostupna u ovoj izvedbi programa."), windowTitle(),
           Icon::Information);
}

// Without the editors' filter mode the filter can only start over: the whole working
// year, no description, and a reload with the WHERE clause in force.
void frmSifarnikKnj::PostaviFilter()
{
    OpisFiltera.clear();
    m_txtFilter->setText(OpisFiltera);
    DatumOd = browser::periodStart(session().RadnaGodina);
    DatumDo = browser::periodEnd(session().RadnaGodina);
    OsvjeziZapise();
}

void frmSifarnikKnj::IspišiZapise() { nijeJošDostupno(QStringLiteral("Ispis knjige")); }
void frmSifarnikKnj::Rekapitulacija() { nijeJošDostupno(QStringLiteral("Rekapitulacija")); }

// The running totals panel lvStanje stays hidden until its sums are built.
void frmSifarnikKnj::OsvjeziStanje() {}

} // namespace knjige
