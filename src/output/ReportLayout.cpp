#include "output/ReportLayout.h"

#include "books/BookKind.h"
#include "browser/BookModel.h"
#include "session/Dates.h"

namespace knjige::output::report
{
namespace
{

Column textColumn(const QString& heading, const QString& field, int width, int stretch = 0)
{
    return { heading, {}, { Term(field) }, Format::Text, width, stretch, false };
}

Column dateColumn(const QString& heading = QStringLiteral("Datum"), const QString& field = QStringLiteral("Datum"))
{
    return { heading, {}, { Term(field) }, Format::Date, 8, 0, false };
}

Column wholeColumn(const QString& heading, const QString& field, int width)
{
    return { heading, {}, { Term(field) }, Format::Whole, width, 0, false };
}

Column rbrojColumn()
{
    return wholeColumn(QStringLiteral("Red.\nbroj"), QStringLiteral("RBroj"), 6);
}

Column termsColumn(const QString& heading, QVector<Term> terms)
{
    return { heading, {}, std::move(terms), Format::Money, 11, 0, true };
}

Column amountColumn(const QString& heading, const QString& field)
{
    return termsColumn(heading, { Term(field) });
}

// An amount of one entry kind: the statutory forms give each kind its own column.
// Narrower than other amounts: the form's many columns leave the description room.
Column kindColumn(const QString& heading, const QString& field, QVector<int> kinds)
{
    Column c = termsColumn(heading, { Term(field, 1, std::move(kinds)) });
    c.width = 9;
    return c;
}

// Columns are numbered from 1 in order, as the forms number them; where the form
// numbers its amounts apart (the income and expense book FBiH from 11, the turnover
// books from 11), the first amount takes `firstAmount` and the count goes on from it.
QVector<Column> numbered(QVector<Column> columns, int firstAmount = 0)
{
    int n = 1;
    bool amountsBegun = false;
    for (Column& c : columns) {
        if (c.format == Format::Money && !amountsBegun) {
            amountsBegun = true;
            if (firstAmount > 0)
                n = firstAmount;
        }
        c.number = QString::number(n++);
    }
    return columns;
}

QVector<Column> leadingColumns(bool withDocument = true)
{
    QVector<Column> c = { rbrojColumn(), dateColumn() };
    if (withDocument)
        c << textColumn(QStringLiteral("Isprava"), QStringLiteral("Isprava"), 9, 1);
    return c;
}

// FBiH income and expense book: one column per entry kind, VAT and the totals net of
// VAT, numbered 11 to 21 as on the form and in the browser's totals panel.
QVector<Column> prihRashFBiH()
{
    const QString p = QStringLiteral("Prihodi");
    const QString pp = QStringLiteral("PDVPrihodi");
    const QString r = QStringLiteral("Rashodi");
    const QString rp = QStringLiteral("PDVRashodi");
    QVector<Column> c = leadingColumns();
    c << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 14, 3)
      << kindColumn(QStringLiteral("Gotovina"), p, { 11 }) << kindColumn(QStringLiteral("Bankovni\nračun"), p, { 12 })
      << kindColumn(QStringLiteral("Stvari i\nusluge"), p, { 13 })
      << amountColumn(QStringLiteral("PDV u\nprihodima"), pp)
      << termsColumn(QStringLiteral("Ukupni\nprihodi"), { Term(p), Term(pp, -1) })
      << kindColumn(QStringLiteral("Nabavka\nrobe/mat."), r, { 16 })
      << kindColumn(QStringLiteral("Bruto\nplaće"), r, { 17 })
      << kindColumn(QStringLiteral("Plaćeni\ndoprinosi"), r, { 18 })
      << kindColumn(QStringLiteral("Ostali\nrashodi"), r, { 19 })
      << amountColumn(QStringLiteral("PDV u\nrashodima"), rp)
      << termsColumn(QStringLiteral("Ukupni\nrashodi"), { Term(r), Term(rp, -1) });
    return numbered(c, 11);
}

// DB income and expense book: columns 5 to 17 as in the totals panel; 17 is the
// expense of kinds 9 to 15 less kind 16, as the DB form defines it.
QVector<Column> prihRashDB()
{
    const QString iznos = QStringLiteral("Iznos");
    QVector<Column> c = leadingColumns();
    c << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 12, 3)
      << kindColumn(QStringLiteral("Prihod\ngotovina"), iznos, { 5 })
      << kindColumn(QStringLiteral("Prihod\nžiro račun"), iznos, { 6 })
      << kindColumn(QStringLiteral("Prihod\nu stvarima"), iznos, { 7 })
      << amountColumn(QStringLiteral("Ukupni\nprihodi"), QStringLiteral("Prihodi"))
      << kindColumn(QStringLiteral("Rashod\nu gotovini"), iznos, { 9 })
      << kindColumn(QStringLiteral("Rashod\nžiro račun"), iznos, { 10 })
      << kindColumn(QStringLiteral("Rashod\nu stvarima"), iznos, { 11 })
      << kindColumn(QStringLiteral("Amorti-\nzacija"), iznos, { 12 })
      << kindColumn(QStringLiteral("Plaćena\nakciza"), iznos, { 13 })
      << kindColumn(QStringLiteral("Plaćen\nPPP"), iznos, { 14 })
      << kindColumn(QStringLiteral("Plaćen\nPPU"), iznos, { 15 })
      << amountColumn(QStringLiteral("PPDOH"), QStringLiteral("RashPPDOH"))
      << termsColumn(QStringLiteral("Ukupni\nrashodi"),
             { Term(QStringLiteral("Rashodi")), Term(QStringLiteral("RashPPDOH"), -1) });
    return numbered(c);
}

QVector<Column> evidPotObv()
{
    QVector<Column> c = leadingColumns();
    c << textColumn(QStringLiteral("Komitent"), QStringLiteral("ImeKomit1"), 12, 4)
      << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 12, 6)
      << textColumn(QStringLiteral("Vrsta"), QStringLiteral("NazivVrste"), 12, 2)
      << amountColumn(QStringLiteral("Izdati\nračuni"), QStringLiteral("IznosIR"))
      << amountColumn(QStringLiteral("Uplate za\nizdate račune"), QStringLiteral("UplateIR"))
      << amountColumn(QStringLiteral("Primljeni\nračuni"), QStringLiteral("IznosUR"))
      << amountColumn(QStringLiteral("Uplate za prim-\nljene račune"), QStringLiteral("UplateUR"))
      << wholeColumn(QStringLiteral("Red. broj\nu KPR"), QStringLiteral("RBrojKPR"), 6);
    return numbered(c);
}

QVector<Column> prometa()
{
    QVector<Column> c = leadingColumns();
    c << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 24, 4)
      << amountColumn(QStringLiteral("Gotovina"), QStringLiteral("IznosGot"))
      << amountColumn(QStringLiteral("Čekovi"), QStringLiteral("IznosCek"));
    return numbered(c, 11);
}

QVector<Column> prihodaRashodaRS()
{
    QVector<Column> c = leadingColumns(false);
    c << textColumn(QStringLiteral("Vrsta"), QStringLiteral("Vrsta"), 18, 1)
      << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 20, 2)
      << amountColumn(QStringLiteral("Iznos"), QStringLiteral("Iznos"))
      << amountColumn(QStringLiteral("PDV"), QStringLiteral("IznosPDV"));
    return numbered(c);
}

// The asset lists sum the rate column too, as the browser's totals row does.
QVector<Column> popisnaLista()
{
    QVector<Column> c = { rbrojColumn(), textColumn(QStringLiteral("Naziv sredstva"), QStringLiteral("Naziv"), 18, 4),
        dateColumn(QStringLiteral("Datum\nnabavke")),
        textColumn(QStringLiteral("Isprava"), QStringLiteral("Isprava"), 9, 1),
        amountColumn(QStringLiteral("Nabavna\nvrijednost"), QStringLiteral("NabVrijednost")),
        amountColumn(QStringLiteral("Knjigovod.\nvrijednost"), QStringLiteral("KnjigVrijednost")),
        wholeColumn(QStringLiteral("Vijek\n(god.)"), QStringLiteral("VijekTr"), 6),
        amountColumn(QStringLiteral("Stopa\namort. %"), QStringLiteral("StopaAm")),
        amountColumn(QStringLiteral("Iznos\namortizacije"), QStringLiteral("IznosAmort")),
        amountColumn(QStringLiteral("Nova knjig.\nvrijednost"), QStringLiteral("NovaKnjigVrij")) };
    c[7].width = 8;
    return numbered(c);
}

QVector<Column> trgUsluga()
{
    QVector<Column> c = leadingColumns(false);
    c << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 30, 1)
      << amountColumn(QStringLiteral("Iznos\nnaknade"), QStringLiteral("Iznos"));
    return numbered(c);
}

QVector<Column> trgKomisiona()
{
    QVector<Column> c = leadingColumns(false);
    c << textColumn(QStringLiteral("Opis"), QStringLiteral("Opis"), 28, 1)
      << amountColumn(QStringLiteral("Zaduženje"), QStringLiteral("Zaduzenje"))
      << amountColumn(QStringLiteral("Razduženje"), QStringLiteral("Razduzenje"));
    return numbered(c);
}

// The catalogue names each book's layout; books on the same form share one.
QVector<Column> columnsOf(books::ReportLayoutId id)
{
    switch (id) {
    case books::ReportLayoutId::PrihRashFBiH:
        return prihRashFBiH();
    case books::ReportLayoutId::PrihRashDB:
        return prihRashDB();
    case books::ReportLayoutId::EvidPotObv:
        return evidPotObv();
    case books::ReportLayoutId::Prometa:
        return prometa();
    case books::ReportLayoutId::PrihodaRashodaRS:
        return prihodaRashodaRS();
    case books::ReportLayoutId::PopisnaLista:
        return popisnaLista();
    case books::ReportLayoutId::TrgUsluga:
        return trgUsluga();
    case books::ReportLayoutId::TrgKomisiona:
        return trgKomisiona();
    }
    return {};
}

bool takes(const QVector<int>& kinds, qint64 kind)
{
    for (int k : kinds)
        if (k == kind)
            return true;
    return false;
}

} // namespace

Orientation orientationFor(const QVector<Column>& columns)
{
    // A4 portrait holds about 115 digits of the 8-point body font between its margins;
    // each column also takes about two digits of padding.
    int digits = 0;
    for (const Column& c : columns)
        digits += c.width + 2;
    return digits > 115 ? Orientation::Landscape : Orientation::Portrait;
}

Layout bookLayout(int bookKind, qint32 salesPoint)
{
    const books::BookKind* book = books::findBook(bookKind);
    if (!book)
        return {};
    Layout l;
    l.title = book->caption;
    // The Federation's tradesmen keep some books on numbered forms, which the paper
    // prints in its head.
    l.form = book->form;
    l.signature = true;
    l.columns = columnsOf(book->report);
    if (books::isTradeBook(bookKind) && salesPoint == 0) {
        l.columns.insert(2, textColumn(QStringLiteral("Prodajno\nmjesto"), QStringLiteral("ImeProd"), 12));
        l.columns = numbered(l.columns);
    }
    if (books::isIncomeExpense(bookKind))
        l.kindField = QStringLiteral("Vrsta");
    l.orientation = orientationFor(l.columns);
    l.salesPoint = books::isTradeBook(bookKind);
    return l;
}

Layout recapitulationLayout()
{
    Layout l;
    l.title = QStringLiteral("REKAPITULACIJA KNJIGE PRIHODA I RASHODA");
    l.columns = numbered({ wholeColumn(QStringLiteral("Vrsta"), QStringLiteral("Vrsta"), 5),
        textColumn(QStringLiteral("Naziv"), QStringLiteral("Naziv"), 24, 1),
        amountColumn(QStringLiteral("Prihod"), QStringLiteral("Prihod")),
        amountColumn(QStringLiteral("PDV u prihodu"), QStringLiteral("PDVPrihod")),
        amountColumn(QStringLiteral("Rashod"), QStringLiteral("Rashod")),
        amountColumn(QStringLiteral("PDV u rashodu"), QStringLiteral("PDVRashod")) });
    l.orientation = orientationFor(l.columns);
    return l;
}

std::optional<BoundLayout> BoundLayout::bind(const Layout& layout, const db::ResultSet& rows, QString* error)
{
    BoundLayout b;
    b.m_layout = layout;
    auto find = [&](const QString& name) {
        const int f = rows.indexOf(name);
        if (f < 0 && error)
            *error = QStringLiteral("u podacima knjige nema polja %1").arg(name);
        return f;
    };
    if (!layout.kindField.isEmpty() && (b.m_kindField = find(layout.kindField)) < 0)
        return std::nullopt;
    for (int c = 0; c < layout.columns.size(); ++c) {
        QVector<BoundTerm> terms;
        for (const Term& t : layout.columns[c].terms) {
            const int f = find(t.field);
            if (f < 0)
                return std::nullopt;
            terms.push_back({ f, t.sign, t.kinds });
        }
        b.m_terms.push_back(terms);
        if (layout.columns[c].sums)
            b.m_summed.push_back(c);
    }
    return b;
}

Money BoundLayout::money(const db::ResultSet& rows, int row, int column) const
{
    Money sum;
    for (const BoundTerm& t : m_terms[column]) {
        if (!t.kinds.isEmpty()
            && (m_kindField < 0 || rows.isNull(row, m_kindField) || !takes(t.kinds, rows.integer(row, m_kindField))))
            continue;
        if (rows.isNull(row, t.field))
            continue;
        const Money v = rows.money(row, t.field);
        sum += t.sign < 0 ? -v : v;
    }
    return sum;
}

QString BoundLayout::text(const db::ResultSet& rows, int row, int column, const QLocale& locale) const
{
    const Column& c = m_layout.columns[column];
    if (c.format == Format::Money) {
        const Money v = money(rows, row, column);
        return v.isZero() ? QString() : browser::formatMoney(v, locale);
    }
    const int f = m_terms[column].value(0).field;
    if (rows.isNull(row, f))
        return {};
    switch (c.format) {
    case Format::Whole:
        return browser::formatWhole(rows.integer(row, f), locale);
    case Format::Date:
        return dates::display(rows.date(row, f));
    default:
        return rows.text(row, f);
    }
}

} // namespace knjige::output::report
