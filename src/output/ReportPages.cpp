#include "output/ReportPages.h"

#include <algorithm>

namespace knjige::report
{

Paginator::Paginator(int firstPageLines, int otherPageLines, int sums)
    : m_firstLines(std::max(firstPageLines, 2))
    , m_otherLines(std::max(otherPageLines, 3))
    , m_sums(std::max(sums, 0))
    , m_running(m_sums)
{
    startPage();
}

int Paginator::rowLines(int pageIndex) const
{
    return pageIndex == 0 ? m_firstLines - 1 : m_otherLines - 2;
}

void Paginator::startPage()
{
    Page p;
    p.firstRow = m_row;
    p.endRow = m_row;
    p.brought = m_running;
    m_pages.push_back(p);
    m_used = 0;
}

void Paginator::add(int lines, const QVector<Money>& values)
{
    lines = std::max(lines, 1);
    const int pageIndex = int(m_pages.size()) - 1;
    if (m_used > 0 && m_used + lines > rowLines(pageIndex)) {
        m_pages.back().carried = m_running;
        startPage();
    }
    m_used += lines;
    for (int i = 0; i < m_sums && i < values.size(); ++i)
        m_running[i] += values[i];
    m_pages.back().endRow = ++m_row;
}

QVector<Page> Paginator::finish()
{
    m_pages.back().carried = m_running;
    return m_pages;
}

} // namespace knjige::report
