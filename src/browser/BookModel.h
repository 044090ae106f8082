#pragma once

#include "books/BookKind.h"
#include "session/Money.h"
#include "session/db/ResultSet.h"

#include <QAbstractTableModel>
#include <QLocale>
#include <QVector>
#include <memory>
#include <optional>
#include <vector>

namespace knjige::browser
{

class TextSortKeys;

// The summed columns of a book kind, the caption column first; empty for a kind
// without a totals row.
QVector<books::TotalsColumn> totalsColumns(int bookKind);

// Display form of a field type: "#,##0.00" for amounts, "#,##0" for whole numbers and
// "dd.MM.yy" for dates, with the group separator and decimal mark of `locale`.
QString formatValue(const db::ResultSet& rs, int row, int column, const QLocale& locale);
QString formatMoney(Money value, const QLocale& locale);
QString formatWhole(qint64 value, const QLocale& locale);

// The browser's grid over one book's rows.
//
// Columns: the book's grid counts a fixed row-header column 0 and shows field c-1 in
// grid column c. Here the row header is the vertical header, so model column m is
// field m and grid column m+1; functions that take a "gridColumn" count the grid's way.
//
// Rows: when the book kind has a totals row and there is at least one entry, the
// "Ukupno:" row is laid twice, as model row 0 above the first entry and as the last
// model row below the last one. Every other model row is an entry: dataRow() maps it
// to its row in resultSet(). Totals rows are never entries.
//
// The rows are kept in the order of the sort expression ("[Field] ASC" or "[Field]
// DESC"); an empty expression keeps the order of the query. Sorting is stable with
// respect to that order, whatever sorts came before. Texts sort in the Bosnian
// alphabet's order with letter case ignored, NULL before any value.
class BookModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    // The cell's typed value: qlonglong, double (amounts), QDate, QString or bool.
    static constexpr int ValueRole = Qt::UserRole + 1;
    // The column's display format ("#,##0.00", "#,##0", "dd.MM.yy" or empty).
    static constexpr int FormatRole = Qt::UserRole + 2;
    // True for a cell whose text is drawn bold: the summed cells the book's design
    // marks, and the "Ukupno:" caption. Fonts and colours belong to the window layer,
    // which translates this role and TotalsRowRole.
    static constexpr int BoldRole = Qt::UserRole + 3;
    // True on the cells of a totals row (white background, black text).
    static constexpr int TotalsRowRole = Qt::UserRole + 4;

    explicit BookModel(QObject* parent = nullptr);

    void setBookKind(int bookKind);
    int bookKind() const { return m_bookKind; }
    void setLocale(const QLocale& locale);

    // Takes the rows of a fresh query: applies the sort expression in force and
    // recomputes the totals.
    void setResultSet(db::ResultSet rows);
    const db::ResultSet& resultSet() const { return m_rows; }
    int entryCount() const { return m_rows.rowCount(); }

    bool isTotalsRow(int modelRow) const;
    // The result set row of a model row; -1 for a totals row or a row out of range.
    int dataRow(int modelRow) const;
    // The model row of a result set row.
    int modelRow(int dataRow) const;
    // The sum of a grid column over all entries; nothing for a column that is not summed.
    std::optional<Money> total(int gridColumn) const;

    QString sortExpression() const { return m_sort; }
    // Sets and applies "[Field] ASC|DESC"; an expression naming no field of the rows is
    // kept (it may fit the next query) but changes nothing.
    void setSortExpression(const QString& expression);
    // A click on the header of a grid column: ascending, or descending when the column
    // is already sorted ascending. Returns the new expression.
    QString headerSort(int gridColumn);
    // The order shown in a grid column's header, if the expression sorts by it.
    std::optional<Qt::SortOrder> sortOrderOf(int gridColumn) const;

    // The result set row whose RBroj is `rBroj` ("Rbroj=" search); -1 when none.
    int findRBroj(qint64 rBroj) const;
    // The entry that is current after a reload: none remembered → the first; beyond
    // the new count → the last; otherwise the same position. -1 for no rows.
    static int rowAfterReload(int rememberedDataRow, int entryCount);

    QString displayText(int modelRow, int column) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    struct SortKey {
        int field = -1;
        bool descending = false;
    };
    SortKey parseSort(const QString& expression) const;
    void applySort();
    void computeTotals();
    QVariant totalsData(int column, int role) const;
    QVariant entryData(int row, int column, int role) const;

    int m_bookKind = 0;
    QLocale m_locale;
    db::ResultSet m_rows;
    std::vector<int> m_loadOrder; // position of each row in the query's own order
    // The sort keys of each text column sorted since the load, by position in the
    // query's order: a second click or a refresh's re-sort does not make them again.
    std::vector<std::shared_ptr<const TextSortKeys>> m_textKeys;
    QString m_sort;
    QVector<books::TotalsColumn> m_totalsLayout;
    std::vector<std::optional<Money>> m_totals; // per field
    std::vector<bool> m_totalsBold; // per field
    bool m_totalsShown = false;
};

} // namespace knjige::browser
