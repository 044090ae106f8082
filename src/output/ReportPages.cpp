#include "output/ReportPages.h"

#include <algorithm>

namespace knjige::output::report
{

Paginator::Paginator(int firstPageLines, int otherPageLines, int sums)
    : m_firstLines(std::max(firstPageLines, 3))
    , m_otherLines(std::max(otherPageLines, 3))
    , m_sums(std::max(sums, 0))
    , m_running(m_sums)
{
    m_pages.push_back({ 0, 0, 0, 0, m_running, {} });
}

int Paginator::rowLines(int pageIndex) const
{
    return pageIndex == 0 ? m_firstLines - (m_brought ? 2 : 1) : m_otherLines - 2;
}

void Paginator::bringForward(const QVector<Money>& sums)
{
    m_brought = true;
    for (int i = 0; i < m_sums && i < sums.size(); ++i)
        m_running[i] = sums[i];
    m_pages.front().brought = m_running;
}

void Paginator::closeWith(int lines)
{
    m_closing = std::max(lines, 0);
}

void Paginator::nextPage(int firstRow, int firstLine)
{
    m_pages.back().carried = m_running;
    Page p;
    p.firstRow = firstRow;
    p.endRow = m_row;
    p.firstLine = firstLine;
    p.brought = m_running;
    m_pages.push_back(p);
    m_used = 0;
}

void Paginator::add(int lines, const QVector<Money>& values)
{
    lines = std::max(lines, 1);
    if (m_used > 0 && m_used + lines > rowLines(int(m_pages.size()) - 1))
        nextPage(m_row, 0);
    for (int i = 0; i < m_sums && i < values.size(); ++i)
        m_running[i] += values[i];
    m_pages.back().endRow = ++m_row;
    int printed = 0; // lines of the row on the pages before this one
    while (lines - printed > rowLines(int(m_pages.size()) - 1) - m_used) {
        printed += rowLines(int(m_pages.size()) - 1) - m_used;
        m_pages.back().endLine = printed;
        nextPage(m_row - 1, printed);
    }
    m_used += lines - printed;
}

QVector<Page> Paginator::finish()
{
    // Closing lines the last page has no room for go on a page of their own, which
    // brings the sums forward like any other.
    if (m_closing > 0 && m_used > 0 && m_used + m_closing > rowLines(int(m_pages.size()) - 1))
        nextPage(m_row, 0);
    m_pages.back().carried = m_running;
    return m_pages;
}

} // namespace knjige::output::report
