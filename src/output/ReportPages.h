#pragma once

#include "session/Money.h"

#include <QVector>

namespace knjige::output::report
{

// One printed page of a book: rows [firstRow, endRow) and the sums of its summed
// columns. `brought` is what the page brings forward ("Prenos"): the sum of the rows
// of every earlier page, zero on the first page. `carried` is what it hands on: on
// every page but the last the page's "Za prenos", on the last the book's totals. A
// row's amounts count on the page that prints its first line.
struct Page {
    int firstRow = 0;
    int endRow = 0;
    // Lines of a row taller than a page: `firstLine` is the first line of `firstRow`
    // this page prints (0 unless the page goes on with a row begun on the one before),
    // `endLine` the line of the last row the next page goes on from (0: the row ends here).
    int firstLine = 0;
    int endLine = 0;
    QVector<Money> brought;
    QVector<Money> carried;
};

// Decides which rows fall on which page, from the rows' heights alone, so the same
// rows always give the same pages. Rows are added in print order, one pass, and kept
// by index only: a long book is not held a second time.
//
// Heights are in body lines. Every page keeps one line at its foot for "Za prenos" or,
// on the last page, the totals, and every page after the first one line at its head
// for "Prenos"; the first page of a book printed for a period that continues the year
// one for "Donos". The last page also keeps the lines that close the book (the total
// to date, the signature): when they do not fit below its rows, a page of its own
// brings the sums forward and takes them. A row that fits on a page never splits: one that does not fit below the
// rows before it moves whole to the next page. A row taller than a whole page (a text
// of thousands of characters) opens a page and runs on over as many pages as it needs,
// the next row following its last line. So the same rows always break the same way.
class Paginator
{
public:
    // `firstPageLines` and `otherPageLines`: the body lines of the first page (below
    // the book's heading) and of the others, summary lines included. `sums`: the
    // number of summed columns.
    Paginator(int firstPageLines, int otherPageLines, int sums);

    // Before the first row: the sums the book brings forward from before the period.
    // They open the first page and count in every page's sums after it.
    void bringForward(const QVector<Money>& sums);
    // Before finish: the lines the last page needs below its totals.
    void closeWith(int lines);
    // The next row: its height in lines and the values of its summed columns.
    void add(int lines, const QVector<Money>& values);
    // The pages; one empty page when no row was added.
    QVector<Page> finish();

    // Body lines left for rows on a page, summary lines taken off.
    int rowLines(int pageIndex) const;

private:
    // Closes the page and opens the next, beginning with line `firstLine` of `firstRow`.
    void nextPage(int firstRow, int firstLine);

    int m_firstLines;
    int m_otherLines;
    int m_sums;
    int m_row = 0;
    int m_used = 0;
    bool m_brought = false;
    int m_closing = 0;
    QVector<Money> m_running;
    QVector<Page> m_pages;
};

} // namespace knjige::output::report
