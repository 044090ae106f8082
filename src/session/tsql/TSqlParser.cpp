#include "session/tsql/TSqlParser.h"

#include <QSet>

namespace knjige::tsql
{

const char* const kNestedTooDeeply
    = "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries.";

namespace parsing
{

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

// --- queries ---
Node* Parser::queryExpression()
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

Node* Parser::selectOrParen()
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

Node* Parser::select()
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

void Parser::selectItems(Node* n)
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

void Parser::tableSource(Node* n)
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

void Parser::fromClause(Node* n)
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
Node* Parser::insertStatement()
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

Node* Parser::updateStatement()
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
Node* Parser::deleteStatement()
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

} // namespace parsing

namespace
{
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

using parsing::ParseError;
using parsing::Parser;

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
