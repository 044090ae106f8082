// Pictures of every book's record editor in each mode, opened from the browser on the
// demonstration company as an operator opens it (F9, Enter, the filter, Delete), for
// the documentation and for a look at the layout. Runs only when
// KNJIGE_EDITOR_SCREENSHOTS names the folder to write to.
#include "books/BookKind.h"
#include "books/DemoData.h"
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "test_browser_fixture.h"

#include <QApplication>
#include <QDir>
#include <QImage>

using namespace knjige;
using namespace knjige::test;

namespace
{

class EditorScreenshots : public BrowserTest
{
protected:
    // Opens the editor of `book` in `mode` from a browser on the demo data and saves
    // what it shows as editor-<book>-<mode>.png; the editor is then cancelled.
    void shoot(int book, int mode)
    {
        auto w = open(book);
        ASSERT_TRUE(w->jePrikazan()) << book;
        if (isTradeBook(book))
            w->BrojProd = demo::Maloprodaja1;
        const QString file = QDir(m_out).filePath(QStringLiteral("editor-%1-%2.png").arg(book).arg(mode));
        int shown = 0;
        script->onDialog = [&](QDialog& d) -> int {
            auto* e = dynamic_cast<RecordEditor*>(&d);
            if (!e)
                return QDialog::Rejected;
            ++shown;
            EXPECT_EQ(e->TipRada(), mode) << book;
            d.show();
            d.adjustSize();
            QApplication::processEvents();
            // A palette of 256 colours keeps the pictures small enough for the repository.
            const QImage picture = d.grab().toImage().convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither);
            EXPECT_TRUE(picture.save(file, "PNG", 0)) << file.toStdString();
            d.hide();
            return QDialog::Rejected;
        };
        if (mode != 1)
            w->postaviTrenutniRed(0);
        if (mode == 1)
            w->NoviZapis();
        else if (mode == 3)
            w->PostaviFilter();
        else
            w->IzmjenaZapisa(mode);
        script->onDialog = nullptr;
        EXPECT_EQ(shown, 1) << book << " mode " << mode;
    }

    QString m_out = qEnvironmentVariable("KNJIGE_EDITOR_SCREENSHOTS");
};

} // namespace

TEST_F(EditorScreenshots, EveryBookInEveryMode)
{
    if (m_out.isEmpty())
        GTEST_SKIP() << "set KNJIGE_EDITOR_SCREENSHOTS to a folder";
    QDir().mkpath(m_out);
    QString error;
    ASSERT_TRUE(fillDemoData(db->db(), 2016, &error)) << error.toStdString();
    for (const BookKind& book : allBooks())
        for (int mode = 1; mode <= 4; ++mode)
            shoot(book.code, mode);
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}
