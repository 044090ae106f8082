#pragma once

#include "browser/BookModel.h"

#include <QTableView>
#include <functional>

namespace knjige::browser
{

// The book model as the grid draws it: bold cells and the white-on-black totals rows
// turned into fonts and brushes, which the core model cannot name.
class BookGridModel final : public BookModel
{
    Q_OBJECT
public:
    using BookModel::BookModel;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
};

// The browser's grid `fg`. Keys go first to the browser's handler; a key it takes is
// swallowed, so Enter never reaches a default button of the window.
class BookGrid final : public QTableView
{
    Q_OBJECT
public:
    explicit BookGrid(QWidget* parent = nullptr);

    // Returns true when the key was taken.
    std::function<bool(int key)> onKey;
    // Whether the current row follows the mouse.
    void setRowFollowsMouse(bool on);
    // The width the cells of a column want, over every row (an even sample of a very
    // long book, its totals rows always among them), not only those in view.
    int contentWidth(int column) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_rowFollowsMouse = false;
};

} // namespace knjige::browser
