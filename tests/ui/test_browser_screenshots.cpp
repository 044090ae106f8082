// Pictures of every book's browser on the demonstration company, for the
// documentation and for a look at column widths and totals. Runs only when
// KNJIGE_SCREENSHOT_DIR names the folder to write to.
#include "books/BookKind.h"
#include "books/DemoData.h"
#include "editors/widgets/RecordEditor.h"
#include "session/Session.h"
#include "test_browser_fixture.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>

using namespace knjige;
using namespace knjige::test;

TEST_F(BrowserTest, ScreenshotsOfEveryBookOnDemoData)
{
    const QString dir = qEnvironmentVariable("KNJIGE_SCREENSHOT_DIR");
    if (dir.isEmpty())
        GTEST_SKIP() << "set KNJIGE_SCREENSHOT_DIR to write the pictures";
    QDir().mkpath(dir);
    QString error;
    ASSERT_TRUE(fillDemoData(db->db(), 2016, &error)) << error.toStdString();
    // The filter form is answered as an operator would: the trade books get the first
    // shop, and book 96 drawn a second time gets March.
    QDate from;
    script->onDialog = [&from](QDialog& d) {
        auto* e = dynamic_cast<RecordEditor*>(&d);
        if (!e)
            return int(QDialog::Rejected);
        e->setSkladište(demo::Maloprodaja1);
        if (from.isValid()) {
            e->dpDatum->setDate(from);
            e->dpDatumDo->setDate(from.addMonths(1).addDays(-1));
        }
        e->cmdSpremi->click();
        return e->result();
    };
    auto shoot = [&](int code, const QString& name) {
        auto w = open(code);
        ASSERT_TRUE(w->jePrikazan());
        if (from.isValid())
            w->PostaviFilter();
        // Wider than the default window, so that every summed column is in the picture.
        w->resize(1240, 520);
        QApplication::processEvents();
        const QPixmap picture = w->grab();
        ASSERT_FALSE(picture.isNull());
        EXPECT_TRUE(picture.save(dir + u'/' + name));
        w->close();
    };
    for (const BookKind& book : allBooks())
        shoot(book.code, QStringLiteral("browser-%1.png").arg(book.code));
    from = QDate(2016, 3, 1);
    shoot(96, "browser-96-filter.png");
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}
