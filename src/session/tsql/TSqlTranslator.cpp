#include "session/tsql/TSqlTranslator.h"

#include "session/tsql/StackDepth.h"
#include "session/tsql/TSqlAnalyzer.h"

namespace knjige::tsql
{
namespace
{

using Kind = Node::Kind;

class Emitter
{
public:
    Emitter(const QVector<Token>& tokens, const Edits& edits)
        : m_tokens(tokens)
        , m_edits(edits)
    {
    }

    QString node(const Node* n) const
    {
        if (stackLeft() < kStackReserve)
            throw NestingError {};
        QString text = n->storedAsMoney ? money(n) : converted(n, rewritten(n));
        if (!n->collate)
            return text;
        if (!atomic(n))
            text = u'(' + text + u')';
        return text + QStringLiteral(" COLLATE ") + QLatin1String(kCollation);
    }

    // The node's text converted to n->convertTo as the server converts it.
    QString converted(const Node* n, const QString& text) const
    {
        const QString source = sourceName(n);
        switch (n->convertTo) {
        case SqlType::Int:
            return QStringLiteral("tsql_int(") + text
                + (n->type == SqlType::Text || n->type == SqlType::Money ? QStringLiteral(", 'int', '") + source + u'\''
                                                                         : QString())
                + u')';
        case SqlType::Money:
            return QStringLiteral("tsql_money(") + text + QStringLiteral(", '") + source + QStringLiteral("')");
        case SqlType::Decimal:
        case SqlType::Float:
            return QStringLiteral("tsql_num(") + text
                + (n->convertTo == SqlType::Float ? QStringLiteral(", 'float', '") : QStringLiteral(", 'numeric', '"))
                + source + QStringLiteral("')");
        case SqlType::Date:
            return QStringLiteral("tsql_date(") + text + u')';
        default:
            return text;
        }
    }

    QString rewritten(const Node* n) const
    {
        switch (n->rewrite) {
        case Node::Rewrite::MoneySum:
            return (n->op == u"+" ? QStringLiteral("tsql_madd(") : QStringLiteral("tsql_msub(")) + node(n->a)
                + QStringLiteral(", ") + node(n->b) + u')';
        case Node::Rewrite::Modulo:
            return QStringLiteral("tsql_mod(") + node(n->a) + QStringLiteral(", ") + node(n->b) + u')';
        case Node::Rewrite::IntAverage:
            return QStringLiteral("CAST(") + splice(n->first, n->last, n->kids) + QStringLiteral(" AS INTEGER)");
        case Node::Rewrite::Divide:
            // SQL Server divides integers as integers and stops on a zero divisor;
            // money quotients keep four decimals.
            return (n->type == SqlType::Money ? QStringLiteral("tsql_divm(") : QStringLiteral("tsql_div(")) + node(n->a)
                + QStringLiteral(", ") + node(n->b) + u')';
        case Node::Rewrite::CastMoney:
            return money(n->a);
        case Node::Rewrite::CastText:
            return castText(n);
        case Node::Rewrite::CastInteger:
            if (n->op == u"bit")
                return QStringLiteral("CAST(") + node(n->a) + QStringLiteral(" AS INTEGER)");
            // CAST('3.5' AS int) fails on the server; CAST(3.5 AS int) is 3.
            return QStringLiteral("tsql_int(") + node(n->a) + QStringLiteral(", '")
                + (n->op == u"integer" ? QStringLiteral("int") : n->op) + QStringLiteral("', '") + sourceName(n->a)
                + QStringLiteral("')");
        case Node::Rewrite::CastReal:
            if (n->a->type == SqlType::Text)
                return QStringLiteral("tsql_num(") + node(n->a)
                    + (n->type == SqlType::Float ? QStringLiteral(", 'float', '") : QStringLiteral(", 'numeric', '"))
                    + sourceName(n->a) + QStringLiteral("')");
            return QStringLiteral("CAST(") + node(n->a) + QStringLiteral(" AS REAL)");
        case Node::Rewrite::CastDrop:
            return node(n->a);
        case Node::Rewrite::Today:
            return QStringLiteral("date('now','localtime')");
        case Node::Rewrite::None:
            break;
        }
        return splice(n->first, n->last, n->kids);
    }

    QString splice(int from, int to, const std::vector<Node*>& kids) const
    {
        QString out;
        int i = from;
        for (const Node* kid : kids) {
            copy(i, kid->first - 1, out);
            join(out, node(kid));
            i = kid->last + 1;
        }
        copy(i, to, out);
        return out;
    }

    void copy(int from, int to, QString& out) const
    {
        for (int i = from; i <= to; ++i) {
            const auto r = m_edits.replace.constFind(i);
            join(out, r != m_edits.replace.constEnd() ? *r : m_tokens[i].text);
            const auto a = m_edits.append.constFind(i);
            if (a != m_edits.append.constEnd())
                out += *a;
        }
    }

private:
    static constexpr std::size_t kStackReserve = 16 * 1024;

    static bool atomic(const Node* n)
    {
        switch (n->kind) {
        case Kind::Name:
        case Kind::Literal:
        case Kind::Param:
        case Kind::Paren:
        case Kind::Subquery:
        case Kind::Func:
            return true;
        default:
            return n->storedAsMoney || n->convertTo != SqlType::Unknown;
        }
    }

    // tsql_money(x, source): x as money, or the server's overflow error naming the
    // source type. A number literal goes in as its text, so that the edge of the
    // range (922337203685477.5807) is judged on the exact decimal and not a double.
    QString money(const Node* n) const
    {
        const Node* literal = n->kind == Kind::Unary && n->op == u"-" ? n->a : n;
        if (literal->kind == Kind::Literal && literal->op == u"NUMBER" && literal->type != SqlType::Float)
            return QStringLiteral("tsql_money('") + (literal == n ? QString() : QStringLiteral("-"))
                + m_tokens[literal->first].text + QStringLiteral("', 'numeric')");
        const QString source = n->type == SqlType::Money ? QStringLiteral("expression") : sourceName(n);
        return QStringLiteral("tsql_money(") + converted(n, rewritten(n)) + QStringLiteral(", '") + source
            + QStringLiteral("')");
    }

    // The type the server names in a conversion's message: a plain '..' literal is
    // varchar, the tables' texts and N'..' are nvarchar.
    QString sourceName(const Node* n) const
    {
        switch (n->type) {
        case SqlType::Float:
            return QStringLiteral("float");
        case SqlType::Decimal:
            return QStringLiteral("numeric");
        case SqlType::Money:
            return QStringLiteral("money");
        case SqlType::Text:
            return n->kind == Kind::Literal && m_tokens[n->first].kind == Token::Kind::String
                ? QStringLiteral("varchar")
                : QStringLiteral("nvarchar");
        default:
            return QStringLiteral("expression");
        }
    }

    // T-SQL lets a number touch the next keyword ("GODINAKNJ=2016AND BrojProd=2");
    // SQLite reads "2016AND" as one bad token, so two word pieces get a blank between.
    static void join(QString& out, const QString& piece)
    {
        const auto wordChar = [](QChar c) { return c.isLetterOrNumber() || c == u'_'; };
        if (!out.isEmpty() && !piece.isEmpty() && wordChar(out.back()) && wordChar(piece.front()))
            out += u' ';
        out += piece;
    }

    QString castText(const Node* n) const
    {
        const QString inner = node(n->a);
        switch (n->a->type) {
        case SqlType::Money:
            return QStringLiteral("tsql_str(") + inner + QStringLiteral(", 2)");
        case SqlType::Int:
        case SqlType::Bit:
        case SqlType::Decimal:
        case SqlType::Float:
            return QStringLiteral("CAST(") + inner + QStringLiteral(" AS TEXT)");
        case SqlType::Date:
            return inner;
        default:
            if (n->width > 0)
                return QStringLiteral("SUBSTR(") + inner + QStringLiteral(",1,") + QString::number(n->width) + u')';
            return QStringLiteral("CAST(") + inner + QStringLiteral(" AS TEXT)");
        }
    }

    const QVector<Token>& m_tokens;
    const Edits& m_edits;
};

// Rewrites every statement needs, wherever it stands: the schema prefix goes (the
// embedded database has one schema), N'..' loses its N, index options go.
void tokenEdits(const QVector<Token>& tokens, Edits& edits)
{
    int prevSig = -1;
    for (int i = 0; i < tokens.size(); ++i) {
        const Token& t = tokens[i];
        if (t.isTrivia())
            continue;
        if (t.kind == Token::Kind::Word && t.text.compare(u"dbo", Qt::CaseInsensitive) == 0 && i + 1 < tokens.size()
            && tokens[i + 1].is(".") && !(prevSig >= 0 && tokens[prevSig].is("."))) {
            edits.replace[i] = QString();
            edits.replace[i + 1] = QString();
        } else if (t.kind == Token::Kind::NString) {
            edits.replace[i] = t.text.mid(1);
        } else if (t.is("CLUSTERED") || t.is("NONCLUSTERED")) {
            edits.replace[i] = QString();
        }
        prevSig = i;
    }
}

} // namespace

Translation::Statement translateStatement(const QString& tsql, const Catalog& catalog)
{
    Translation::Statement out;
    ParsedStatement st = parseStatement(tsql);
    const QString& word = st.firstWord;
    if (word == u"SET") {
        out.kind = Translation::Kind::NoOp;
        return out;
    }
    // Statements that give rows are read as queries, so their rows reach the caller.
    const bool givesRows = word == u"SELECT" || word == u"WITH" || word == u"VALUES" || word == u"PRAGMA";
    out.kind = givesRows ? Translation::Kind::Query : Translation::Kind::Command;
    out.changesSchema = word == u"CREATE" || word == u"DROP" || word == u"ALTER";
    if (st.tooDeep) {
        out.error = st.error;
        return out;
    }
    // SQLite lets a comment run to the end of the text; the server does not.
    for (const Token& t : st.tokens)
        if (t.kind == Token::Kind::Comment && t.text.startsWith(u"/*")
            && (t.text.size() < 4 || !t.text.endsWith(u"*/"))) {
            out.error = QStringLiteral("Missing end comment mark '*/'.");
            return out;
        }
    Edits edits;
    tokenEdits(st.tokens, edits);
    if (!st.root) {
        if (auto ct = createTable(st.tokens)) {
            for (auto it = ct->edits.replace.cbegin(); it != ct->edits.replace.cend(); ++it)
                edits.replace[it.key()] = it.value();
            for (auto it = ct->edits.append.cbegin(); it != ct->edits.append.cend(); ++it)
                edits.append[it.key()] += it.value();
        }
        Emitter emitter(st.tokens, edits);
        emitter.copy(0, int(st.tokens.size()) - 1, out.sql);
        return out;
    }
    try {
        const Analysis analysis = analyze(st, catalog, edits);
        if (!analysis.error.isEmpty()) {
            out.error = analysis.error;
            return out;
        }
        out.columnTypes = analysis.columnTypes;
        out.columnNames = analysis.columnNames;
        Node* root = st.root;
        root->first = 0;
        root->last = int(st.tokens.size()) - 1;
        out.sql = Emitter(st.tokens, edits).node(root);
    } catch (const NestingError&) {
        out.columnTypes.clear();
        out.columnNames.clear();
        out.error = QString::fromLatin1(kNestedTooDeeply);
    }
    return out;
}

std::shared_ptr<const Translation> Translator::translate(const QString& tsql)
{
    const auto hit = m_cache.constFind(tsql);
    if (hit != m_cache.constEnd())
        return *hit;
    auto t = std::make_shared<Translation>();
    for (const QString& statement : splitStatements(tsql))
        t->statements << translateStatement(statement, m_catalog);
    // Filters make endless variants; keep the cache from growing without bound.
    if (m_cache.size() >= 2000)
        m_cache.clear();
    m_cache.insert(tsql, t);
    return t;
}

} // namespace knjige::tsql
