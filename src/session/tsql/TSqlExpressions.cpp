#include "session/tsql/TSqlParser.h"

namespace knjige::tsql::parsing
{

// --- expressions ---
Node* Parser::binary(Node* l, const QString& op, int opToken, Node* r)
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

Node* Parser::expression()
{
    const Level level(*this);
    return orExpr();
}

Node* Parser::orExpr()
{
    Node* l = andExpr();
    while (peekIs("OR")) {
        const int op = index();
        ++m_pos;
        l = binary(l, QStringLiteral("OR"), op, andExpr());
    }
    return l;
}

Node* Parser::andExpr()
{
    Node* l = notExpr();
    while (peekIs("AND")) {
        const int op = index();
        ++m_pos;
        l = binary(l, QStringLiteral("AND"), op, notExpr());
    }
    return l;
}

Node* Parser::notExpr()
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

bool Parser::comparisonAhead() const
{
    static const char* const ops[] = { "=", "<>", "!=", "<", ">", "<=", ">=", "!<", "!>" };
    if (tok().kind != Token::Kind::Symbol)
        return false;
    for (const char* o : ops)
        if (tok().text == QLatin1String(o))
            return true;
    return false;
}

Node* Parser::predicate()
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

Node* Parser::additive()
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

Node* Parser::multiplicative()
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

Node* Parser::unary()
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

Node* Parser::primary()
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

Node* Parser::parenthesised()
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

Node* Parser::caseExpr()
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

Node* Parser::castExpr()
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

Node* Parser::nameOrCall()
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

} // namespace knjige::tsql::parsing
