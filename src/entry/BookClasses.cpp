#include "entry/BookClasses.h"

#include "books/BookKind.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "output/widgets/frmPrikazTeksta.h"
#include "session/Session.h"
#include "session/Workstation.h"
#include "session/widgets/DialogInteraction.h"

#include <QAction>
#include <QEventLoop>
#include <QPointer>

namespace knjige::entry
{

void KnjigaKlasa::Show(QString level, const QString& operatorName)
{
    Session& s = session();
    s.NivoPristupa = level;
    s.ImeOperatera = operatorName;
    // A host that brought no seam of its own gets real message boxes and dialogs.
    output::useTextViewerForLongTexts();
    ensureDialogInteraction();
    // And Qt's own dialogs in the workstation's language, unless the host has chosen.
    installQtTranslations();

    auto* browser = new browser::frmSifarnikKnj;
    browser->setTipSifarnika(m_kod);
    if (m_pozvan) {
        // Called as the host's sub-window: the call lasts as long as the window, and
        // the window is unloaded when it ends.
        QPointer<browser::frmSifarnikKnj> guard(browser);
        browser->toolbarButton(10)->setVisible(true);
        browser->Prikaži(0, {});
        if (guard && guard->isVisible()) {
            QEventLoop loop;
            QObject::connect(browser, &QDialog::finished, &loop, &QEventLoop::quit);
            QObject::connect(browser, &QObject::destroyed, &loop, &QEventLoop::quit);
            loop.exec();
        }
        delete guard.data();
        return;
    }
    browser->setAttribute(Qt::WA_DeleteOnClose);
    browser->Prikaži(0, {});
    if (!browser->isVisible())
        delete browser;
}

void KnjigaKlasa::setConnString(const QString& value)
{
    m_connString = value;
    session().ConnString = value;
}

void KnjigaKlasa::setRadnaGodina(qint16 value)
{
    m_radnaGodina = value;
    session().RadnaGodina = value;
}

void KnjigaKlasa::setBrojPoduzeca(qint16 value)
{
    m_brojPoduzeca = value;
    session().BrojPoduzeca = value;
}

QString KnjigaKlasa::className() const
{
    const books::BookKind* book = books::findBook(m_kod);
    return book ? book->className : QString();
}

namespace
{

template <class Class> std::unique_ptr<KnjigaKlasa> make()
{
    return std::make_unique<Class>();
}

// The public classes by the class name the catalogue gives each book.
struct PublicClass {
    const char* name;
    std::unique_ptr<KnjigaKlasa> (*make)();
};
const PublicClass kClasses[] = {
    { "clsKnjPrihRashFBiH", make<clsKnjPrihRashFBiH> },
    { "clsKnjEvidPotObvFBiH", make<clsKnjEvidPotObvFBiH> },
    { "clsKnjPrometaFBiH", make<clsKnjPrometaFBiH> },
    { "clsKnjPrihodaRS", make<clsKnjPrihodaRS> },
    { "clsKnjRashodaRS", make<clsKnjRashodaRS> },
    { "clsPopListaDImovineRS", make<clsPopListaDImovineRS> },
    { "clsKnjEvidPotObvRS", make<clsKnjEvidPotObvRS> },
    { "clsPopListaDImovineFBiH", make<clsPopListaDImovineFBiH> },
    { "clsKnjPrometaRS", make<clsKnjPrometaRS> },
    { "clsKnjPrihRashDB", make<clsKnjPrihRashDB> },
    { "clsTrgKnjUsluga", make<clsTrgKnjUsluga> },
    { "clsTrgKnjKomisiona", make<clsTrgKnjKomisiona> },
};

std::unique_ptr<KnjigaKlasa> createByClass(const QString& className)
{
    for (const PublicClass& c : kClasses)
        if (className == QLatin1String(c.name))
            return c.make();
    return nullptr;
}

} // namespace

std::unique_ptr<KnjigaKlasa> createBookObject(const QString& programmaticId)
{
    const QString prefix = knjige::books::programmaticId(QString());
    if (!programmaticId.startsWith(prefix, Qt::CaseInsensitive))
        return nullptr;
    const books::BookKind* book = books::findBookByClass(programmaticId.mid(prefix.size()));
    return book ? createByClass(book->className) : nullptr;
}

QStringList bookObjectIds()
{
    QStringList ids;
    for (const books::BookKind& book : books::allBooks())
        ids << books::programmaticId(book.className);
    return ids;
}

} // namespace knjige::entry
