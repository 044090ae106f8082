// The public book classes: identifiers, properties with write-through, and Show.
#include "books/BookKind.h"
#include "entry/BookClasses.h"
#include "session/Session.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QApplication>
#include <QPointer>
#include <QTimer>

using namespace knjige;
using namespace knjige::test;

namespace
{

frmSifarnikKnj* openBrowser()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* b = qobject_cast<frmSifarnikKnj*>(w); b && b->isVisible())
            return b;
    return nullptr;
}

void closeAll()
{
    while (frmSifarnikKnj* b = openBrowser())
        b->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

using EntryClasses = BrowserTest;

} // namespace

TEST(EntryIdentifiers, TwelveClassesUnderTheLibraryName)
{
    const QStringList ids = bookObjectIds();
    ASSERT_EQ(ids.size(), 12);
    EXPECT_EQ(ids.first(), "ArbosaPOSKnjige17.clsKnjPrihRashFBiH");
    EXPECT_EQ(ids.last(), "ArbosaPOSKnjige17.clsTrgKnjKomisiona");
    for (const BookKind& book : allBooks()) {
        auto object = createBookObject(programmaticId(book.className));
        ASSERT_TRUE(object) << book.className.toStdString();
        EXPECT_EQ(object->kodKnjige(), book.code);
        EXPECT_EQ(object->className(), book.className);
    }
    EXPECT_EQ(createBookObject("arbosaposknjige17.CLSKNJPROMETARS")->kodKnjige(), 106);
    EXPECT_FALSE(createBookObject("ArbosaPOSKnjige17.clsNema"));
    EXPECT_FALSE(createBookObject("clsKnjPrihRashFBiH"));
    EXPECT_FALSE(createBookObject("Drugo.clsKnjPrihRashFBiH"));
}

TEST(EntryProperties, EachObjectKeepsItsOwnCopyAndWritesThroughToTheSession)
{
    session().reset();
    clsKnjPrihRashFBiH a;
    clsTrgKnjUsluga b;
    EXPECT_FALSE(a.Pozvan());
    EXPECT_EQ(a.ConnString(), QString());
    EXPECT_EQ(a.RadnaGodina(), 0);
    EXPECT_EQ(a.BrojPoduzeca(), 0);

    a.setRadnaGodina(2016);
    a.setBrojPoduzeca(7);
    a.setConnString("sqlite:/tmp/a.db");
    a.setPozvan(true);
    EXPECT_EQ(b.RadnaGodina(), 0); // the other object's own value
    EXPECT_EQ(b.BrojPoduzeca(), 0);
    EXPECT_FALSE(b.Pozvan());
    EXPECT_EQ(session().RadnaGodina, 2016);
    EXPECT_EQ(session().BrojPoduzeca, 7);
    EXPECT_EQ(session().ConnString, "sqlite:/tmp/a.db");

    b.setRadnaGodina(2017);
    EXPECT_EQ(a.RadnaGodina(), 2016); // reading never looks at the session
    EXPECT_EQ(session().RadnaGodina, 2017);
    session().reset();
}

TEST_F(EntryClasses, ShowOnAFreshObjectUsesTheSessionAsItStands)
{
    // The fixture set company 1 and year 2016 directly in the session.
    clsKnjPrometaFBiH fresh;
    fresh.Show("1", "Marko");
    frmSifarnikKnj* w = openBrowser();
    ASSERT_TRUE(w);
    EXPECT_EQ(session().NivoPristupa, "1");
    EXPECT_EQ(session().ImeOperatera, "Marko");
    EXPECT_EQ(w->TipSifarnika(), 98);
    EXPECT_EQ(w->windowTitle(), "Knjiga prometa za FBiH");
    EXPECT_TRUE(w->WhereUvjet.endsWith("K.GodinaKnj=2016 AND K.BrojPoduzeca=1"));
    EXPECT_FALSE(w->toolbarButton(10)->isVisible());
    EXPECT_TRUE(w->testAttribute(Qt::WA_DeleteOnClose));
    QPointer<frmSifarnikKnj> guard(w);
    w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(guard.isNull());
}

TEST_F(EntryClasses, ACalledBookShowsButtonTenAndIsUnloadedWhenItCloses)
{
    clsKnjPrihRashFBiH book;
    book.setPozvan(true);
    book.setRadnaGodina(2016);
    bool buttonShown = false;
    QPointer<frmSifarnikKnj> seen;
    QTimer::singleShot(0, [&] {
        seen = openBrowser();
        if (!seen)
            return;
        buttonShown = seen->toolbarButton(10)->isVisible();
        seen->close();
    });
    book.Show("0", "Ana");
    EXPECT_TRUE(buttonShown);
    EXPECT_TRUE(seen.isNull()); // deleted by Show
    EXPECT_FALSE(openBrowser());
}

TEST_F(EntryClasses, ARefusedBookLeavesNoWindow)
{
    installRights(false);
    clsKnjRashodaRS book;
    book.Show("0", "Ana");
    EXPECT_EQ(script->texts(), QStringList { QStringLiteral("Nemate pravo pristupa !") });
    EXPECT_FALSE(openBrowser());
    closeAll();
}
