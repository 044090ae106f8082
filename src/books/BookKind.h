#pragma once

#include <QString>
#include <QVector>

namespace knjige
{

// The book kind: the code every part of the system switches on. The values are not
// contiguous and must stay exactly these; windows, editors and reports test them.
namespace Knjiga
{
enum Kod : qint16 {
    PrihRashFBiH = 96,
    EvidPotObvFBiH = 97,
    PrometaFBiH = 98,
    PrihodaRS = 99,
    RashodaRS = 100,
    PopListaRS = 101,
    EvidPotObvRS = 102,
    PopListaFBiH = 105,
    PrometaRS = 106,
    PrihRashDB = 109,
    TrgUsluga = 125,
    TrgKomisiona = 126,
};
}

} // namespace knjige

namespace knjige::books
{

// One entry kind (`Vrsta`) of a book, with the text the program shows for it.
struct EntryKind {
    int code;
    QString text;
};

struct BookKind {
    qint16 code;
    QString className; // the public entry class, "clsKnjPrihRashFBiH"
    QString caption; // window caption and settings application name
    QString table; // "dbo.KnjPrihRashFBiH"
    QString editor; // the record editor's form name
    QString selectSql; // the browser's fixed SELECT, to which WHERE and ORDER BY are added
    QVector<EntryKind> entryKinds;
};

// The twelve books in the order of their codes.
const QVector<BookKind>& allBooks();
// nullptr for a code that is not a book.
const BookKind* findBook(int code);
const BookKind* findBookByClass(const QString& className);
// A book as a person names it on a command line: its code ("96"), its class
// ("clsKnjPrihRashFBiH", any letter case) or its programmatic identifier
// ("ArbosaPOSKnjige17.clsKnjPrihRashFBiH"); nullptr for anything else.
const BookKind* findBookByName(const QString& name);

bool isTradeBook(int code); // 125, 126: kept per sales point
bool isAssetList(int code); // 101, 105
bool isIncomeExpense(int code); // 96, 109

// The text of an entry kind; empty for a code outside the book's list.
QString entryKindText(int bookCode, int entryKind);

// The programmatic identifier under which a host creates an entry class.
inline QString programmaticId(const QString& className)
{
    return QStringLiteral("ArbosaPOSKnjige17.") + className;
}

} // namespace knjige::books
