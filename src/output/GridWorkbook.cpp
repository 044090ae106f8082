#include "output/GridWorkbook.h"

#include "browser/BookModel.h"

#include <QAbstractItemModel>
#include <QDate>

#ifdef KNJIGE_HAVE_XLSXWRITER
#include <map>
#include <xlsxwriter.h>
#endif

namespace knjige::output
{

#ifdef KNJIGE_HAVE_XLSXWRITER

namespace
{

// One format per (number format, bold) pair: the writer keeps every format it is
// given for the life of the workbook, so they are made once.
class Formats
{
public:
    explicit Formats(lxw_workbook* wb)
        : m_wb(wb)
    {
    }
    lxw_format* get(const QString& gridFormat, bool bold)
    {
        const auto key = std::make_pair(gridFormat, bold);
        auto it = m_formats.find(key);
        if (it != m_formats.end())
            return it->second;
        lxw_format* f = nullptr;
        if (!gridFormat.isEmpty() || bold) {
            f = workbook_add_format(m_wb);
            if (bold)
                format_set_bold(f);
            const QByteArray excel = excelFormat(gridFormat);
            if (!excel.isEmpty())
                format_set_num_format(f, excel.constData());
        }
        m_formats.emplace(key, f);
        return f;
    }

private:
    static QByteArray excelFormat(const QString& gridFormat)
    {
        if (gridFormat == QStringLiteral("dd.MM.yy"))
            return "dd.mm.yy";
        return gridFormat.toUtf8();
    }
    lxw_workbook* m_wb;
    std::map<std::pair<QString, bool>, lxw_format*> m_formats;
};

void writeCell(
    lxw_worksheet* ws, Formats& formats, int row, int col, const QAbstractItemModel& model, const QModelIndex& index)
{
    const QVariant value = model.data(index, browser::BookModel::ValueRole);
    const QString format = model.data(index, browser::BookModel::FormatRole).toString();
    const bool bold = model.data(index, browser::BookModel::BoldRole).toBool();
    lxw_format* f = formats.get(format, bold);
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::LongLong:
    case QMetaType::Int:
        worksheet_write_number(ws, row, col, value.toDouble(), f);
        return;
    case QMetaType::QDate: {
        const QDate d = value.toDate();
        lxw_datetime dt = { d.year(), d.month(), d.day(), 0, 0, 0 };
        worksheet_write_datetime(ws, row, col, &dt, f);
        return;
    }
    case QMetaType::Bool:
        worksheet_write_boolean(ws, row, col, value.toBool(), f);
        return;
    default:
        break;
    }
    const QString text = model.data(index, Qt::DisplayRole).toString();
    if (!text.isEmpty())
        worksheet_write_string(ws, row, col, text.toUtf8().constData(), f);
    else if (bold)
        worksheet_write_blank(ws, row, col, f);
}

} // namespace

bool GridWorkbook::available()
{
    return true;
}

bool GridWorkbook::write(const QAbstractItemModel& model, const QString& path, QString* error)
{
    lxw_workbook* wb = workbook_new(path.toLocal8Bit().constData());
    if (!wb) {
        *error = QStringLiteral("Ne mogu napraviti datoteku ") + path;
        return false;
    }
    lxw_worksheet* ws = workbook_add_worksheet(wb, nullptr);
    Formats formats(wb);
    lxw_format* fixed = formats.get({}, true);
    const int rows = model.rowCount();
    const int cols = model.columnCount();
    for (int c = 0; c < cols; ++c) {
        const QString name = model.headerData(c, Qt::Horizontal).toString();
        worksheet_write_string(ws, 0, c + 1, name.toUtf8().constData(), fixed);
    }
    for (int r = 0; r < rows; ++r) {
        const QString rowHeader = model.headerData(r, Qt::Vertical).toString();
        if (!rowHeader.isEmpty())
            worksheet_write_string(ws, r + 1, 0, rowHeader.toUtf8().constData(), fixed);
        for (int c = 0; c < cols; ++c)
            writeCell(ws, formats, r + 1, c + 1, model, model.index(r, c));
    }
    const lxw_error result = workbook_close(wb);
    if (result != LXW_NO_ERROR) {
        *error = QString::fromUtf8(lxw_strerror(result));
        return false;
    }
    return true;
}

#else

bool GridWorkbook::available()
{
    return false;
}

bool GridWorkbook::write(const QAbstractItemModel&, const QString&, QString* error)
{
    *error = QStringLiteral("Spremanje tablice u radnu knjigu nije dostupno u ovoj izvedbi programa.");
    return false;
}

#endif

} // namespace knjige::output
