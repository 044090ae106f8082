// A minimal host of the bookkeeping books: it opens one book the way a business
// application does and returns when the operator closes it.
//
//   knjige_host_example CONNECTION COMPANY YEAR [CLASS] [--picture FILE.png]
//
// CONNECTION is the host's connection string: an ADO string for SQL Server, or the path
// of an embedded database file (`knjige init --demo --db books.db` makes one). CLASS is
// a book class name, clsKnjPrihRashFBiH when absent. With --picture the window is drawn
// into FILE.png and closed, so the example also runs unattended.
#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <knjige/BookClasses.h>

namespace
{

// Draws the book's window once it is on screen, then closes it, which ends Show.
void pictureAndClose(const QString& file)
{
    QTimer::singleShot(500, [file] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (!w->isVisible())
                continue;
            if (!w->grab().save(file))
                std::fprintf(stderr, "Cannot write %s\n", qPrintable(file));
            w->close();
        }
    });
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QStringList args = QApplication::arguments().mid(1);
    QString picture;
    if (const int at = args.indexOf(QStringLiteral("--picture")); at >= 0 && at + 1 < args.size()) {
        picture = args.at(at + 1);
        args.remove(at, 2);
    }
    if (args.size() < 3) {
        std::fprintf(stderr,
            "Usage: knjige_host_example CONNECTION COMPANY YEAR [CLASS] [--picture FILE.png]\n"
            "Classes:\n");
        for (const QString& id : knjige::entry::bookObjectIds())
            std::fprintf(stderr, "  %s\n", qPrintable(id.section(u'.', 1)));
        return 2;
    }
    const QString className = args.size() > 3 ? args.at(3) : QStringLiteral("clsKnjPrihRashFBiH");

    // The host knows the books by their programmatic identifiers.
    auto book = knjige::entry::createBookObject(QStringLiteral("ArbosaPOSKnjige17.") + className);
    if (!book) {
        std::fprintf(stderr, "No book class %s\n", qPrintable(className));
        return 2;
    }
    book->setConnString(args.at(0));
    book->setBrojPoduzeca(qint16(args.at(1).toShort()));
    book->setRadnaGodina(qint16(args.at(2).toShort()));
    // Called as a sub-window: Show returns when the operator closes the book.
    book->setPozvan(true);
    if (!picture.isEmpty())
        pictureAndClose(picture);
    book->Show(QStringLiteral("0"), QStringLiteral("Operater"));
    std::printf("Knjiga %s %s zatvorena.\n", qPrintable(knjige::entry::componentVersion()), qPrintable(className));
    return 0;
}
