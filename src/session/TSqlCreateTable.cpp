#include "session/TSqlEdits.h"
#include "session/TSqlTranslator.h"

#include <vector>

namespace knjige::tsql {
namespace {

// The significant tokens of a statement, read with bounds: past the end is an empty
// symbol, so a statement cut short anywhere reads as ending there.
class Cursor {
public:
    explicit Cursor(const QVector<Token>& tokens) : m_tokens(tokens)
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

// Reads a column's name and type at p; returns the position after the type.
size_t column(const Cursor& c, size_t p, CreateTable& out)
{
    ColumnDef col;
    col.name = c.at(p).name();
    size_t q = p + 1;
    const int typeToken = c.index(q);
    if (typeToken < 0)
        return q;
    col.type = typeFromTSqlName(c.at(q).text);
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
        size_t q = isConstraint(c.at(p)) ? p + 1 : column(c, p, out);
        // The rest of the definition, to the comma or parenthesis that closes it.
        int depth = 0;
        for (; !c.atEnd(q); ++q) {
            const Token& t = c.at(q);
            if (t.is("("))
                ++depth;
            else if ((t.is(")") && depth-- == 0) || (t.is(",") && depth == 0))
                break;
            if (t.is("IDENTITY"))   // the embedded tables number nothing themselves
                out.edits.replace[c.index(q)] = QString();
        }
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
