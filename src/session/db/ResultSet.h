#pragma once

#include "session/Money.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QHash>
#include <QString>
#include <QVariant>
#include <QVector>
#include <vector>

namespace knjige::db
{

// The data types a field can have, as SQL Server would type the column.
enum class FieldType { Integer, Currency, Decimal, Float, Date, Text, Boolean };

// "integer", "currency", "decimal", "float", "date", "text", "boolean".
QString fieldTypeName(FieldType type);
bool isNumeric(FieldType type);

struct Field {
    QString name;
    FieldType type = FieldType::Text;
};

// The rows of one SELECT, read in one forward pass and kept column by column, as
// compactly as a book of a million entries needs: numbers, amounts (ten-thousandths),
// dates (Julian days) and flags as integers of 32 bits while every value of the column
// fits and of 64 bits from the first that does not, fractions as doubles, texts as
// UTF-8 in one block per column (a text repeated often, such as a kind's name, stored
// once), NULL as one bit. Rows are addressed by index; reading is cheap enough for a
// grid to ask only for the cells it paints.
class ResultSet
{
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

    bool isNull(int row, int column) const { return m_columns[column].nulls.get(row); }
    // Integer → qlonglong, Currency → Money, Decimal/Float → double, Date → QDate,
    // Text → QString, Boolean → bool; NULL → an invalid QVariant.
    QVariant value(int row, int column) const;
    QVariant value(int row, const QString& name) const;
    qint64 integer(int row, int column) const; // amounts and fractions truncated
    Money money(int row, int column) const; // integers and fractions converted
    double real(int row, int column) const;
    QDate date(int row, int column) const;
    QString text(int row, int column) const; // the value in plain text form
    // A text cell's own UTF-8 bytes, valid until the rows change; empty for NULL and
    // for the cells of other types.
    QByteArrayView utf8(int row, int column) const;

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
    // A text as UTF-8 bytes, as the embedded database hands it over.
    void setUtf8(int column, QByteArrayView v);
    void reserve(int rows);
    // Drops every row and keeps the fields: the next part of a result read in parts.
    void clearRows();

    // Re-orders the rows by a permutation (new row i = old row order[i]).
    void permute(const std::vector<int>& order);

    // Whole numbers of one column: 32 bits each until a value needs 64.
    class Numbers
    {
    public:
        qint64 operator[](size_t i) const { return m_wide ? m_64[i] : m_32[i]; }
        size_t size() const { return m_wide ? m_64.size() : m_32.size(); }
        void push_back(qint64 v);
        void setBack(qint64 v);
        void reserve(size_t n);
        void permute(const std::vector<int>& order);
        void clear();

    private:
        void widen();
        std::vector<qint32> m_32;
        std::vector<qint64> m_64;
        bool m_wide = false;
    };

private:
    class Bits
    {
    public:
        bool get(size_t i) const { return (m_words[i >> 6] >> (i & 63)) & 1; }
        void push_back(bool on);
        void setBack(bool on);
        void reserve(size_t n) { m_words.reserve((n + 63) / 64); }
        void clear()
        {
            m_words.clear();
            m_size = 0;
        }
        void permute(const std::vector<int>& order);

    private:
        std::vector<quint64> m_words;
        size_t m_size = 0;
    };
    // The texts of one column: each cell the offset of its text in `bytes`, where a
    // text is its length (7 bits a byte, low first) followed by its UTF-8 bytes. While
    // texts repeat, `shared` finds the one already stored.
    struct Texts {
        std::vector<char> bytes;
        QHash<QByteArray, qint64> shared;
        qint64 seen = 0;
        qint64 found = 0;
        bool sharing = true;
        qint64 store(QByteArrayView text);
        QByteArrayView at(qint64 offset) const;
    };
    struct Column {
        Numbers numbers; // integers, amounts, dates, flags; text offsets
        std::vector<double> reals;
        Texts texts;
        Bits nulls;
    };
    Column& column(int c) { return m_columns[c]; }
    void storeText(int c, QByteArrayView utf8);

    QVector<Field> m_fields;
    std::vector<Column> m_columns;
    int m_rows = 0;
};

} // namespace knjige::db
