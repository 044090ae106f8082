#include "browser/widgets/BookGrid.h"

#include <QBrush>
#include <QFont>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>
#include <algorithm>

namespace knjige::browser
{

QVariant BookGridModel::data(const QModelIndex& index, int role) const
{
    switch (role) {
    case Qt::FontRole: {
        if (!BookModel::data(index, BoldRole).toBool())
            return {};
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    case Qt::BackgroundRole:
        return BookModel::data(index, TotalsRowRole).toBool() ? QVariant(QBrush(Qt::white)) : QVariant();
    case Qt::ForegroundRole:
        return BookModel::data(index, TotalsRowRole).toBool() ? QVariant(QBrush(Qt::black)) : QVariant();
    default:
        return BookModel::data(index, role);
    }
}

QVariant BookGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::FontRole && BookModel::headerData(section, orientation, BoldRole).toBool()) {
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    return BookModel::headerData(section, orientation, role);
}

BookGrid::BookGrid(QWidget* parent)
    : QTableView(parent)
{
    setObjectName(QStringLiteral("fg"));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    setTabKeyNavigation(false);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    verticalHeader()->setHighlightSections(false);
    QFont bold = font();
    bold.setBold(true);
    verticalHeader()->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(QStringLiteral("Ukupno:")) + 16);
    connect(this, &QAbstractItemView::entered, this, [this](const QModelIndex& index) {
        if (m_rowFollowsMouse && index.isValid())
            setCurrentIndex(index);
    });
}

int BookGrid::contentWidth(int column) const
{
    const QAbstractItemModel* m = model();
    const int rows = m ? m->rowCount() : 0;
    QFont boldFont = font();
    boldFont.setBold(true);
    const QFontMetrics plain(font());
    const QFontMetrics bold(boldFont);
    const auto width = [&](int row) {
        const QModelIndex index = m->index(row, column);
        const QString text = index.data(Qt::DisplayRole).toString();
        return (index.data(BookModel::BoldRole).toBool() ? bold : plain).horizontalAdvance(text);
    };
    constexpr int kSample = 5000;
    const int step = std::max(1, rows / kSample);
    int widest = 0;
    for (int r = 0; r < rows; r += step)
        widest = std::max(widest, width(r));
    if (rows > 0)
        widest = std::max(widest, width(rows - 1));
    // The cell's own margins, as the view draws them.
    return widest + 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + 2;
}

void BookGrid::setRowFollowsMouse(bool on)
{
    m_rowFollowsMouse = on;
    setMouseTracking(on);
}

void BookGrid::keyPressEvent(QKeyEvent* event)
{
    if (onKey && onKey(event->key())) {
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

} // namespace knjige::browser
