// Browser operations whose own windows and statements are not built yet. Each menu
// entry already leads here, so the operator is told plainly instead of getting nothing.
#include "browser/BrowserRules.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <QLineEdit>

namespace knjige::browser
{

void frmSifarnikKnj::notYetAvailable(const QString& what)
{
    inform(what + QStringLiteral(": ova mogućnost još nije dostupna u ovoj izvedbi programa."), windowTitle(),
        Icon::Information);
}

} // namespace knjige::browser
