// The running totals panel under the grid, rebuilt at the end of every refresh.
#include "browser/BookModel.h"
#include "browser/BrowserRules.h"
#include "browser/TotalsPanel.h"
#include "browser/widgets/TotalsPanelView.h"
#include "browser/widgets/frmSifarnikKnj.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/Workstation.h"
#include "session/db/ReadAside.h"

#include <QHeaderView>
#include <QTreeWidget>
#include <algorithm>

namespace knjige::browser
{
namespace
{

void layColumns(QTreeWidget& list, const QStringList& headers)
{
    list.setColumnCount(int(headers.size()) + 1);
    list.setHeaderLabels(QStringList { QStringLiteral(" ") } + headers);
    const int dpi = list.logicalDpiX();
    list.header()->setStretchLastSection(false);
    list.setColumnWidth(0, browser::twipsToPixels(browser::kPanelLabelWidth, dpi));
    for (int c = 1; c <= headers.size(); ++c) {
        list.setColumnWidth(c, browser::twipsToPixels(browser::kPanelValueWidth, dpi));
        list.headerItem()->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
    }
}

void addRow(QTreeWidget& list, const browser::PanelRow& row, const QLocale& locale)
{
    auto* item = new QTreeWidgetItem(&list);
    item->setText(0, row.label);
    QFont bold = list.font();
    bold.setBold(true);
    if (row.labelBold)
        item->setFont(0, bold);
    for (int c = 0; c < row.values.size(); ++c) {
        item->setText(c + 1, formatMoney(row.values[c], locale));
        item->setTextAlignment(c + 1, Qt::AlignRight | Qt::AlignVCenter);
        if (row.bold.value(c))
            item->setFont(c + 1, bold);
    }
}

} // namespace

std::unique_ptr<db::ReadAside> pocniCitanjePanela(const browser::BookQuery& query)
{
    if (!browser::hasTotalsPanel(query.bookKind))
        return nullptr;
    return std::make_unique<db::ReadAside>(session().db(), session().ConnString,
        browser::totalsPanelSql(query.bookKind, query.company, query.year, query.salesPoint(), query.filter.periodStart,
            query.filter.periodEnd));
}

bool osvjeziPanel(QTreeWidget& lvStanje, const browser::BookQuery& query, db::ReadAside* started)
{
    const int bookKind = query.bookKind;
    lvStanje.clear();
    const QStringList headers = browser::totalsPanelHeaders(bookKind);
    lvStanje.setVisible(true);
    if (headers.isEmpty()) {
        // A book without running totals shows the panel empty.
        lvStanje.setColumnCount(1);
        lvStanje.setHeaderLabels({ QStringLiteral(" ") });
        return true;
    }
    layColumns(lvStanje, headers);
    std::unique_ptr<db::ReadAside> own;
    if (!started) {
        own = pocniCitanjePanela(query);
        started = own.get();
    }
    db::ResultSet rs;
    QString error;
    if (!started->wait(rs, &error)) {
        warn(browser::totalsPanelFailure());
        return false;
    }
    const QLocale locale = componentLocale();
    for (const browser::PanelRow& row : browser::totalsPanelRows(bookKind, rs).rows)
        addRow(lvStanje, row, locale);
    // The widths are the least a column gets: a label or header that needs more on
    // this screen's font is not cut.
    for (int c = 0; c < lvStanje.columnCount(); ++c) {
        const int least = lvStanje.columnWidth(c);
        lvStanje.resizeColumnToContents(c);
        lvStanje.setColumnWidth(c, std::max(least, lvStanje.columnWidth(c)));
    }
    return true;
}

void frmSifarnikKnj::OsvjeziStanje()
{
    osvjeziPanel(*m_lvStanje, m_query);
}

} // namespace knjige::browser
