#include "session/TSqlTranslator.h"

#include "session/TSqlAst.h"

#include <QDate>
#include <QRegularExpression>

namespace knjige::tsql {
namespace {

using Kind = Node::Kind;

// Replacement texts by token index, applied when a statement is written back.
struct Edits {
    QHash<int, QString> replace;
    QHash<int, QString> append;    // written after the token
};

// The month-first literal of a date ('03.15.2016', '1.1.2016') as the ISO text the
// embedded database stores dates in; empty when the text is not such a date.
QString isoFromMonthFirst(const QString& value)
{
    static const QRegularExpression mdy(QStringLiteral("^\\s*(\\d{1,2})[./-](\\d{1,2})[./-](\\d{4})\\s*$"));
    static const QRegularExpression compact(QStringLiteral("^(\\d{4})(\\d{2})(\\d{2})$"));
    QDate d;
    if (const auto m = mdy.match(value); m.hasMatch())
        d = QDate(m.captured(3).toInt(), m.captured(1).toInt(), m.captured(2).toInt());
    else if (const auto c = compact.match(value); c.hasMatch())
        d = QDate(c.captured(1).toInt(), c.captured(2).toInt(), c.captured(3).toInt());
    return d.isValid() ? d.toString(Qt::ISODate) : QString();
}

struct Scope {
    const Node* owner;
    const Scope* parent;
};

class Analyzer {
public:
    Analyzer(const QVector<Token>& tokens, const Catalog& catalog, Edits& edits)
        : m_tokens(tokens), m_catalog(catalog), m_edits(edits)
    {
    }

    // Types the columns of a query; empty when a column cannot be counted.
    QVector<SqlType> query(Node* n, const Scope* parent)
    {
        if (n->kind == Kind::Subquery)
            return query(n->a, parent);
        if (n->kind == Kind::Compound) {
            QVector<SqlType> types;
            for (Node* part : n->args) {
                const QVector<SqlType> t = query(part, parent);
                if (types.isEmpty())
                    types = t;
                else if (t.size() == types.size())
                    for (int i = 0; i < t.size(); ++i)
                        types[i] = higherIgnoringNull(types[i], t[i]);
            }
            return types;
        }
        return select(n, parent);
    }

    void insert(Node* n)
    {
        const TableDef* table = m_catalog.find(n->table);
        const auto columnType = [&](int i) {
            if (!table)
                return SqlType::Unknown;
            if (n->columns.isEmpty())
                return i < table->columns.size() ? table->columns[i].type : SqlType::Unknown;
            const ColumnDef* c = i < n->columns.size() ? table->column(n->columns[i]) : nullptr;
            return c ? c->type : SqlType::Unknown;
        };
        for (const auto& row : n->rows) {
            for (size_t i = 0; i < row.size(); ++i) {
                expr(row[i], nullptr);
                if (columnType(int(i)) == SqlType::Date)
                    dateLiteral(row[i]);
                storeAs(columnType(int(i)), row[i]);
            }
        }
        if (n->query) {
            query(n->query, nullptr);
            std::vector<Node*> selects;
            collectSelects(n->query, selects);
            for (Node* s : selects)
                for (size_t i = 0; i < s->items.size(); ++i)
                    if (s->items[i].expr) {
                        if (columnType(int(i)) == SqlType::Date)
                            dateLiteral(s->items[i].expr);
                        storeAs(columnType(int(i)), s->items[i].expr);
                    }
        }
    }

    void update(Node* n)
    {
        const Scope scope { n, nullptr };
        const TableDef* table = m_catalog.find(n->table);
        for (int i = 0; i < n->columns.size(); ++i) {
            Node* value = n->rows[0][i];
            expr(value, &scope);
            const ColumnDef* c = table ? table->column(n->columns[i]) : nullptr;
            if (c && c->type == SqlType::Date)
                dateLiteral(value);
            if (c)
                storeAs(c->type, value);
        }
        if (n->where)
            expr(n->where, &scope);
    }

    // SQLite names the alias of a DELETE only as "DELETE FROM T AS K".
    void remove(Node* n)
    {
        const Scope scope { n, nullptr };
        if (n->deleteTargetFirst >= 0) {
            blank(n->deleteTargetFirst, n->deleteTargetLast, true);
            const Node::TableRef& ref = n->tables[0];
            if (ref.aliasToken >= 0 && !ref.aliasWithAs)
                m_edits.replace[ref.aliasToken] = QStringLiteral("AS ") + m_tokens[ref.aliasToken].text;
        }
        if (n->where)
            expr(n->where, &scope);
    }

private:
    // Money columns keep four decimals on the server; REAL storage would keep the
    // whole fraction of a computed value (10.0/3), and the row could then never be
    // matched again by the value it shows.
    static void storeAs(SqlType column, Node* value)
    {
        if (column == SqlType::Money && value->type != SqlType::Money && value->type != SqlType::Null
            && value->type != SqlType::Int)
            value->storedAsMoney = true;
    }

    static SqlType higherIgnoringNull(SqlType a, SqlType b)
    {
        if (a == SqlType::Null)
            return b;
        if (b == SqlType::Null)
            return a;
        return higher(a, b);
    }

    static void collectSelects(Node* n, std::vector<Node*>& out)
    {
        if (n->kind == Kind::Select)
            out.push_back(n);
        else if (n->kind == Kind::Subquery)
            collectSelects(n->a, out);
        else if (n->kind == Kind::Compound)
            for (Node* part : n->args)
                collectSelects(part, out);
    }

    // Writes tokens first..last as nothing, and the blank after them too.
    void blank(int first, int last, bool withFollowingSpace)
    {
        for (int i = first; i <= last; ++i)
            m_edits.replace[i] = QString();
        if (withFollowingSpace && last + 1 < m_tokens.size() && m_tokens[last + 1].kind == Token::Kind::Space)
            m_edits.replace[last + 1] = QString();
    }

    QVector<SqlType> select(Node* n, const Scope* parent)
    {
        const Scope scope { n, parent };
        for (Node* kid : n->kids) {
            if (kid->kind == Kind::Subquery || kid->kind == Kind::Select || kid->kind == Kind::Compound) {
                bool derived = false;
                for (const auto& ref : n->tables)
                    derived = derived || ref.derived == kid;
                if (derived) {
                    query(kid, parent);
                    continue;
                }
            }
            expr(kid, &scope);
        }
        if (n->topFirst >= 0) {
            blank(n->topFirst, n->topLast, true);
            if (!n->topPercent)
                m_edits.append[n->last] += QStringLiteral(" LIMIT ") + n->topCount;
        }
        QVector<SqlType> types;
        for (const Node::Item& item : n->items) {
            if (item.expr) {
                types << item.expr->type;
                continue;
            }
            for (const Node::TableRef& ref : n->tables) {
                if (!item.starTable.isEmpty() && !matches(ref, item.starTable))
                    continue;
                const TableDef* table = ref.derived ? nullptr : m_catalog.find(ref.table);
                if (!table)
                    return {};
                for (const ColumnDef& c : table->columns)
                    types << c.type;
            }
        }
        return types;
    }

    static bool matches(const Node::TableRef& ref, const QString& qualifier)
    {
        return ref.alias.compare(qualifier, Qt::CaseInsensitive) == 0
            || (!ref.table.isEmpty() && ref.table.compare(qualifier, Qt::CaseInsensitive) == 0);
    }

    SqlType column(const QStringList& parts, const Scope* scope) const
    {
        const QString name = parts.last();
        const QString qualifier = parts.size() >= 2 ? parts[parts.size() - 2] : QString();
        for (const Scope* s = scope; s; s = s->parent) {
            for (const Node::TableRef& ref : s->owner->tables) {
                if (!qualifier.isEmpty() && !matches(ref, qualifier))
                    continue;
                const TableDef* table = ref.derived ? nullptr : m_catalog.find(ref.table);
                if (const ColumnDef* c = table ? table->column(name) : nullptr)
                    return c->type;
                if (!qualifier.isEmpty())
                    return SqlType::Unknown;
            }
        }
        return SqlType::Unknown;
    }

    void dateLiteral(Node* n)
    {
        while (n->kind == Kind::Paren)
            n = n->a;
        if (n->kind != Kind::Literal || n->op != u"STRING")
            return;
        const QString iso = isoFromMonthFirst(m_tokens[n->first].stringValue());
        if (!iso.isEmpty())
            m_edits.replace[n->first] = quoteString(iso);
    }

    SqlType expr(Node* n, const Scope* scope)
    {
        n->type = typeOf(n, scope);
        return n->type;
    }

    SqlType typeOf(Node* n, const Scope* scope)
    {
        switch (n->kind) {
        case Kind::Literal: return literal(n);
        case Kind::Name: return column(n->parts, scope);
        case Kind::Star:
        case Kind::Param: return SqlType::Unknown;
        case Kind::Func: return function(n, scope);
        case Kind::Cast: return cast(n, scope);
        case Kind::Case: return caseExpr(n, scope);
        case Kind::Unary: {
            const SqlType t = expr(n->a, scope);
            return n->op == u"NOT" ? SqlType::Bit : t;
        }
        case Kind::Binary: return binary(n, scope);
        case Kind::Between:
            if (expr(n->a, scope) == SqlType::Date) {
                dateLiteral(n->b);
                dateLiteral(n->c);
            }
            expr(n->b, scope);
            expr(n->c, scope);
            return SqlType::Bit;
        case Kind::In: {
            const SqlType t = expr(n->a, scope);
            for (Node* arg : n->args) {
                if (arg->kind == Kind::Select || arg->kind == Kind::Compound) {
                    query(arg, scope);
                    continue;
                }
                expr(arg, scope);
                if (t == SqlType::Date)
                    dateLiteral(arg);
            }
            return SqlType::Bit;
        }
        case Kind::IsNull: expr(n->a, scope); return SqlType::Bit;
        case Kind::Exists: expr(n->a, scope); return SqlType::Bit;
        case Kind::Paren: return expr(n->a, scope);
        case Kind::Subquery: {
            const QVector<SqlType> t = query(n->a, scope);
            return t.isEmpty() ? SqlType::Unknown : t.first();
        }
        default: return SqlType::Unknown;
        }
    }

    SqlType literal(const Node* n) const
    {
        if (n->op == u"NULL")
            return SqlType::Null;
        if (n->op == u"STRING")
            return SqlType::Text;
        const QString text = m_tokens[n->first].text;
        if (text.contains(u'e', Qt::CaseInsensitive))
            return SqlType::Float;
        return text.contains(u'.') ? SqlType::Decimal : SqlType::Int;
    }

    SqlType binary(Node* n, const Scope* scope)
    {
        const SqlType l = expr(n->a, scope);
        const SqlType r = expr(n->b, scope);
        const QString& op = n->op;
        if (op == u"AND" || op == u"OR" || op == u"LIKE")
            return SqlType::Bit;
        if (op == u"=" || op == u"<>" || op == u"!=" || op == u"<" || op == u">" || op == u"<=" || op == u">="
            || op == u"!<" || op == u"!>") {
            if (l == SqlType::Date)
                dateLiteral(n->b);
            if (r == SqlType::Date)
                dateLiteral(n->a);
            return SqlType::Bit;
        }
        if (op == u"+" && l == SqlType::Text && r == SqlType::Text) {
            // In T-SQL + joins only character data; SQLite's + would add the texts as numbers.
            m_edits.replace[n->opToken] = QStringLiteral("||");
            return SqlType::Text;
        }
        if (op == u"||")
            return SqlType::Text;
        if (op == u"/")
            n->rewrite = Node::Rewrite::Divide;
        if (l == SqlType::Null || r == SqlType::Null)
            return l == SqlType::Null ? r : l;
        return higher(l, r);
    }

    SqlType caseExpr(Node* n, const Scope* scope)
    {
        if (n->a)
            expr(n->a, scope);
        SqlType t = SqlType::Null;
        for (size_t i = 0; i + 1 < n->args.size(); i += 2) {
            expr(n->args[i], scope);
            t = higherIgnoringNull(t, expr(n->args[i + 1], scope));
        }
        if (n->b)
            t = higherIgnoringNull(t, expr(n->b, scope));
        return t == SqlType::Null ? SqlType::Text : t;
    }

    SqlType cast(Node* n, const Scope* scope)
    {
        const SqlType source = expr(n->a, scope);
        const SqlType target = typeFromTSqlName(n->op);
        switch (target) {
        case SqlType::Money: n->rewrite = Node::Rewrite::CastMoney; break;
        case SqlType::Text: n->rewrite = Node::Rewrite::CastText; break;
        case SqlType::Int:
        case SqlType::Bit: n->rewrite = Node::Rewrite::CastInteger; break;
        case SqlType::Decimal:
        case SqlType::Float: n->rewrite = Node::Rewrite::CastReal; break;
        case SqlType::Date:
            n->rewrite = Node::Rewrite::CastDrop;
            dateLiteral(n->a);
            break;
        default: break;
        }
        Q_UNUSED(source);
        return target;
    }

    SqlType function(Node* n, const Scope* scope)
    {
        QVector<SqlType> args;
        for (Node* arg : n->args)
            args << expr(arg, scope);
        const SqlType first = args.isEmpty() ? SqlType::Unknown : args.first();
        const QString& f = n->op;
        if (f == u"ISNULL") {
            m_edits.replace[n->opToken] = QStringLiteral("IFNULL");
            return first == SqlType::Null && args.size() > 1 ? args[1] : first;
        }
        if (f == u"COALESCE") {
            SqlType t = SqlType::Null;
            for (SqlType a : args)
                t = higherIgnoringNull(t, a);
            return t;
        }
        if (f == u"LEFT" && n->commas.size() == 1) {
            m_edits.replace[n->opToken] = QStringLiteral("SUBSTR");
            m_edits.replace[n->commas[0]] = QStringLiteral(",1,");
            return SqlType::Text;
        }
        if (f == u"SUBSTRING") {
            m_edits.replace[n->opToken] = QStringLiteral("SUBSTR");
            return SqlType::Text;
        }
        if (f == u"LEN") {
            m_edits.replace[n->opToken] = QStringLiteral("tsql_len");
            return SqlType::Int;
        }
        if (f == u"ROUND") {
            m_edits.replace[n->opToken] = QStringLiteral("tsql_round");
            return first;
        }
        if (f == u"GETDATE") {
            n->rewrite = Node::Rewrite::Today;
            return SqlType::Date;
        }
        if (f == u"SUM" || f == u"MIN" || f == u"MAX" || f == u"ABS" || f == u"AVG")
            return first;
        if (f == u"COUNT" || f == u"MONTH" || f == u"YEAR" || f == u"DAY")
            return SqlType::Int;
        if (f == u"RTRIM" || f == u"LTRIM" || f == u"UPPER" || f == u"LOWER" || f == u"REPLACE" || f == u"SUBSTR")
            return SqlType::Text;
        return SqlType::Unknown;
    }

    const QVector<Token>& m_tokens;
    const Catalog& m_catalog;
    Edits& m_edits;
};

class Emitter {
public:
    Emitter(const QVector<Token>& tokens, const Edits& edits) : m_tokens(tokens), m_edits(edits) {}

    QString node(const Node* n) const
    {
        if (n->storedAsMoney)
            return QStringLiteral("tsql_money(") + rewritten(n) + u')';
        return rewritten(n);
    }

    QString rewritten(const Node* n) const
    {
        switch (n->rewrite) {
        case Node::Rewrite::Divide:
            // SQL Server divides integers as integers and stops on a zero divisor;
            // money quotients keep four decimals.
            return (n->type == SqlType::Money ? QStringLiteral("tsql_divm(") : QStringLiteral("tsql_div("))
                + node(n->a) + QStringLiteral(", ") + node(n->b) + u')';
        case Node::Rewrite::CastMoney: return QStringLiteral("tsql_money(") + node(n->a) + u')';
        case Node::Rewrite::CastText: return castText(n);
        case Node::Rewrite::CastInteger: return QStringLiteral("CAST(") + node(n->a) + QStringLiteral(" AS INTEGER)");
        case Node::Rewrite::CastReal: return QStringLiteral("CAST(") + node(n->a) + QStringLiteral(" AS REAL)");
        case Node::Rewrite::CastDrop: return node(n->a);
        case Node::Rewrite::Today: return QStringLiteral("date('now','localtime')");
        case Node::Rewrite::None: break;
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
        case SqlType::Money: return QStringLiteral("tsql_str(") + inner + QStringLiteral(", 2)");
        case SqlType::Int:
        case SqlType::Bit:
        case SqlType::Decimal:
        case SqlType::Float: return QStringLiteral("CAST(") + inner + QStringLiteral(" AS TEXT)");
        case SqlType::Date: return inner;
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
        if (t.kind == Token::Kind::Word && t.text.compare(u"dbo", Qt::CaseInsensitive) == 0
            && i + 1 < tokens.size() && tokens[i + 1].is(".") && !(prevSig >= 0 && tokens[prevSig].is("."))) {
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

struct CreateTable {
    TableDef table;
    Edits edits;
};

std::optional<CreateTable> createTable(const QVector<Token>& tokens)
{
    std::vector<int> sig;
    for (int i = 0; i < tokens.size(); ++i)
        if (!tokens[i].isTrivia())
            sig.push_back(i);
    if (sig.size() < 4 || !tokens[sig[0]].is("CREATE") || !tokens[sig[1]].is("TABLE"))
        return std::nullopt;
    CreateTable out;
    size_t p = 2;
    while (p + 1 < sig.size() && tokens[sig[p + 1]].is("."))
        p += 2;
    out.table.name = tokens[sig[p]].name();
    ++p;
    if (p >= sig.size() || !tokens[sig[p]].is("("))
        return std::nullopt;
    ++p;
    static const char* const constraintWords[] = { "CONSTRAINT", "PRIMARY", "UNIQUE", "CHECK", "FOREIGN", "INDEX" };
    while (p < sig.size()) {
        const Token& head = tokens[sig[p]];
        bool constraint = false;
        for (const char* w : constraintWords)
            constraint = constraint || head.is(w);
        size_t q = p + 1;
        if (!constraint && q < sig.size()) {
            ColumnDef col;
            col.name = head.name();
            const int typeToken = sig[q];
            col.type = typeFromTSqlName(tokens[typeToken].text);
            ++q;
            int lastTypeToken = typeToken;
            if (q < sig.size() && tokens[sig[q]].is("(")) {
                col.width = tokens[sig[q + 1]].text.toInt();
                while (q < sig.size() && !tokens[sig[q]].is(")"))
                    ++q;
                lastTypeToken = sig[q];
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
        }
        int depth = 0;
        while (q < sig.size()) {
            const Token& t = tokens[sig[q]];
            if (t.is("("))
                ++depth;
            else if (t.is(")") && depth-- == 0)
                break;
            else if (t.is(",") && depth == 0)
                break;
            if (t.is("IDENTITY"))   // the embedded tables number nothing themselves
                out.edits.replace[sig[q]] = QString();
            ++q;
        }
        if (q >= sig.size() || tokens[sig[q]].is(")"))
            break;
        p = q + 1;
    }
    return out;
}

} // namespace

std::optional<TableDef> parseCreateTable(const QString& tsql)
{
    const auto ct = createTable(tokenize(tsql));
    if (!ct)
        return std::nullopt;
    return ct->table;
}

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
    Edits edits;
    tokenEdits(st.tokens, edits);
    if (!st.root) {
        if (auto ct = createTable(st.tokens))
            for (auto it = ct->edits.replace.cbegin(); it != ct->edits.replace.cend(); ++it)
                edits.replace[it.key()] = it.value();
        Emitter emitter(st.tokens, edits);
        emitter.copy(0, int(st.tokens.size()) - 1, out.sql);
        return out;
    }
    Analyzer analyzer(st.tokens, catalog, edits);
    Node* root = st.root;
    switch (root->kind) {
    case Kind::Insert: analyzer.insert(root); break;
    case Kind::Update: analyzer.update(root); break;
    case Kind::Delete: analyzer.remove(root); break;
    default: out.columnTypes = analyzer.query(root, nullptr); break;
    }
    root->first = 0;
    root->last = int(st.tokens.size()) - 1;
    out.sql = Emitter(st.tokens, edits).node(root);
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
