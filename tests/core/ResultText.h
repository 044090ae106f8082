#pragma once

// Result sets as short texts, so that one comparison checks a whole header, row or
// column: a wrong, missing or extra value shows in the message as it is (UTF-8).
#include "session/db/ResultSet.h"

#include <QStringList>
#include <QVariantList>
#include <string>

namespace knjige::test
{

// The fields' names, or the names of their types, joined with commas.
inline std::string fieldNames(const db::ResultSet& rs)
{
    QStringList out;
    for (const db::Field& f : rs.fields())
        out << f.name;
    return out.join(u',').toStdString();
}

inline std::string fieldTypes(const db::ResultSet& rs)
{
    QStringList out;
    for (const db::Field& f : rs.fields())
        out << db::fieldTypeName(f.type);
    return out.join(u',').toStdString();
}

// One row's values, or one column's values top to bottom, joined with '|'; "<null>"
// stands for NULL.
inline std::string rowText(const db::ResultSet& rs, int row, int onlyColumn = -1)
{
    QStringList out;
    for (int c = 0; c < rs.fieldCount(); ++c)
        if (onlyColumn < 0 || c == onlyColumn)
            out << (rs.isNull(row, c) ? QStringLiteral("<null>") : rs.text(row, c));
    return out.join(u'|').toStdString();
}

// Every row as rowText gives it, joined with "; ".
inline std::string rowsText(const db::ResultSet& rs)
{
    std::string out;
    for (int r = 0; r < rs.rowCount(); ++r)
        out += (r ? "; " : "") + rowText(rs, r);
    return out;
}

// A result of `fields` with a row for each list of values, each value set as
// ResultSet::set takes it: a text in a typed column is read as that type, an empty
// QVariant is NULL.
inline db::ResultSet resultSet(QVector<db::Field> fields, const QList<QVariantList>& rows)
{
    db::ResultSet rs(std::move(fields));
    for (const QVariantList& row : rows) {
        rs.appendRow();
        for (int c = 0; c < row.size(); ++c)
            rs.set(c, row[c]);
    }
    return rs;
}

inline std::string columnText(const db::ResultSet& rs, const QString& name)
{
    std::string out;
    const int c = rs.indexOf(name);
    for (int r = 0; r < rs.rowCount(); ++r)
        out += (r ? "|" : "") + (c < 0 ? std::string("<no field>") : rowText(rs, r, c));
    return out;
}

} // namespace knjige::test
