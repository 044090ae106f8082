#include "editors/widgets/EditorFactory.h"

#include "books/BookKind.h"
#include "editors/widgets/frmKnjEvidPotObvFBiH.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "editors/widgets/frmKnjPrihodaRashodaRS.h"
#include "editors/widgets/frmKnjPrometa.h"
#include "editors/widgets/frmKnjTrgovacke.h"
#include "editors/widgets/frmPopListaDImovineFBiH.h"

namespace knjige::editors
{

std::unique_ptr<RecordEditor> createEditor(int bookKind, QWidget* parent)
{
    switch (bookKind) {
    case Knjiga::PrihRashFBiH:
    case Knjiga::PrihRashDB:
        return std::make_unique<frmKnjPRashFBiHPregled>(bookKind, parent);
    case Knjiga::EvidPotObvFBiH:
    case Knjiga::EvidPotObvRS:
        return std::make_unique<frmKnjEvidPotObvFBiH>(bookKind, parent);
    case Knjiga::PrometaFBiH:
    case Knjiga::PrometaRS:
        return std::make_unique<frmKnjPrometa>(bookKind, parent);
    case Knjiga::PrihodaRS:
    case Knjiga::RashodaRS:
        return std::make_unique<frmKnjPrihodaRashodaRS>(bookKind, parent);
    case Knjiga::PopListaRS:
    case Knjiga::PopListaFBiH:
        return std::make_unique<frmPopListaDImovineFBiH>(bookKind, parent);
    case Knjiga::TrgUsluga:
        return std::make_unique<frmKnjUsluga>(parent);
    case Knjiga::TrgKomisiona:
        return std::make_unique<frmKnjKomisiona>(parent);
    default:
        return nullptr;
    }
}

void pripremiEditor(RecordEditor& e, int bookKind)
{
    if (bookKind == Knjiga::PrometaRS)
        if (auto* label = qobject_cast<QLabel*>(e.control(QStringLiteral("lblČekovi"))))
            label->setText(QStringLiteral("Račun:"));
    if (bookKind == Knjiga::EvidPotObvRS)
        if (QWidget* kpr = e.control(QStringLiteral("ubKPR")))
            kpr->setEnabled(false);
}

} // namespace knjige::editors
