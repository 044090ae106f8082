#include "session/StackDepth.h"
#include "session/TSqlAst.h"

#include <QSet>
#include <algorithm>

namespace knjige::tsql
{

const char* const kNestedTooDeeply
    = "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries.";

namespace
{

struct ParseError {
    QString what;
};

// Stack the parser keeps free for the steps after it: typing and writing back walk
// the tree it built again, with smaller frames than its own (about 700 bytes a level
// of parentheses).
constexpr std::size_t kStackReserve = 64 * 1024;

// Words that end an expression or a table source, so they are never taken as an alias.
bool isReserved(const Token& t)
{
    static const QSet<QString> words = {
        QStringLiteral("SELECT"),
        QStringLiteral("FROM"),
        QStringLiteral("WHERE"),
        QStringLiteral("GROUP"),
        QStringLiteral("ORDER"),
        QStringLiteral("HAVING"),
        QStringLiteral("UNION"),
        QStringLiteral("EXCEPT"),
        QStringLiteral("INTERSECT"),
        QStringLiteral("INNER"),
        QStringLiteral("LEFT"),
        QStringLiteral("RIGHT"),
        QStringLiteral("FULL"),
        QStringLiteral("CROSS"),
        QStringLiteral("OUTER"),
        QStringLiteral("JOIN"),
        QStringLiteral("ON"),
        QStringLiteral("AS"),
        QStringLiteral("SET"),
        QStringLiteral("VALUES"),
        QStringLiteral("AND"),
        QStringLiteral("OR"),
        QStringLiteral("NOT"),
        QStringLiteral("WHEN"),
        QStringLiteral("THEN"),
        QStringLiteral("ELSE"),
        QStringLiteral("END"),
        QStringLiteral("INTO"),
        QStringLiteral("BY"),
        QStringLiteral("ASC"),
        QStringLiteral("DESC"),
        QStringLiteral("LIKE"),
        QStringLiteral("IN"),
        QStringLiteral("IS"),
        QStringLiteral("BETWEEN"),
        QStringLiteral("CASE"),
        QStringLiteral("WITH"),
        QStringLiteral("OPTION"),
    };
    return t.kind == Token::Kind::Word && words.contains(t.text.toUpper());
}

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

    // --- queries ---
    Node* queryExpression()
    {
        const Level level(*this);
        Node* first = selectOrParen();
        if (!peekIs("UNION"))
            return first;
        Node* n = make(Node::Kind::Compound, first->first);
        n->args.push_back(first);
        while (accept("UNION")) {
            accept("ALL");
            n->args.push_back(selectOrParen());
        }
        n->kids = n->args;
        finish(n);
        return n;
    }

    Node* selectOrParen()
    {
        if (peekIs("(")) {
            Node* n = make(Node::Kind::Subquery, index());
            ++m_pos;
            n->a = queryExpression();
            n->kids = { n->a };
            expect(")");
            finish(n);
            return n;
        }
        return select();
    }

    Node* select()
    {
        Node* n = make(Node::Kind::Select, expect("SELECT"));
        if (!accept("DISTINCT"))
            accept("ALL");
        if (peekIs("TOP")) {
            n->topFirst = index();
            ++m_pos;
            const bool paren = accept("(");
            if (tok().kind != Token::Kind::Number)
                throw ParseError { QStringLiteral("expected a number after TOP") };
            n->topCount = tok().text;
            advance();
            if (paren)
                expect(")");
            n->topPercent = accept("PERCENT");
            n->topLast = prevIndex();
        }
        selectItems(n);
        if (accept("FROM"))
            fromClause(n);
        if (accept("WHERE"))
            n->where = addKid(n, expression());
        if (peekIs("GROUP")) {
            m_pos += 1;
            expect("BY");
            do
                n->groupBy.push_back(addKid(n, expression()));
            while (accept(","));
        }
        if (accept("HAVING"))
            addKid(n, expression());
        if (peekIs("ORDER")) {
            m_pos += 1;
            expect("BY");
            do {
                n->orderBy.push_back(addKid(n, expression()));
                if (!accept("ASC"))
                    accept("DESC");
            } while (accept(","));
        }
        finish(n);
        return n;
    }

    Node* addKid(Node* parent, Node* kid)
    {
        parent->kids.push_back(kid);
        return kid;
    }

    void selectItems(Node* n)
    {
        do {
            Node::Item item;
            if (peekIs("*")) {
                ++m_pos;
            } else if (isNameToken(tok()) && peekIs(".", 1) && peekIs("*", 2)) {
                item.starTable = tok().name();
                m_pos += 3;
            } else {
                item.expr = addKid(n, expression());
                if (accept("AS") || isNameToken(tok()) || tok().kind == Token::Kind::String) {
                    const Token& alias = tok();
                    if (!isNameToken(alias) && alias.kind != Token::Kind::String)
                        throw ParseError { QStringLiteral("expected an alias") };
                    item.alias = alias.kind == Token::Kind::String ? alias.stringValue() : alias.name();
                    ++m_pos;
                } else if (item.expr->kind == Node::Kind::Name) {
                    item.alias = item.expr->parts.last();
                }
            }
            n->items.push_back(item);
        } while (accept(","));
    }

    void tableSource(Node* n)
    {
        Node::TableRef ref;
        if (peekIs("(")) {
            ref.derived = addKid(n, selectOrParen());
        } else {
            ref.table = bareTable(dottedName(&ref.nameFirst, &ref.nameLast));
        }
        ref.aliasWithAs = accept("AS");
        if (isNameToken(tok())) {
            ref.aliasToken = index();
            ref.alias = tok().name();
            ++m_pos;
        } else if (ref.aliasWithAs) {
            throw ParseError { QStringLiteral("expected an alias") };
        }
        n->tables.push_back(ref);
    }

    bool joinAhead() const
    {
        return peekIs("JOIN") || peekIs("INNER") || peekIs("LEFT") || peekIs("RIGHT") || peekIs("FULL")
            || peekIs("CROSS");
    }

    void fromClause(Node* n)
    {
        do {
            tableSource(n);
            while (joinAhead()) {
                const bool cross = peekIs("CROSS");
                while (!accept("JOIN")) {
                    if (atEnd())
                        throw ParseError { QStringLiteral("expected JOIN") };
                    ++m_pos;
                }
                tableSource(n);
                if (!cross) {
                    expect("ON");
                    addKid(n, expression());
                }
            }
        } while (accept(","));
    }

    // --- data changes ---
    Node* insertStatement()
    {
        Node* n = make(Node::Kind::Insert, expect("INSERT"));
        accept("INTO");
        int f, l;
        n->table = bareTable(dottedName(&f, &l));
        if (peekIs("(") && !peekIs("SELECT", 1)) {
            ++m_pos;
            do {
                if (!isNameToken(tok()))
                    throw ParseError { QStringLiteral("expected a column") };
                n->columns << tok().name();
                ++m_pos;
            } while (accept(","));
            expect(")");
        }
        if (accept("VALUES")) {
            do {
                expect("(");
                std::vector<Node*> row;
                do
                    row.push_back(addKid(n, expression()));
                while (accept(","));
                expect(")");
                n->rows.push_back(row);
            } while (accept(","));
        } else {
            n->query = addKid(n, queryExpression());
        }
        finish(n);
        return n;
    }

    Node* updateStatement()
    {
        Node* n = make(Node::Kind::Update, expect("UPDATE"));
        int f, l;
        n->table = bareTable(dottedName(&f, &l));
        Node::TableRef ref;
        ref.table = n->table;
        n->tables.push_back(ref);
        expect("SET");
        std::vector<Node*> values;
        do {
            int cf, cl;
            n->columns << dottedName(&cf, &cl).last();
            expect("=");
            values.push_back(addKid(n, expression()));
        } while (accept(","));
        n->rows.push_back(values);
        if (accept("WHERE"))
            n->where = addKid(n, expression());
        finish(n);
        return n;
    }

    // "DELETE [FROM] T [WHERE ...]" and "DELETE T FROM T [AS] K [WHERE ...]".
    Node* deleteStatement()
    {
        Node* n = make(Node::Kind::Delete, expect("DELETE"));
        const bool from = accept("FROM");
        int f, l;
        const QStringList target = dottedName(&f, &l);
        if (!from && accept("FROM")) {
            n->deleteTargetFirst = f;
            n->deleteTargetLast = l;
            tableSource(n);
            if (n->tables.size() != 1 || n->tables[0].derived)
                throw ParseError { QStringLiteral("unsupported DELETE") };
        } else {
            Node::TableRef ref;
            ref.table = bareTable(target);
            n->tables.push_back(ref);
        }
        n->table = n->tables[0].table;
        if (accept("WHERE"))
            n->where = addKid(n, expression());
        finish(n);
        return n;
    }

    // --- expressions ---
    Node* binary(Node* l, const QString& op, int opToken, Node* r)
    {
        Node* n = make(Node::Kind::Binary, l->first);
        n->a = l;
        n->b = r;
        n->op = op;
        n->opToken = opToken;
        n->kids = { l, r };
        n->last = r->last;
        return n;
    }

    Node* expression()
    {
        const Level level(*this);
        return orExpr();
    }

    Node* orExpr()
    {
        Node* l = andExpr();
        while (peekIs("OR")) {
            const int op = index();
            ++m_pos;
            l = binary(l, QStringLiteral("OR"), op, andExpr());
        }
        return l;
    }

    Node* andExpr()
    {
        Node* l = notExpr();
        while (peekIs("AND")) {
            const int op = index();
            ++m_pos;
            l = binary(l, QStringLiteral("AND"), op, notExpr());
        }
        return l;
    }

    Node* notExpr()
    {
        if (peekIs("NOT") && !peekIs("EXISTS", 1)) {
            const Level level(*this);
            Node* n = make(Node::Kind::Unary, index());
            n->op = QStringLiteral("NOT");
            n->opToken = index();
            ++m_pos;
            n->a = notExpr();
            n->kids = { n->a };
            n->last = n->a->last;
            return n;
        }
        return predicate();
    }

    bool comparisonAhead() const
    {
        static const char* const ops[] = { "=", "<>", "!=", "<", ">", "<=", ">=", "!<", "!>" };
        if (tok().kind != Token::Kind::Symbol)
            return false;
        for (const char* o : ops)
            if (tok().text == QLatin1String(o))
                return true;
        return false;
    }

    Node* predicate()
    {
        Node* l = additive();
        if (comparisonAhead()) {
            const int op = index();
            const QString text = tok().text;
            ++m_pos;
            return binary(l, text, op, additive());
        }
        const bool negated = peekIs("NOT") && (peekIs("BETWEEN", 1) || peekIs("IN", 1) || peekIs("LIKE", 1));
        if (negated)
            ++m_pos;
        if (accept("BETWEEN")) {
            Node* n = make(Node::Kind::Between, l->first);
            n->negated = negated;
            n->a = l;
            n->b = additive();
            expect("AND");
            n->c = additive();
            n->kids = { n->a, n->b, n->c };
            finish(n);
            return n;
        }
        if (accept("IN")) {
            Node* n = make(Node::Kind::In, l->first);
            n->negated = negated;
            n->a = l;
            expect("(");
            if (peekIs("SELECT")) {
                n->args.push_back(queryExpression());
            } else {
                do
                    n->args.push_back(expression());
                while (accept(","));
            }
            expect(")");
            n->kids = { l };
            n->kids.insert(n->kids.end(), n->args.begin(), n->args.end());
            finish(n);
            return n;
        }
        if (peekIs("LIKE")) {
            const int op = index();
            ++m_pos;
            Node* n = binary(l, QStringLiteral("LIKE"), op, additive());
            n->negated = negated;
            return n;
        }
        if (negated)
            throw ParseError { QStringLiteral("expected BETWEEN, IN or LIKE after NOT") };
        if (accept("IS")) {
            Node* n = make(Node::Kind::IsNull, l->first);
            n->negated = accept("NOT");
            expect("NULL");
            n->a = l;
            n->kids = { l };
            finish(n);
            return n;
        }
        return l;
    }

    Node* additive()
    {
        Node* l = multiplicative();
        while (peekIs("+") || peekIs("-") || peekIs("||") || peekIs("&") || peekIs("|") || peekIs("^")) {
            const int op = index();
            const QString text = tok().text;
            ++m_pos;
            l = binary(l, text, op, multiplicative());
        }
        return l;
    }

    Node* multiplicative()
    {
        Node* l = unary();
        while (peekIs("*") || peekIs("/") || peekIs("%")) {
            const int op = index();
            const QString text = tok().text;
            ++m_pos;
            l = binary(l, text, op, unary());
        }
        return l;
    }

    Node* unary()
    {
        if (peekIs("-") || peekIs("+") || peekIs("~")) {
            const Level level(*this);
            Node* n = make(Node::Kind::Unary, index());
            n->op = tok().text;
            n->opToken = index();
            ++m_pos;
            n->a = unary();
            n->kids = { n->a };
            n->last = n->a->last;
            return n;
        }
        return primary();
    }

    Node* primary()
    {
        const Token& t = tok();
        if (atEnd())
            throw ParseError { QStringLiteral("unexpected end") };
        switch (t.kind) {
        case Token::Kind::Number:
        case Token::Kind::String:
        case Token::Kind::NString: {
            Node* n = make(Node::Kind::Literal, index());
            n->op = t.kind == Token::Kind::Number ? QStringLiteral("NUMBER") : QStringLiteral("STRING");
            ++m_pos;
            finish(n);
            return n;
        }
        case Token::Kind::Param: {
            Node* n = make(Node::Kind::Param, index());
            ++m_pos;
            finish(n);
            return n;
        }
        default:
            break;
        }
        if (t.is("NULL")) {
            Node* n = make(Node::Kind::Literal, index());
            n->op = QStringLiteral("NULL");
            ++m_pos;
            finish(n);
            return n;
        }
        if (t.is("("))
            return parenthesised();
        if (t.is("CASE"))
            return caseExpr();
        if (t.is("CAST") && peekIs("(", 1))
            return castExpr();
        if (t.is("EXISTS") || (t.is("NOT") && peekIs("EXISTS", 1))) {
            Node* n = make(Node::Kind::Exists, index());
            n->negated = accept("NOT");
            expect("EXISTS");
            n->a = parenthesised();
            n->kids = { n->a };
            finish(n);
            return n;
        }
        if (t.is("*")) {
            Node* n = make(Node::Kind::Star, index());
            ++m_pos;
            finish(n);
            return n;
        }
        // LEFT and RIGHT are reserved for joins but are functions before '('.
        if ((t.kind == Token::Kind::Word && peekIs("(", 1)) || isNameToken(t))
            return nameOrCall();
        throw ParseError { QStringLiteral("unexpected '%1'").arg(t.text) };
    }

    Node* parenthesised()
    {
        const int open = expect("(");
        if (peekIs("SELECT")) {
            Node* n = make(Node::Kind::Subquery, open);
            n->a = queryExpression();
            n->kids = { n->a };
            expect(")");
            finish(n);
            return n;
        }
        Node* n = make(Node::Kind::Paren, open);
        n->a = expression();
        n->kids = { n->a };
        expect(")");
        finish(n);
        return n;
    }

    Node* caseExpr()
    {
        Node* n = make(Node::Kind::Case, expect("CASE"));
        if (!peekIs("WHEN")) {
            n->a = expression();
            n->kids.push_back(n->a);
        }
        while (accept("WHEN")) {
            Node* cond = expression();
            expect("THEN");
            Node* value = expression();
            n->args.push_back(cond);
            n->args.push_back(value);
            n->kids.push_back(cond);
            n->kids.push_back(value);
        }
        if (n->args.empty())
            throw ParseError { QStringLiteral("CASE without WHEN") };
        if (accept("ELSE")) {
            n->b = expression();
            n->kids.push_back(n->b);
        }
        expect("END");
        finish(n);
        return n;
    }

    Node* castExpr()
    {
        Node* n = make(Node::Kind::Cast, expect("CAST"));
        expect("(");
        n->a = expression();
        n->kids = { n->a };
        expect("AS");
        if (tok().kind != Token::Kind::Word)
            throw ParseError { QStringLiteral("expected a type") };
        n->op = tok().text.toLower();
        ++m_pos;
        if (accept("(")) {
            n->width = tok().text.toInt();
            while (!accept(")")) {
                if (atEnd())
                    throw ParseError { QStringLiteral("unclosed type") };
                ++m_pos;
            }
        }
        expect(")");
        finish(n);
        return n;
    }

    Node* nameOrCall()
    {
        if (tok().kind == Token::Kind::Word && peekIs("(", 1)) {
            Node* n = make(Node::Kind::Func, index());
            n->op = tok().text.toUpper();
            n->opToken = index();
            m_pos += 2;
            accept("DISTINCT");
            if (!peekIs(")")) {
                for (;;) {
                    n->args.push_back(expression());
                    if (!peekIs(","))
                        break;
                    n->commas.push_back(index());
                    ++m_pos;
                }
            }
            expect(")");
            n->kids = n->args;
            finish(n);
            return n;
        }
        int f, l;
        Node* n = make(Node::Kind::Name, index());
        n->parts = dottedName(&f, &l);
        finish(n);
        return n;
    }

    ParsedStatement& m_st;
    std::vector<int> m_sig;
    int m_pos = 0;
    int m_depth = 0;
};

// The depth of the tree, counted without recursion: a flat chain of 14,000 terms
// makes a tree as deep as 14,000 parentheses, and every later step walks it.
int treeDepth(const Node* root)
{
    std::vector<std::pair<const Node*, int>> open { { root, 1 } };
    int deepest = 0;
    while (!open.empty()) {
        const auto [n, depth] = open.back();
        open.pop_back();
        deepest = std::max(deepest, depth);
        for (const Node* kid : n->kids)
            open.emplace_back(kid, depth + 1);
    }
    return deepest;
}

} // namespace

ParsedStatement parseStatement(const QString& sql)
{
    ParsedStatement st;
    st.tokens = tokenize(sql);
    for (const Token& t : st.tokens) {
        if (!t.isTrivia()) {
            st.firstWord = t.text.toUpper();
            break;
        }
    }
    try {
        Parser parser(st);
        st.root = parser.statement();
        if (treeDepth(st.root) > kMaxNesting)
            throw NestingError {};
    } catch (const ParseError& e) {
        st.root = nullptr;
        st.error = e.what;
    } catch (const NestingError&) {
        st.root = nullptr;
        st.tooDeep = true;
        st.error = QString::fromLatin1(kNestedTooDeeply);
    }
    return st;
}

} // namespace knjige::tsql
