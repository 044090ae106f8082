#pragma once

// The parser of one T-SQL data statement, shared by its two halves: the statements
// (TSqlParser.cpp) and the expressions inside them (TSqlExpressions.cpp). Internal
// to the adapter; everything else reads the tree through TSqlAst.h.

#include "session/tsql/StackDepth.h"
#include "session/tsql/TSqlAst.h"

#include <algorithm>
#include <vector>

namespace knjige::tsql::parsing
{

struct ParseError {
    QString what;
};

// Stack the parser keeps free for the steps after it: typing and writing back walk
// the tree it built again, with smaller frames than its own (about 700 bytes a level
// of parentheses).
constexpr std::size_t kStackReserve = 64 * 1024;

// Words that end an expression or a table source, so they are never taken as an alias.
bool isReserved(const Token& t);

class Parser
{
public:
    explicit Parser(ParsedStatement& st)
        : m_st(st)
    {
        for (int i = 0; i < st.tokens.size(); ++i)
            if (!st.tokens[i].isTrivia())
                m_sig.push_back(i);
    }

    Node* statement()
    {
        Node* n = nullptr;
        if (peekIs("SELECT") || peekIs("("))
            n = queryExpression();
        else if (peekIs("INSERT"))
            n = insertStatement();
        else if (peekIs("UPDATE"))
            n = updateStatement();
        else if (peekIs("DELETE"))
            n = deleteStatement();
        else
            throw ParseError { QStringLiteral("not a data statement") };
        if (!atEnd())
            throw ParseError { QStringLiteral("unexpected '%1'").arg(tok().text) };
        return n;
    }

private:
    // --- token access ---
    bool atEnd() const { return m_pos >= int(m_sig.size()); }
    const Token& tok(int ahead = 0) const
    {
        static const Token end { Token::Kind::Symbol, QString() };
        const int p = m_pos + ahead;
        return p >= 0 && p < int(m_sig.size()) ? m_st.tokens[m_sig[p]] : end;
    }
    // Token indices, clamped to the statement so that no path reads outside it.
    int index(int ahead = 0) const { return sigAt(m_pos + ahead); }
    int prevIndex() const { return sigAt(m_pos - 1); }
    int sigAt(int p) const
    {
        if (m_sig.empty())
            return 0;
        return m_sig[std::clamp(p, 0, int(m_sig.size()) - 1)];
    }
    void advance()
    {
        if (atEnd())
            throw ParseError { QStringLiteral("unexpected end") };
        ++m_pos;
    }
    bool peekIs(const char* w, int ahead = 0) const { return tok(ahead).is(w); }
    bool accept(const char* w)
    {
        if (!peekIs(w))
            return false;
        ++m_pos;
        return true;
    }
    int expect(const char* w)
    {
        if (!peekIs(w))
            throw ParseError { QStringLiteral("expected '%1' at '%2'").arg(QLatin1String(w), tok().text) };
        const int at = index();
        ++m_pos;
        return at;
    }
    bool isNameToken(const Token& t) const
    {
        return (t.kind == Token::Kind::Word && !isReserved(t)) || t.kind == Token::Kind::Quoted;
    }

    // Counts one level of recursion for its lifetime; too deep a statement, or too
    // little stack left, stops the parse with SQL Server's own message.
    class Level
    {
    public:
        explicit Level(Parser& p)
            : m_p(p)
        {
            if (++m_p.m_depth > kMaxNesting || stackLeft() < kStackReserve)
                throw NestingError {};
        }
        ~Level() { --m_p.m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Parser& m_p;
    };

    Node* make(Node::Kind kind, int first)
    {
        m_st.pool.push_back(std::make_unique<Node>());
        Node* n = m_st.pool.back().get();
        n->kind = kind;
        n->first = first;
        return n;
    }
    void finish(Node* n) { n->last = prevIndex(); }

    // A dotted name: returns its parts; `first`/`last` get its token range.
    QStringList dottedName(int* first, int* last)
    {
        if (!isNameToken(tok()))
            throw ParseError { QStringLiteral("expected a name at '%1'").arg(tok().text) };
        *first = index();
        QStringList parts { tok().name() };
        ++m_pos;
        while (peekIs(".") && isNameToken(tok(1))) {
            m_pos += 2;
            parts << tok(-1).name();
        }
        *last = prevIndex();
        return parts;
    }
    static QString bareTable(const QStringList& parts) { return parts.last(); }

    Node* queryExpression();
    Node* selectOrParen();
    Node* select();

    Node* addKid(Node* parent, Node* kid)
    {
        parent->kids.push_back(kid);
        return kid;
    }

    void selectItems(Node* n);
    void tableSource(Node* n);

    bool joinAhead() const
    {
        return peekIs("JOIN") || peekIs("INNER") || peekIs("LEFT") || peekIs("RIGHT") || peekIs("FULL")
            || peekIs("CROSS");
    }

    void fromClause(Node* n);
    Node* insertStatement();
    Node* updateStatement();
    Node* deleteStatement();
    Node* binary(Node* l, const QString& op, int opToken, Node* r);
    Node* expression();
    Node* orExpr();
    Node* andExpr();
    Node* notExpr();
    bool comparisonAhead() const;
    Node* predicate();
    Node* additive();
    Node* multiplicative();
    Node* unary();
    Node* primary();
    Node* parenthesised();
    Node* caseExpr();
    Node* castExpr();
    Node* nameOrCall();

    ParsedStatement& m_st;
    std::vector<int> m_sig;
    int m_pos = 0;
    int m_depth = 0;
};

} // namespace knjige::tsql::parsing
