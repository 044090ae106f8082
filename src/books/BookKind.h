#pragma once

#include <QString>
#include <QStringList>
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

// What a book keeps. The parts whose checks and fields differ by the kind of book (the
// editors, the filter) go by it; everything else a book differs in is its record's data.
enum class BookFamily : quint8 {
    IncomeExpense, // one book for income and expense, a column per entry kind: 96, 109
    IncomeOrExpense, // income and expense in books of their own: 99, 100
    Receivables, // receivables and liabilities: 97, 102
    Turnover, // 98, 106
    AssetList, // 101, 105
    Trade, // kept per sales point: 125, 126
};

// A summed column of a book's "Ukupno:" row, as a grid column (field + 1).
struct TotalsColumn {
    int gridColumn;
    bool bold;
};

// The browser's totals panel below the grid: its headings and the frame of its two
// SELECTs ("Promet do" and the period), which differ only in their label, their sums
// and their date range. No headings: the book has no panel.
struct TotalsPanelLayout {
    QStringList headers {};
    QString periodLabel {}; // "Pr.od " or "Promet od "
    QString headUpTo {}; // from the sums up to "Datum>='" of the "Promet do" part
    QString headPeriod {}; // the same of the period part
    QString alias {}; // "P" or "K"
    int boldTotals = 0; // how many of the "UKUPNO:" row's first sums are bold
};

// The browser's menu entries a book offers beyond those every book has.
struct BookMenus {
    bool recapitulation = false; // mnuRekapKnjPrihRash
    bool openingState = false; // mnuPocetnoStanje
    bool generation = false; // mnuGen
    bool deleteShownAtLevel2 = false; // mnuBrisPrikPod, for access level "2" only
};

// The printed book's columns, which output builds; books sharing a form share one.
enum class ReportLayoutId : quint8 {
    PrihRashFBiH,
    PrihRashDB,
    EvidPotObv,
    Prometa,
    PrihodaRashodaRS,
    PopisnaLista,
    TrgUsluga,
    TrgKomisiona,
};

// Where a kind code stands in the editor's list where the list is not searched for it:
// `code - below` under `split`, `code - above` from it. The arithmetic of the income and
// expense editors, kept as they have it (a code between the ranges lands on a neighbour).
struct KindPositions {
    int split = 0; // 0: the list is searched
    int below = 0;
    int above = 0;
};

struct BookKind {
    qint16 code {};
    QString className {}; // the public entry class, "clsKnjPrihRashFBiH"
    QString caption {}; // window caption and settings application name
    QString table {}; // "dbo.KnjPrihRashFBiH"
    QString editor {}; // the record editor's form name
    QString selectSql {}; // the browser's fixed SELECT, to which WHERE and ORDER BY are added
    QVector<EntryKind> entryKinds {};

    BookFamily family = BookFamily::IncomeExpense;
    // The highest number as "ISNULL(MAX(RBroj),0)" (an empty book reads 0) rather than
    // "MAX(RBroj)" (an empty book reads NULL): the books were written apart.
    bool lastNumberOrZero = false;
    QVector<TotalsColumn> totals {}; // the caption column first; empty: no totals row
    TotalsPanelLayout panel {};
    BookMenus menus {};
    // Takes part in renumbering and insertion at a position, with the blank entry an
    // insertion writes (its INSERT up to the keys, and what follows them) and the order
    // renumbering by date reads the rows in.
    bool renumbers = true;
    QString blankEntryHead {};
    QString blankEntryTail {};
    QString dateOrder {};
    ReportLayoutId report = ReportLayoutId::PrihRashFBiH;
    QString form {}; // the statutory form printed in the report's head, "Obrazac KPR-1041"
    QStringList editorKinds {}; // the editor's entry kind list, "11 - Prihod - Gotovina"
    KindPositions kindPositions {};
    QString entryCaption {}; // the editor's caption after its mode, " stavke knjige prometa"
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
