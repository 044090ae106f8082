// Pictures of every book's browser on the demonstration company, for the
// documentation and for a look at column widths and totals. Runs only when
// KNJIGE_SCREENSHOT_DIR names the folder to write to.
#include "test_browser_fixture.h"

#include "books/BookKind.h"
#include "books/DemoData.h"
#include "session/Session.h"

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
    for (const BookKind& book : allBooks()) {
        auto w = open(book.code);
        ASSERT_TRUE(w->jePrikazan());
        // Wider than the default window, so that every summed column is in the picture.
        w->resize(1240, 520);
        QApplication::processEvents();
        const QPixmap picture = w->grab();
        ASSERT_FALSE(picture.isNull());
        EXPECT_TRUE(picture.save(dir + QStringLiteral("/browser-%1.png").arg(book.code)));
        w->close();
    }
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}
