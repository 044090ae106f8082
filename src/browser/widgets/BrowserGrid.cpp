// Filling and refreshing the grid, its keys, header sort and the command menu.
#include "browser/BrowserRules.h"
#include "browser/widgets/BookGrid.h"
#include "browser/widgets/TotalsPanelView.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "output/GridWorkbook.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/db/ReadAside.h"

#include <QAction>
#include <QHeaderView>
#include <algorithm>
#include <memory>
#include <vector>

namespace knjige::browser
{
namespace
{

// The width the cells of a column want, over the rows a first look shows and the rows
// after them up to a thousand, and the totals rows: the cells with the longest texts
// measured as the grid draws them. Measuring each of the thousand cells the grid's own
// way took a tenth of a large book's opening.
int sadrzajKolone(const QTableView& grid, int column)
{
    const QAbstractItemModel* model = grid.model();
    const int rows = model->rowCount();
    constexpr int kSampled = 1000;
    constexpr int kMeasured = 8;
    std::vector<std::pair<qsizetype, int>> longest; // text length, row
    auto consider = [&](int row) {
        const qsizetype length = model->data(model->index(row, column)).toString().size();
        longest.emplace_back(length, row);
    };
    for (int row = 0; row < std::min(rows, kSampled); ++row)
        consider(row);
    if (rows > kSampled)
        consider(rows - 1);
    const auto cut = longest.begin() + std::min<qsizetype>(kMeasured, qsizetype(longest.size()));
    std::partial_sort(longest.begin(), cut, longest.end(),
        [](const auto& a, const auto& b) { return a.first > b.first || (a.first == b.first && a.second < b.second); });
    int width = 0;
    for (auto it = longest.begin(); it != cut; ++it)
        width = std::max(width, grid.sizeHintForIndex(model->index(it->second, column)).width());
    // A flag's check box has no text to go by.
    if (!longest.empty() && model->data(model->index(longest.front().second, column), Qt::CheckStateRole).isValid())
        width = std::max(width, grid.sizeHintForIndex(model->index(0, column)).width());
    return grid.showGrid() ? width + 1 : width;
}

} // namespace

int frmSifarnikKnj::trenutniRed() const
{
    const QModelIndex current = m_fg->currentIndex();
    return current.isValid() ? m_model->dataRow(current.row()) : -1;
}

qint32 frmSifarnikKnj::trenutniRBroj() const
{
    const int row = trenutniRed();
    const int f = rsStavke().indexOf(QStringLiteral("RBroj"));
    return row < 0 || f < 0 ? 0 : qint32(rsStavke().integer(row, f));
}

bool frmSifarnikKnj::jeRedUkupno(int modelRow) const
{
    return m_model->isTotalsRow(modelRow);
}

void frmSifarnikKnj::postaviTrenutniRed(int dataRow)
{
    if (dataRow < 0 || dataRow >= m_model->entryCount())
        return;
    const int column = std::max(0, m_fg->currentIndex().column());
    const QModelIndex index = m_model->index(m_model->modelRow(dataRow), column);
    m_fg->setCurrentIndex(index);
    // At the first entry the totals row above it stays in view.
    if (dataRow == 0)
        m_fg->scrollToTop();
    else
        m_fg->scrollTo(index);
}

// The entry to keep current across a reload. A totals row stands for the entry next
// to it, as the record set never rests on a totals row.
int frmSifarnikKnj::redZaOznaku() const
{
    const QModelIndex current = m_fg->currentIndex();
    if (!current.isValid())
        return -1;
    if (m_model->isTotalsRow(current.row()))
        return current.row() == 0 ? 0 : m_model->entryCount() - 1;
    return m_model->dataRow(current.row());
}

void frmSifarnikKnj::OsvjeziZapise()
{
    const int remembered = m_model->entryCount() > 0 ? redZaOznaku() : -1;
    // The running totals are summed aside while the rows are read.
    const std::unique_ptr<db::ReadAside> panel = pocniCitanjePanela(m_query);
    db::Database& db = session().db();
    db::ResultSet rows;
    if (!db.open(m_query.sql(), rows)) {
        warn(QStringLiteral("Desila se greška u pristupu podacima. Ponovite!") + QStringLiteral("\r\n")
                + db.errorDescription(),
            QStringLiteral("Greška u pristupu podacima"));
        return;
    }
    m_fg->setUpdatesEnabled(false);
    m_model->setResultSet(std::move(rows));
    int current = BookModel::rowAfterReload(remembered, m_model->entryCount());
    if (m_query.returnTo != 0 && current >= 0) {
        const int found = m_model->findRBroj(m_query.returnTo);
        if (found >= 0)
            current = found;
    }
    // The number is a one-time request of the operation that changed data; a later
    // refresh keeps whatever row the operator has moved to since.
    m_query.returnTo = 0;
    setColumnWidths();
    osvjeziOznakuSorta();
    postaviTrenutniRed(current);
    osvjeziPanel(*m_lvStanje, m_query, panel.get());
    m_fg->setUpdatesEnabled(true);
}

// Widths are set once, on the first fill: later refreshes keep what the operator set.
// Name columns take "VelNazivaSifri"; the others fit their contents (a kind's name
// included) up to a cap against runaway texts, and the empty marker column I, always
// the last, takes no room.
void frmSifarnikKnj::setColumnWidths()
{
    if (m_sirinePostavljene || m_model->columnCount() == 0)
        return;
    m_sirinePostavljene = true;
    QHeaderView* header = m_fg->horizontalHeader();
    const int cap = m_fg->fontMetrics().horizontalAdvance(QLatin1Char('0')) * 60;
    const int nameWidth = browser::twipsToPixels(m_velNazivaSifri, logicalDpiX());
    static const QStringList nameColumns
        = { QStringLiteral("Opis"), QStringLiteral("Naziv"), QStringLiteral("ImeKomit1"), QStringLiteral("ImeProd") };
    for (int c = 0; c < m_model->columnCount(); ++c) {
        const QString name = rsStavke().field(c).name;
        if (c == m_model->columnCount() - 1 && name == QLatin1String("I")) {
            header->setSectionHidden(c, true);
            continue;
        }
        if (nameColumns.contains(name, Qt::CaseInsensitive)) {
            header->resizeSection(c, nameWidth);
            continue;
        }
        const int fit = std::max(sadrzajKolone(*m_fg, c), header->sectionSizeHint(c));
        header->resizeSection(c, std::min(fit + 6, cap));
    }
}

void frmSifarnikKnj::osvjeziOznakuSorta()
{
    QHeaderView* header = m_fg->horizontalHeader();
    for (int c = 0; c < m_model->columnCount(); ++c) {
        if (const auto order = m_model->sortOrderOf(c + 1)) {
            header->setSortIndicatorShown(true);
            header->setSortIndicator(c, *order);
            return;
        }
    }
    header->setSortIndicatorShown(false);
}

void frmSifarnikKnj::fg_HeaderClick(int gridColumn)
{
    if (gridColumn < 1 || gridColumn > m_model->columnCount())
        return;
    m_model->headerSort(gridColumn);
    osvjeziOznakuSorta();
    postaviTrenutniRed(0);
}

bool frmSifarnikKnj::fg_KeyDown(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!m_prijenos)
            mnu_Click(2);
        else if (m_mnu[8]->isEnabled())
            mnu_Click(8);
        return true;
    case Qt::Key_F9:
    case Qt::Key_Insert:
        mnu_Click(1);
        return true;
    case Qt::Key_F3:
        mnu_Click(4);
        return true;
    case Qt::Key_F4: {
        QAction* ista = menuItem(QStringLiteral("mnuIstaStavka"));
        if (ista->isVisible() && ista->isEnabled())
            ista->trigger();
        return true;
    }
    case Qt::Key_Delete:
        mnu_Click(3);
        return true;
    case Qt::Key_F10:
        if (m_mnu[8]->isEnabled())
            mnu_Click(8);
        return true;
    default:
        return false;
    }
}

void frmSifarnikKnj::mnu_Click(int index)
{
    QAction* entry = mnu(index);
    if (!entry || !entry->isEnabled())
        return;
    // The totals rows are not entries: nothing to change, delete or hand back there.
    const bool onEntry = trenutniRed() >= 0;
    if ((index == 2 || index == 3 || index == 8) && !onEntry)
        return;
    emit naredba(index);
    switch (index) {
    case 1:
        NoviZapis();
        break;
    case 2:
        IzmjenaZapisa(2);
        break;
    case 3:
        IzmjenaZapisa(4);
        break;
    case 4:
        PostaviFilter();
        break;
    case 5:
        OsvjeziZapise();
        break;
    case 6:
        IspišiZapise();
        break;
    case 7:
        close();
        break;
    case 8:
        PreneseniRBroj = trenutniRBroj();
        accept();
        break;
    default:
        break;
    }
}

void frmSifarnikKnj::SpremiGrid()
{
    QString error;
    const QString path = browser::gridDumpPath();
    if (!output::GridWorkbook::write(*m_model, path, &error))
        warn(failureText(error));
    else
        inform(browser::gridDumpMessage(path), QStringLiteral("Tablica u Excel"), Icon::Information);
}

} // namespace knjige::browser
