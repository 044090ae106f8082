#include "editors/widgets/EditorFactory.h"

#include "books/BookKind.h"
#include "editors/widgets/frmKnjEvidPotObvFBiH.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "editors/widgets/frmKnjPrihodaRashodaRS.h"
#include "editors/widgets/frmKnjPrometa.h"
#include "editors/widgets/frmKnjTrgovacke.h"
#include "editors/widgets/frmPopListaDImovineFBiH.h"

#include <type_traits>

namespace knjige::editors
{

namespace
{

using Maker = std::unique_ptr<RecordEditor> (*)(int bookKind, QWidget* parent);

// An editor serving several books is told which one; one made for a single book is not.
template <class Editor> std::unique_ptr<RecordEditor> make(int bookKind, QWidget* parent)
{
    if constexpr (std::is_constructible_v<Editor, int, QWidget*>)
        return std::make_unique<Editor>(bookKind, parent);
    else
        return std::make_unique<Editor>(parent);
}

// The editors by the form name the catalogue gives each book.
struct Registration {
    const char* form;
    Maker make;
};
const Registration kEditors[] = {
    { "frmKnjPRashFBiHPregled", make<frmKnjPRashFBiHPregled> },
    { "frmKnjEvidPotObvFBiH", make<frmKnjEvidPotObvFBiH> },
    { "frmKnjPrometa", make<frmKnjPrometa> },
    { "frmKnjPrihodaRashodaRS", make<frmKnjPrihodaRashodaRS> },
    { "frmPopListaDImovineFBiH", make<frmPopListaDImovineFBiH> },
    { "frmKnjUsluga", make<frmKnjUsluga> },
    { "frmKnjKomisiona", make<frmKnjKomisiona> },
};

} // namespace

std::unique_ptr<RecordEditor> createEditor(int bookKind, QWidget* parent)
{
    const books::BookKind* book = books::findBook(bookKind);
    if (!book)
        return nullptr;
    for (const Registration& r : kEditors)
        if (book->editor == QLatin1String(r.form))
            return r.make(bookKind, parent);
    return nullptr;
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
