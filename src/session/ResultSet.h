#pragma once

#include "session/Money.h"

#include <QDate>
#include <QString>
#include <QVariant>
#include <QVector>

#include <vector>

namespace knjige {

// The data types a field can have, as SQL Server would type the column.
enum class FieldType { Integer, Currency, Decimal, Float, Date, Text, Boolean };

// "integer", "currency", "decimal", "float", "date", "text", "boolean".
QString fieldTypeName(FieldType type);
bool isNumeric(FieldType type);

struct Field {
    QString name;
    FieldType type = FieldType::Text;
};

// The rows of one SELECT, read in one forward pass and kept column by column:
// numbers, amounts (ten-thousandths), dates (Julian days) and flags as 64-bit
// integers, fractions as doubles, texts as strings. Rows are addressed by index;
// reading is cheap enough for a grid to ask only for the cells it paints.
class ResultSet {
public:
    ResultSet() = default;
    explicit ResultSet(QVector<Field> fields);

    int rowCount() const { return m_rows; }
    int fieldCount() const { return int(m_fields.size()); }
    bool isEmpty() const { return m_rows == 0; }
    const QVector<Field>& fields() const { return m_fields; }
    const Field& field(int column) const { return m_fields[column]; }
    // Case-insensitive, as the database's own names are; -1 when absent.
    int indexOf(const QString& name) const;

    bool isNull(int row, int column) const { return m_columns[column].nulls[row] != 0; }
    // Integer → qlonglong, Currency → Money, Decimal/Float → double, Date → QDate,
    // Text → QString, Boolean → bool; NULL → an invalid QVariant.
    QVariant value(int row, int column) const;
    QVariant value(int row, const QString& name) const;
    qint64 integer(int row, int column) const;   // amounts and fractions truncated
    Money money(int row, int column) const;      // integers and fractions converted
    double real(int row, int column) const;
    QDate date(int row, int column) const;
    QString text(int row, int column) const;     // the value in plain text form

    // Filling, in row order: begin a row, set each column, end it. A column that is
    // not set stays NULL.
    void appendRow();
    void set(int column, const QVariant& value);
    void setNull(int column);
    void setInteger(int column, qint64 v);
    void setMoney(int column, Money v);
    void setReal(int column, double v);
    void setDate(int column, const QDate& v);
    void setText(int column, const QString& v);
    void reserve(int rows);

    // Re-orders the rows by a permutation (new row i = old row order[i]).
    void permute(const std::vector<int>& order);

private:
    struct Column {
        std::vector<qint64> numbers;
        std::vector<double> reals;
        std::vector<QString> texts;
        std::vector<quint8> nulls;
    };
    Column& column(int c) { return m_columns[c]; }

    QVector<Field> m_fields;
    std::vector<Column> m_columns;
    int m_rows = 0;
};

} // namespace knjige
