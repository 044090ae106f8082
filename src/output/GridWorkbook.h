#pragma once

#include <QString>

class QAbstractItemModel;

namespace knjige::output
{

// Writes a whole grid as a spreadsheet workbook (Office Open XML), fixed cells
// included: the column headers as the first row and the row headers as the first
// column. Cells are written as the grid shows them, amounts and whole numbers as numbers
// in their display format, dates as dates, bold where the grid draws bold. The model's
// roles are those of BookModel (ValueRole, FormatRole, BoldRole); a model without them
// is written as text.
class GridWorkbook
{
public:
    // False when the program was built without the workbook writer.
    static bool available();

    // Overwrites `path`. On failure returns false with *error set.
    static bool write(const QAbstractItemModel& model, const QString& path, QString* error);
};

} // namespace knjige::output
