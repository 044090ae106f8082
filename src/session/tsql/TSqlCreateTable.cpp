#include "session/tsql/TSqlEdits.h"
#include "session/tsql/TSqlTranslator.h"

#include <utility>
#include <vector>

namespace knjige::tsql
{
namespace
{

// The significant tokens of a statement, read with bounds: past the end is an empty
// symbol, so a statement cut short anywhere reads as ending there.
class Cursor
{
public:
    explicit Cursor(const QVector<Token>& tokens)
        : m_tokens(tokens)
    {
        for (int i = 0; i < tokens.size(); ++i)
            if (!tokens[i].isTrivia())
                m_sig.push_back(i);
    }
    bool atEnd(size_t p) const { return p >= m_sig.size(); }
    const Token& at(size_t p) const
    {
        static const Token end { Token::Kind::Symbol, QString() };
        return atEnd(p) ? end : m_tokens[m_sig[p]];
    }
    int index(size_t p) const { return atEnd(p) ? -1 : m_sig[p]; }

private:
    const QVector<Token>& m_tokens;
    std::vector<int> m_sig;
};

bool isConstraint(const Token& head)
{
    static const char* const words[] = { "CONSTRAINT", "PRIMARY", "UNIQUE", "CHECK", "FOREIGN", "INDEX" };
    for (const char* w : words)
        if (head.is(w))
            return true;
    return false;
}

// The check a column of the type keeps on every value stored in it: SQLite would
// store a text in a whole-number, money or date column, or any length in any text
// column, and the row would then read back as 0 or NULL. Plain SQL, so that any
// SQLite tool can still write the file; the constraint's name "tsql:<type>:<column>"
// lets the backend give the server's message (checkFailure, SqliteBackend.cpp).
QString columnCheck(const ColumnDef& col, QString typeName)
{
    const QString name = u'"' + QString(col.name).replace(u'"', QStringLiteral("\"\"")) + u'"';
    QString check;
    switch (col.type) {
    case SqlType::Int:
    case SqlType::Bit: {
        if (typeName == u"integer")
            typeName = QStringLiteral("int");
        check = QStringLiteral("typeof(%1) IN ('integer','null')").arg(name);
        static const std::pair<const char*, const char*> ranges[] = { { "int", "-2147483648 AND 2147483647" },
            { "smallint", "-32768 AND 32767" }, { "tinyint", "0 AND 255" } };
        for (const auto& [type, range] : ranges)
            if (typeName == QLatin1String(type))
                check += QStringLiteral(" AND %1 BETWEEN %2").arg(name, QLatin1String(range));
        break;
    }
    case SqlType::Money:
        typeName = QStringLiteral("money");
        check = QStringLiteral("typeof(%1) IN ('real','null') AND abs(%1) <= 922337203685477.5807").arg(name);
        break;
    case SqlType::Decimal:
    case SqlType::Float:
        typeName = col.type == SqlType::Float ? QStringLiteral("float") : QStringLiteral("numeric");
        check = QStringLiteral("typeof(%1) IN ('real','integer','null')").arg(name);
        break;
    case SqlType::Date:
        // "yyyy-MM-dd" of a real day (with a modifier date() moves 30 February on),
        // which another program's time of day may follow.
        typeName = QStringLiteral("datetime");
        check = QStringLiteral(
            "%1 IS NULL OR (typeof(%1) = 'text' AND date(substr(%1,1,10),'+0 days') IS substr(%1,1,10) "
            "AND substr(%1,11,1) IN ('',' ','T'))")
                    .arg(name);
        break;
    case SqlType::Text:
        // Blanks past the width are dropped on the server, not refused.
        if (col.width <= 0)
            return QString();
        typeName = QStringLiteral("nvarchar");
        check = QStringLiteral("length(rtrim(%1,' ')) <= %2").arg(name).arg(col.width);
        break;
    default:
        return QString();
    }
    return QStringLiteral("CONSTRAINT \"tsql:%1:%2\" CHECK (%3)")
        .arg(typeName, QString(col.name).replace(u'"', QStringLiteral("\"\"")), check);
}

// Reads a column's name and type at p; returns the position after the type and
// sets `check` to the column's check.
size_t column(const Cursor& c, size_t p, CreateTable& out, QString& check)
{
    ColumnDef col;
    col.name = c.at(p).name();
    size_t q = p + 1;
    const int typeToken = c.index(q);
    if (typeToken < 0)
        return q;
    const QString typeName = c.at(q).text.toLower();
    col.type = typeFromTSqlName(typeName);
    int lastTypeToken = typeToken;
    ++q;
    if (c.at(q).is("(")) {
        col.width = c.at(q + 1).text.toInt();
        while (!c.atEnd(q) && !c.at(q).is(")"))
            ++q;
        if (c.atEnd(q))
            return q;
        lastTypeToken = c.index(q);
        ++q;
    }
    if (col.type != SqlType::Text)
        col.width = 0;
    if (col.type != SqlType::Unknown) {
        for (int i = typeToken; i <= lastTypeToken; ++i)
            out.edits.replace[i] = QString();
        out.edits.replace[typeToken] = sqliteDeclaredType(col.type, col.width);
        check = columnCheck(col, typeName);
    }
    out.table.columns << col;
    return q;
}

} // namespace

std::optional<CreateTable> createTable(const QVector<Token>& tokens)
{
    const Cursor c(tokens);
    if (!c.at(0).is("CREATE") || !c.at(1).is("TABLE"))
        return std::nullopt;
    size_t p = 2;
    while (c.at(p + 1).is("."))
        p += 2;
    if (c.atEnd(p) || (c.at(p).kind != Token::Kind::Word && c.at(p).kind != Token::Kind::Quoted))
        return std::nullopt;
    CreateTable out;
    out.table.name = c.at(p).name();
    ++p;
    if (!c.at(p).is("("))
        return std::nullopt;
    ++p;
    while (!c.atEnd(p)) {
        QString check;
        size_t q = isConstraint(c.at(p)) ? p + 1 : column(c, p, out, check);
        // The rest of the definition, to the comma or parenthesis that closes it.
        int depth = 0;
        for (; !c.atEnd(q); ++q) {
            const Token& t = c.at(q);
            if (t.is("("))
                ++depth;
            else if ((t.is(")") && depth-- == 0) || (t.is(",") && depth == 0))
                break;
            if (t.is("IDENTITY")) // the embedded tables number nothing themselves
                out.edits.replace[c.index(q)] = QString();
        }
        if (!check.isEmpty() && q > p)
            out.edits.append[c.index(q - 1)] += u' ' + check;
        if (c.atEnd(q) || c.at(q).is(")"))
            break;
        p = q + 1;
    }
    return out;
}

std::optional<TableDef> parseCreateTable(const QString& tsql)
{
    const auto ct = createTable(tokenize(tsql));
    if (!ct)
        return std::nullopt;
    return ct->table;
}

} // namespace knjige::tsql
