#pragma once

#include "session/Money.h"
#include "session/db/ResultSet.h"

#include <QLocale>
#include <QString>
#include <QVector>
#include <optional>

namespace knjige::output::report
{

// How a report is laid out, as data: one layout per book kind, made from the book
// catalogue, and one for the recapitulation. The painter knows no book; it reads
// these descriptions.

enum class Format { Text, Whole, Money, Date };
enum class Orientation { Portrait, Landscape };

// One part of a column's value: `field` of the row with its sign, taken only on rows
// whose entry kind (the layout's kindField) is one of `kinds`, on every row when
// `kinds` is empty. A plain column is one term with sign +1.
struct Term {
    Term(QString f, int s = 1, QVector<int> k = {})
        : field(std::move(f))
        , sign(s)
        , kinds(std::move(k))
    {
    }
    QString field;
    int sign = 1;
    QVector<int> kinds;
};

struct Column {
    QString heading; // "\n" breaks it into lines
    QString number; // printed under the heading, as on the statutory form
    QVector<Term> terms; // a Text or Date column reads its one field as it stands
    Format format = Format::Text;
    int width = 8; // the least width, in digits of the body font
    int stretch = 0; // share of the width left over (long texts)
    bool sums = false; // carried from page to page and totalled at the end
};

struct Layout {
    QString title;
    QString form; // the statutory form the book is kept on ("Obrazac KPR-1041"); empty when none
    QVector<Column> columns;
    QString kindField; // the entry kind code the terms test; empty when none do
    Orientation orientation = Orientation::Portrait;
    bool salesPoint = false; // a trade book: the header names the sales point
    bool signature = false; // a book: its last page closes with date, signature and stamp
    bool isValid() const { return !columns.isEmpty(); }
};

// The printed book of a kind; an invalid (column-less) layout for a code that is no
// book. The columns read the fields of the kind's browser SELECT, so a book prints the
// rows the browser shows, in the browser's order. A trade book printed for all its
// sales points together (`salesPoint` 0) names each row's sales point.
Layout bookLayout(int bookKind, qint32 salesPoint = -1);
// The recapitulation of the FBiH income and expense book by entry kind.
Layout recapitulationLayout();
// Landscape when the columns' least widths do not fit a portrait page.
Orientation orientationFor(const QVector<Column>& columns);

// A layout whose fields were found in one result set. Values are read per row and
// column; amounts are summed as Money.
class BoundLayout
{
public:
    // Nothing, with *error naming the first missing field, when the rows lack one.
    static std::optional<BoundLayout> bind(const Layout& layout, const db::ResultSet& rows, QString* error);

    const Layout& layout() const { return m_layout; }
    int columnCount() const { return int(m_layout.columns.size()); }
    // The columns that sum, in column order.
    const QVector<int>& summed() const { return m_summed; }

    Money money(const db::ResultSet& rows, int row, int column) const;
    // The cell as printed: amounts "#,##0.00" (blank when zero), whole numbers
    // "#,##0", dates "dd.MM.yy", texts as they stand.
    QString text(const db::ResultSet& rows, int row, int column, const QLocale& locale) const;

private:
    struct BoundTerm {
        int field;
        int sign;
        QVector<int> kinds;
    };
    Layout m_layout;
    QVector<QVector<BoundTerm>> m_terms; // per column
    QVector<int> m_summed;
    int m_kindField = -1;
};

} // namespace knjige::output::report
