#include "browser/BookModel.h"

#include "books/BookKind.h"
#include "browser/TextOrder.h"
#include "session/AmountText.h"
#include "session/Dates.h"
#include "session/Workstation.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace knjige::browser
{

QVector<books::TotalsColumn> totalsColumns(int bookKind)
{
    const books::BookKind* book = books::findBook(bookKind);
    return book ? book->totals : QVector<books::TotalsColumn>();
}

namespace
{

QString formatOf(db::FieldType type)
{
    switch (type) {
    case db::FieldType::Currency:
    case db::FieldType::Decimal:
    case db::FieldType::Float:
        return QStringLiteral("#,##0.00");
    case db::FieldType::Integer:
        return QStringLiteral("#,##0");
    case db::FieldType::Date:
        return QStringLiteral("dd.MM.yy");
    default:
        return {};
    }
}

Qt::Alignment alignmentOf(db::FieldType type)
{
    switch (type) {
    case db::FieldType::Currency:
    case db::FieldType::Decimal:
    case db::FieldType::Float:
    case db::FieldType::Integer:
        return Qt::AlignRight | Qt::AlignVCenter;
    case db::FieldType::Boolean:
        return Qt::AlignCenter;
    default:
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

const QString kUkupno = QStringLiteral("Ukupno:");

} // namespace

QString formatMoney(Money value, const QLocale& locale)
{
    return amountDisplay(value, locale);
}

QString formatWhole(qint64 value, const QLocale& locale)
{
    return wholeDisplay(value, locale);
}

QString formatValue(const db::ResultSet& rs, int row, int column, const QLocale& locale)
{
    if (rs.isNull(row, column))
        return {};
    switch (rs.field(column).type) {
    case db::FieldType::Currency:
    case db::FieldType::Decimal:
    case db::FieldType::Float:
        return formatMoney(rs.money(row, column), locale);
    case db::FieldType::Integer:
        return formatWhole(rs.integer(row, column), locale);
    case db::FieldType::Date:
        return dates::display(rs.date(row, column));
    case db::FieldType::Boolean:
        return {};
    case db::FieldType::Text:
        return rs.text(row, column);
    }
    return {};
}

BookModel::BookModel(QObject* parent)
    : QAbstractTableModel(parent)
    , m_locale(componentLocale())
{
}

void BookModel::setBookKind(int bookKind)
{
    beginResetModel();
    m_bookKind = bookKind;
    m_totalsLayout = totalsColumns(bookKind);
    computeTotals();
    endResetModel();
}

void BookModel::setLocale(const QLocale& locale)
{
    m_locale = locale;
    if (rowCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), { Qt::DisplayRole });
}

void BookModel::setResultSet(db::ResultSet rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_loadOrder.resize(m_rows.rowCount());
    std::iota(m_loadOrder.begin(), m_loadOrder.end(), 0);
    m_textKeys.assign(m_rows.fieldCount(), nullptr);
    applySort();
    computeTotals();
    endResetModel();
}

bool BookModel::isTotalsRow(int modelRow) const
{
    return m_totalsShown && (modelRow == 0 || modelRow == m_rows.rowCount() + 1);
}

int BookModel::dataRow(int modelRow) const
{
    const int r = m_totalsShown ? modelRow - 1 : modelRow;
    return r >= 0 && r < m_rows.rowCount() ? r : -1;
}

int BookModel::modelRow(int dataRow) const
{
    return m_totalsShown ? dataRow + 1 : dataRow;
}

std::optional<Money> BookModel::total(int gridColumn) const
{
    const int f = gridColumn - 1;
    if (f < 0 || f >= int(m_totals.size()))
        return std::nullopt;
    return m_totals[f];
}

void BookModel::computeTotals()
{
    const int fields = m_rows.fieldCount();
    m_totals.assign(fields, std::nullopt);
    m_totalsBold.assign(fields, false);
    for (const books::TotalsColumn& tc : m_totalsLayout) {
        const int f = tc.gridColumn - 1;
        if (f < 0 || f >= fields)
            continue;
        Money sum;
        for (int r = 0; r < m_rows.rowCount(); ++r)
            sum += m_rows.money(r, f);
        m_totals[f] = sum;
        m_totalsBold[f] = tc.bold;
    }
    m_totalsShown = !m_totalsLayout.isEmpty() && m_rows.rowCount() > 0;
}

BookModel::SortKey BookModel::parseSort(const QString& expression) const
{
    SortKey key;
    const QString e = expression.trimmed();
    if (!e.startsWith(u'['))
        return key;
    const int close = e.indexOf(u']');
    if (close < 0)
        return key;
    const QString order = e.mid(close + 1).trimmed();
    if (order.compare(QStringLiteral("DESC"), Qt::CaseInsensitive) == 0)
        key.descending = true;
    else if (!order.isEmpty() && order.compare(QStringLiteral("ASC"), Qt::CaseInsensitive) != 0)
        return key;
    key.field = m_rows.indexOf(e.mid(1, close - 1));
    return key;
}

namespace
{

// Orders row numbers by one column: NULL before any value, ties in query order.
template <class Key, class Compare>
void orderRows(std::vector<int>& order, const std::vector<Key>& keys, const std::vector<quint8>& nulls,
    const std::vector<int>& load, bool descending, Compare compare)
{
    std::sort(order.begin(), order.end(), [&](int a, int b) {
        int c = 0;
        if (nulls[a] != nulls[b])
            c = nulls[a] ? -1 : 1;
        else if (!nulls[a])
            c = compare(keys[a], keys[b]);
        if (descending)
            c = -c;
        return c != 0 ? c < 0 : load[a] < load[b];
    });
}

template <class T> int threeWay(const T& a, const T& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

} // namespace

void BookModel::applySort()
{
    const int n = m_rows.rowCount();
    const SortKey key = parseSort(m_sort);
    std::vector<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    if (key.field < 0) {
        if (std::is_sorted(m_loadOrder.begin(), m_loadOrder.end()))
            return;
        std::sort(order.begin(), order.end(), [&](int a, int b) { return m_loadOrder[a] < m_loadOrder[b]; });
    } else {
        const int f = key.field;
        std::vector<quint8> nulls(n);
        for (int r = 0; r < n; ++r)
            nulls[r] = m_rows.isNull(r, f);
        switch (m_rows.field(f).type) {
        case db::FieldType::Text: {
            // Keys by position in the query's order, so they outlive the re-orderings.
            if (f >= int(m_textKeys.size()))
                m_textKeys.resize(m_rows.fieldCount());
            if (!m_textKeys[f])
                m_textKeys[f] = std::make_shared<const TextSortKeys>(m_rows, f, m_loadOrder);
            // NULL before any text ascending, after every one descending, each in the
            // query's order; the texts ordered by position and mapped back to rows.
            std::vector<int> nullRows;
            std::vector<int> positions;
            positions.reserve(n);
            for (int r = 0; r < n; ++r)
                (nulls[r] ? nullRows : positions).push_back(m_loadOrder[r]);
            std::sort(nullRows.begin(), nullRows.end());
            m_textKeys[f]->order(positions, key.descending);
            std::vector<int> rowAt(n);
            for (int r = 0; r < n; ++r)
                rowAt[m_loadOrder[r]] = r;
            order.clear();
            for (const std::vector<int>* part :
                key.descending ? std::array { &positions, &nullRows } : std::array { &nullRows, &positions })
                for (int p : *part)
                    order.push_back(rowAt[p]);
            break;
        }
        case db::FieldType::Decimal:
        case db::FieldType::Float: {
            std::vector<double> keys(n);
            for (int r = 0; r < n; ++r)
                keys[r] = m_rows.real(r, f);
            orderRows(order, keys, nulls, m_loadOrder, key.descending, threeWay<double>);
            break;
        }
        default: {
            const bool money = m_rows.field(f).type == db::FieldType::Currency;
            std::vector<qint64> keys(n);
            for (int r = 0; r < n; ++r)
                keys[r] = money ? m_rows.money(r, f).units() : m_rows.integer(r, f);
            orderRows(order, keys, nulls, m_loadOrder, key.descending, threeWay<qint64>);
            break;
        }
        }
    }
    bool identity = true;
    for (int i = 0; i < n && identity; ++i)
        identity = order[i] == i;
    if (identity)
        return;
    m_rows.permute(order);
    std::vector<int> load(n);
    for (int i = 0; i < n; ++i)
        load[i] = m_loadOrder[order[i]];
    m_loadOrder = std::move(load);
}

void BookModel::setSortExpression(const QString& expression)
{
    beginResetModel();
    m_sort = expression;
    applySort();
    endResetModel();
}

QString BookModel::headerSort(int gridColumn)
{
    const int f = gridColumn - 1;
    if (f < 0 || f >= m_rows.fieldCount())
        return m_sort;
    const QString name = m_rows.field(f).name;
    const QString ascending = u'[' + name + QStringLiteral("] ASC");
    setSortExpression(m_sort == ascending ? u'[' + name + QStringLiteral("] DESC") : ascending);
    return m_sort;
}

std::optional<Qt::SortOrder> BookModel::sortOrderOf(int gridColumn) const
{
    const int f = gridColumn - 1;
    if (f < 0 || f >= m_rows.fieldCount())
        return std::nullopt;
    const QString name = m_rows.field(f).name;
    if (m_sort == u'[' + name + QStringLiteral("] DESC"))
        return Qt::DescendingOrder;
    if (m_sort == u'[' + name + QStringLiteral("] ASC"))
        return Qt::AscendingOrder;
    return std::nullopt;
}

void BookModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= m_rows.fieldCount())
        return;
    const QString name = m_rows.field(column).name;
    setSortExpression(u'[' + name + (order == Qt::AscendingOrder ? QStringLiteral("] ASC") : QStringLiteral("] DESC")));
}

int BookModel::findRBroj(qint64 rBroj) const
{
    const int f = m_rows.indexOf(QStringLiteral("Rbroj"));
    if (f < 0)
        return -1;
    for (int r = 0; r < m_rows.rowCount(); ++r)
        if (!m_rows.isNull(r, f) && m_rows.integer(r, f) == rBroj)
            return r;
    return -1;
}

int BookModel::rowAfterReload(int rememberedDataRow, int entryCount)
{
    if (entryCount <= 0)
        return -1;
    if (rememberedDataRow < 0)
        return 0;
    return std::min(rememberedDataRow, entryCount - 1);
}

int BookModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid())
        return 0;
    return m_rows.rowCount() + (m_totalsShown ? 2 : 0);
}

int BookModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.fieldCount();
}

QString BookModel::displayText(int modelRow, int column) const
{
    return data(index(modelRow, column), Qt::DisplayRole).toString();
}

QVariant BookModel::totalsData(int column, int role) const
{
    const db::FieldType type = m_rows.field(column).type;
    const std::optional<Money>& sum = m_totals[column];
    switch (role) {
    case Qt::DisplayRole:
        if (!sum)
            return {};
        return type == db::FieldType::Integer && !sum->isOutOfRange()
            ? formatWhole(sum->units() / Money::Scale, m_locale)
            : formatMoney(*sum, m_locale);
    // A sum out of the money's range has no number; its text says so.
    case ValueRole:
        return sum && !sum->isOutOfRange() ? QVariant(sum->toDouble()) : QVariant();
    case FormatRole:
        return sum ? QVariant(formatOf(type == db::FieldType::Integer ? type : db::FieldType::Currency)) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(alignmentOf(sum ? db::FieldType::Currency : type));
    case BoldRole:
        return bool(m_totalsBold[column]);
    case TotalsRowRole:
        return true;
    default:
        return {};
    }
}

QVariant BookModel::entryData(int row, int column, int role) const
{
    const db::FieldType type = m_rows.field(column).type;
    switch (role) {
    case Qt::DisplayRole:
        return formatValue(m_rows, row, column, m_locale);
    case Qt::CheckStateRole:
        if (type != db::FieldType::Boolean)
            return {};
        return int(m_rows.integer(row, column) != 0 ? Qt::Checked : Qt::Unchecked);
    case ValueRole: {
        if (type == db::FieldType::Currency)
            return m_rows.isNull(row, column) ? QVariant() : QVariant(m_rows.money(row, column).toDouble());
        const QVariant v = m_rows.value(row, column);
        return v.typeId() == QMetaType::LongLong ? QVariant(v.toLongLong()) : v;
    }
    case FormatRole:
        return formatOf(type);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(alignmentOf(type));
    case BoldRole:
    case TotalsRowRole:
        return false;
    default:
        return {};
    }
}

QVariant BookModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.column() >= m_rows.fieldCount())
        return {};
    if (isTotalsRow(index.row()))
        return totalsData(index.column(), role);
    const int r = dataRow(index.row());
    return r < 0 ? QVariant() : entryData(r, index.column(), role);
}

QVariant BookModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal) {
        if (section < 0 || section >= m_rows.fieldCount())
            return {};
        if (role == Qt::DisplayRole)
            return m_rows.field(section).name;
        return {};
    }
    if (!isTotalsRow(section))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return kUkupno;
    case BoldRole:
    case TotalsRowRole:
        return true;
    default:
        return {};
    }
}

Qt::ItemFlags BookModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

} // namespace knjige::browser
