#include "session/tsql/TSqlAnalyzer.h"

#include "session/Dates.h"
#include "session/tsql/StackDepth.h"
#include "session/tsql/TSqlDateText.h"

#include <QDate>
#include <cmath>
#include <map>

namespace knjige::tsql
{
namespace
{

using Kind = Node::Kind;

// The parser leaves far more than this; the walk stops rather than overflow.
constexpr std::size_t kStackReserve = 16 * 1024;

void checkStack()
{
    if (stackLeft() < kStackReserve)
        throw NestingError {};
}

struct Scope {
    const Node* owner;
    const Scope* parent;
};

// A result column of a query.
struct OutColumn {
    QString name;
    SqlType type = SqlType::Unknown;
};

// A table in FROM that is a query: its columns, and the selects whose items give them.
struct Derived {
    QVector<OutColumn> columns;
    std::vector<Node*> selects;
};

// Where a column name leads: a catalog column, or a column of a derived table.
struct Resolved {
    SqlType type = SqlType::Unknown;
    const Derived* derived = nullptr;
    int index = -1;
};

bool isComparison(const QString& op)
{
    return op == u"=" || op == u"<>" || op == u"!=" || op == u"<" || op == u">" || op == u"<=" || op == u">="
        || op == u"!<" || op == u"!>";
}

SqlType higherIgnoringNull(SqlType a, SqlType b)
{
    if (a == SqlType::Null)
        return b;
    if (b == SqlType::Null)
        return a;
    return higher(a, b);
}

// Two operands compared as character data: one is text and the other is not a number
// or a date (which SQL Server would convert the text to).
bool comparesAsText(SqlType a, SqlType b)
{
    const auto open = [](SqlType t) { return t == SqlType::Text || t == SqlType::Unknown || t == SqlType::Null; };
    return (a == SqlType::Text && open(b)) || (b == SqlType::Text && open(a));
}

void collectSelects(Node* n, std::vector<Node*>& out)
{
    if (n->kind == Kind::Select)
        out.push_back(n);
    else if (n->kind == Kind::Subquery)
        collectSelects(n->a, out);
    else if (n->kind == Kind::Compound)
        for (Node* part : n->args)
            collectSelects(part, out);
}

// The expression of a select's i-th result column; nullptr behind a * (whose width
// the item list does not show).
Node* itemExpr(const Node* select, int i)
{
    if (i < 0 || i >= int(select->items.size()))
        return nullptr;
    for (int k = 0; k <= i; ++k)
        if (!select->items[k].expr)
            return nullptr;
    return select->items[i].expr;
}

bool matches(const Node::TableRef& ref, const QString& qualifier)
{
    return ref.alias.compare(qualifier, Qt::CaseInsensitive) == 0
        || (!ref.table.isEmpty() && ref.table.compare(qualifier, Qt::CaseInsensitive) == 0);
}

bool isDerived(const Node* select, const Node* kid)
{
    for (const auto& ref : select->tables)
        if (ref.derived == kid)
            return true;
    return false;
}

class Analyzer
{
public:
    Analyzer(const QVector<Token>& tokens, const Catalog& catalog, Edits& edits)
        : m_tokens(tokens)
        , m_catalog(catalog)
        , m_edits(edits)
    {
    }

    QString error() const { return m_error; }

    QVector<OutColumn> query(Node* n, const Scope* parent)
    {
        checkStack();
        if (n->kind == Kind::Subquery)
            return query(n->a, parent);
        if (n->kind != Kind::Compound)
            return select(n, parent);
        QVector<OutColumn> columns;
        for (Node* part : n->args) {
            const QVector<OutColumn> c = query(part, parent);
            if (columns.isEmpty())
                columns = c;
            else if (c.size() == columns.size())
                for (int i = 0; i < c.size(); ++i)
                    columns[i].type = higherIgnoringNull(columns[i].type, c[i].type);
        }
        // A date in one part makes the literals of that column dates in every part.
        std::vector<Node*> selects;
        collectSelects(n, selects);
        for (int i = 0; i < columns.size(); ++i)
            if (columns[i].type == SqlType::Date)
                for (Node* s : selects)
                    if (Node* e = itemExpr(s, i))
                        dateContext(e, false);
        return columns;
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
        for (const auto& row : n->rows)
            for (size_t i = 0; i < row.size(); ++i) {
                expr(row[i], nullptr);
                store(columnType(int(i)), row[i]);
            }
        if (!n->query)
            return;
        query(n->query, nullptr);
        std::vector<Node*> selects;
        collectSelects(n->query, selects);
        for (Node* s : selects)
            for (int i = 0; i < int(s->items.size()); ++i)
                if (Node* e = itemExpr(s, i))
                    store(columnType(i), e);
    }

    void update(Node* n)
    {
        const Scope scope { n, nullptr };
        const TableDef* table = m_catalog.find(n->table);
        for (int i = 0; i < n->columns.size(); ++i) {
            Node* value = n->rows[0][i];
            expr(value, &scope);
            const ColumnDef* c = table ? table->column(n->columns[i]) : nullptr;
            store(c ? c->type : SqlType::Unknown, value);
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
    void fail(const QString& message)
    {
        if (m_error.isEmpty())
            m_error = message;
    }

    // A value written into a column of the given type. The server keeps money to four
    // decimals and refuses an amount or a whole number its type cannot hold; REAL
    // storage would keep the whole fraction of 10.0/3 (and the row could then never
    // be matched again by the value it shows), INTEGER storage any size.
    void store(SqlType column, Node* value)
    {
        const bool plain = value->kind == Kind::Name || value->kind == Kind::Param;
        switch (column) {
        case SqlType::Date:
            dateContext(value, true);
            // A number counts days from 1900-01-01, a text is read as a date or refused.
            if (value->kind != Kind::Param && value->type != SqlType::Date && value->type != SqlType::Null)
                value->convertTo = SqlType::Date;
            break;
        case SqlType::Money:
            if (!plain && value->type != SqlType::Null && value->rewrite != Node::Rewrite::CastMoney
                && !(value->kind == Kind::Literal && value->type == SqlType::Int))
                value->storedAsMoney = true;
            break;
        case SqlType::Int: {
            // A whole number as it is needs nothing; a fraction is cut off, a text
            // converted or refused, a computed value checked against the range.
            const bool whole
                = value->type == SqlType::Int || value->type == SqlType::Bit || value->type == SqlType::Unknown;
            if (value->kind != Kind::Param && value->type != SqlType::Null
                && !(whole && (value->kind == Kind::Name || value->kind == Kind::Literal)))
                value->convertTo = SqlType::Int;
            break;
        }
        default:
            break;
        }
    }

    // Writes tokens first..last as nothing, and the blank after them too.
    void blank(int first, int last, bool withFollowingSpace)
    {
        for (int i = first; i <= last; ++i)
            m_edits.replace[i] = QString();
        if (withFollowingSpace && last + 1 < m_tokens.size() && m_tokens[last + 1].kind == Token::Kind::Space)
            m_edits.replace[last + 1] = QString();
    }

    QVector<OutColumn> select(Node* n, const Scope* parent)
    {
        const Scope scope { n, parent };
        // Derived tables first: the select list and the conditions name their columns.
        for (const auto& ref : n->tables)
            if (ref.derived)
                derive(ref.derived, parent);
        for (Node* kid : n->kids)
            if (!isDerived(n, kid))
                expr(kid, &scope);
        for (const auto* list : { &n->groupBy, &n->orderBy })
            for (Node* e : *list)
                e->collate = e->type == SqlType::Text;
        if (n->topFirst >= 0) {
            blank(n->topFirst, n->topLast, true);
            if (!n->topPercent)
                m_edits.append[n->last] += QStringLiteral(" LIMIT ") + n->topCount;
        }
        QVector<OutColumn> columns;
        for (const Node::Item& item : n->items) {
            if (item.expr) {
                columns << OutColumn { item.alias, item.expr->type };
                continue;
            }
            for (const Node::TableRef& ref : n->tables) {
                if (!item.starTable.isEmpty() && !matches(ref, item.starTable))
                    continue;
                if (ref.derived) {
                    const auto d = m_derived.find(ref.derived);
                    if (d == m_derived.end() || d->second.columns.isEmpty())
                        return {};
                    columns << d->second.columns;
                    continue;
                }
                const TableDef* table = m_catalog.find(ref.table);
                if (!table)
                    return {};
                for (const ColumnDef& c : table->columns)
                    columns << OutColumn { c.name, c.type };
            }
        }
        return columns;
    }

    void derive(Node* n, const Scope* parent)
    {
        Derived d;
        d.columns = query(n, parent);
        collectSelects(n, d.selects);
        m_derived[n] = std::move(d);
    }

    Resolved resolve(const QStringList& parts, const Scope* scope) const
    {
        const QString name = parts.last();
        const QString qualifier = parts.size() >= 2 ? parts[parts.size() - 2] : QString();
        for (const Scope* s = scope; s; s = s->parent) {
            for (const Node::TableRef& ref : s->owner->tables) {
                if (!qualifier.isEmpty() && !matches(ref, qualifier))
                    continue;
                if (ref.derived) {
                    const auto d = m_derived.find(ref.derived);
                    const QVector<OutColumn> none;
                    const QVector<OutColumn>& columns = d == m_derived.end() ? none : d->second.columns;
                    for (int i = 0; i < columns.size(); ++i)
                        if (columns[i].name.compare(name, Qt::CaseInsensitive) == 0)
                            return { columns[i].type, &d->second, i };
                } else {
                    const TableDef* table = m_catalog.find(ref.table);
                    if (const ColumnDef* c = table ? table->column(name) : nullptr)
                        return { c->type, nullptr, -1 };
                }
                if (!qualifier.isEmpty())
                    return {};
            }
        }
        return {};
    }

    // The expression stands where SQL Server wants a datetime: a text literal in it
    // (in a branch of CASE, an argument of ISNULL, the column of a subquery or of a
    // derived table) becomes the date it stands for, or the statement fails as the
    // server's conversion would. `stored`: written into a date column, which keeps
    // the date only.
    void dateContext(Node* n, bool stored)
    {
        checkStack();
        switch (n->kind) {
        case Kind::Paren:
        case Kind::Subquery:
            dateContext(n->a, stored);
            break;
        case Kind::Literal:
            if (n->op == u"STRING")
                dateLiteral(n, stored);
            else if (n->op == u"NUMBER")
                dateNumber(n);
            break;
        case Kind::Case:
            for (size_t i = 1; i < n->args.size(); i += 2)
                dateContext(n->args[i], stored);
            if (n->b)
                dateContext(n->b, stored);
            break;
        case Kind::Func:
            if (n->op == u"ISNULL" || n->op == u"COALESCE")
                for (Node* arg : n->args)
                    dateContext(arg, stored);
            break;
        case Kind::Select:
        case Kind::Compound: {
            std::vector<Node*> selects;
            collectSelects(n, selects);
            for (Node* s : selects)
                if (Node* e = itemExpr(s, 0))
                    dateContext(e, stored);
            break;
        }
        case Kind::Name:
            if (const auto r = m_derivedNames.find(n); r != m_derivedNames.end())
                for (Node* s : r->second.derived->selects)
                    if (Node* e = itemExpr(s, r->second.index))
                        dateContext(e, stored);
            break;
        default:
            break;
        }
    }

    void dateLiteral(Node* n, bool stored)
    {
        const Token& t = m_tokens[n->first];
        const DateText d = readDateText(t.stringValue());
        switch (d.status) {
        case DateText::Status::Date:
            m_edits.replace[n->first] = quoteString(stored ? d.storedForm() : d.comparableForm());
            n->type = SqlType::Date;
            break;
        case DateText::Status::OutOfRange:
            fail(outOfRangeMessage(t.kind == Token::Kind::NString));
            break;
        case DateText::Status::NotADate:
            fail(notADateMessage());
            break;
        }
    }

    // A number where a datetime is wanted: that many days after 1 January 1900 (a
    // fraction is a time of day, which the stored date drops).
    void dateNumber(Node* n)
    {
        bool ok = false;
        const double days = std::floor(m_tokens[n->first].text.toDouble(&ok));
        if (!ok || !(days >= -53690.0 && days <= 2958463.0)) {
            fail(QStringLiteral("Arithmetic overflow error converting expression to data type datetime."));
            return;
        }
        m_edits.replace[n->first] = quoteString(dates::isoText(QDate(1900, 1, 1).addDays(qint64(days))));
        n->type = SqlType::Date;
    }

    SqlType expr(Node* n, const Scope* scope)
    {
        checkStack();
        n->type = typeOf(n, scope);
        return n->type;
    }

    SqlType typeOf(Node* n, const Scope* scope)
    {
        switch (n->kind) {
        case Kind::Literal:
            return literal(n);
        case Kind::Name: {
            const Resolved r = resolve(n->parts, scope);
            if (r.derived)
                m_derivedNames[n] = r;
            return r.type;
        }
        case Kind::Star:
        case Kind::Param:
            return SqlType::Unknown;
        case Kind::Func:
            return function(n, scope);
        case Kind::Cast:
            return cast(n, scope);
        case Kind::Case:
            return caseExpr(n, scope);
        case Kind::Unary: {
            const SqlType t = expr(n->a, scope);
            return n->op == u"NOT" ? SqlType::Bit : t;
        }
        case Kind::Binary:
            return binary(n, scope);
        case Kind::Between:
            return between(n, scope);
        case Kind::In:
            return in(n, scope);
        case Kind::IsNull:
        case Kind::Exists:
            expr(n->a, scope);
            return SqlType::Bit;
        case Kind::Paren:
            return expr(n->a, scope);
        case Kind::Subquery: {
            const QVector<OutColumn> c = query(n->a, scope);
            return c.isEmpty() ? SqlType::Unknown : c.first().type;
        }
        default:
            return SqlType::Unknown;
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
        if (text.contains(u'.'))
            return SqlType::Decimal;
        // A whole number beyond int is numeric on the server.
        bool ok = false;
        const qlonglong v = text.toLongLong(&ok);
        return ok && v <= 2147483647 ? SqlType::Int : SqlType::Decimal;
    }

    // Both sides of a comparison: a date on one side makes the other a date, text
    // against text takes the collation.
    void compared(Node* a, SqlType ta, Node* b, SqlType tb)
    {
        if (ta == SqlType::Date)
            dateContext(b, false);
        if (tb == SqlType::Date)
            dateContext(a, false);
        if (comparesAsText(ta, tb))
            a->collate = true;
        // A text compared with a number becomes a number, or the statement fails as
        // the server's conversion would (K.Isprava=5 over an 'R-1').
        if (ta == SqlType::Text && isNumericType(tb))
            convert(a, tb);
        else if (tb == SqlType::Text && isNumericType(ta))
            convert(b, ta);
    }

    // The value converted to a number type; the list of an IN (SELECT ...) through the
    // column each of its selects gives.
    void convert(Node* n, SqlType to)
    {
        if (to == SqlType::Bit)
            to = SqlType::Int;
        if (n->kind != Kind::Select && n->kind != Kind::Compound) {
            n->convertTo = to;
            return;
        }
        std::vector<Node*> selects;
        collectSelects(n, selects);
        for (Node* s : selects)
            if (Node* e = itemExpr(s, 0); e && e->type == SqlType::Text)
                e->convertTo = to;
    }

    SqlType binary(Node* n, const Scope* scope)
    {
        const SqlType l = expr(n->a, scope);
        const SqlType r = expr(n->b, scope);
        const QString& op = n->op;
        if (op == u"AND" || op == u"OR" || op == u"LIKE")
            return SqlType::Bit;
        if (isComparison(op)) {
            compared(n->a, l, n->b, r);
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
        else if (op == u"%")
            n->rewrite = Node::Rewrite::Modulo;
        // Money adds and subtracts on its exact ten-thousandths: a double cannot tell
        // the largest amount from one past it.
        const auto moneyOrInt = [](SqlType t) { return t == SqlType::Money || t == SqlType::Int || t == SqlType::Bit; };
        if ((op == u"+" || op == u"-") && (l == SqlType::Money || r == SqlType::Money) && moneyOrInt(l)
            && moneyOrInt(r))
            n->rewrite = Node::Rewrite::MoneySum;
        // A text in arithmetic with a number becomes that number's type, or the
        // statement fails as the server's conversion would ('a'+1).
        if (l == SqlType::Text && isNumericType(r))
            n->a->convertTo = r == SqlType::Bit ? SqlType::Int : r;
        else if (r == SqlType::Text && isNumericType(l))
            n->b->convertTo = l == SqlType::Bit ? SqlType::Int : l;
        if (l == SqlType::Null || r == SqlType::Null)
            return l == SqlType::Null ? r : l;
        return higher(l, r);
    }

    SqlType between(Node* n, const Scope* scope)
    {
        const SqlType ta = expr(n->a, scope);
        const SqlType tb = expr(n->b, scope);
        const SqlType tc = expr(n->c, scope);
        compared(n->a, ta, n->b, tb);
        compared(n->a, ta, n->c, tc);
        if (tb == SqlType::Date || tc == SqlType::Date) {
            dateContext(n->b, false);
            dateContext(n->c, false);
        }
        return SqlType::Bit;
    }

    SqlType in(Node* n, const Scope* scope)
    {
        const SqlType t = expr(n->a, scope);
        for (Node* arg : n->args) {
            SqlType ta;
            if (arg->kind == Kind::Select || arg->kind == Kind::Compound) {
                const QVector<OutColumn> c = query(arg, scope);
                ta = c.isEmpty() ? SqlType::Unknown : c.first().type;
            } else {
                ta = expr(arg, scope);
            }
            compared(n->a, t, arg, ta);
        }
        return SqlType::Bit;
    }

    SqlType caseExpr(Node* n, const Scope* scope)
    {
        const SqlType operand = n->a ? expr(n->a, scope) : SqlType::Unknown;
        SqlType t = SqlType::Null;
        for (size_t i = 0; i + 1 < n->args.size(); i += 2) {
            const SqlType when = expr(n->args[i], scope);
            if (n->a)
                compared(n->a, operand, n->args[i], when);
            t = higherIgnoringNull(t, expr(n->args[i + 1], scope));
        }
        if (n->b)
            t = higherIgnoringNull(t, expr(n->b, scope));
        if (t == SqlType::Date)
            dateContext(n, false);
        return t == SqlType::Null ? SqlType::Text : t;
    }

    SqlType cast(Node* n, const Scope* scope)
    {
        expr(n->a, scope);
        const SqlType target = typeFromTSqlName(n->op);
        switch (target) {
        case SqlType::Money:
            n->rewrite = Node::Rewrite::CastMoney;
            break;
        case SqlType::Text:
            n->rewrite = Node::Rewrite::CastText;
            break;
        case SqlType::Int:
        case SqlType::Bit:
            n->rewrite = Node::Rewrite::CastInteger;
            break;
        case SqlType::Decimal:
        case SqlType::Float:
            n->rewrite = Node::Rewrite::CastReal;
            break;
        case SqlType::Date:
            n->rewrite = Node::Rewrite::CastDrop;
            dateContext(n->a, false);
            break;
        default:
            break;
        }
        return target;
    }

    SqlType function(Node* n, const Scope* scope)
    {
        QVector<SqlType> args;
        for (Node* arg : n->args)
            args << expr(arg, scope);
        const SqlType first = args.isEmpty() ? SqlType::Unknown : args.first();
        const QString& f = n->op;
        if (f == u"ISNULL" || f == u"COALESCE") {
            SqlType t = first;
            if (f == u"ISNULL")
                m_edits.replace[n->opToken] = QStringLiteral("IFNULL");
            if (f == u"COALESCE" || first == SqlType::Null)
                for (SqlType a : args)
                    t = higherIgnoringNull(t, a);
            // ISNULL takes its first argument's type: ISNULL(int, 2.7) is 2.
            else if (isNumericType(first) && first != SqlType::Bit)
                for (size_t i = 1; i < n->args.size(); ++i)
                    if (args[int(i)] == SqlType::Text
                        || (isNumericType(args[int(i)]) && higher(args[int(i)], first) != first))
                        n->args[i]->convertTo = first;
            if (t == SqlType::Date)
                dateContext(n, false);
            return t;
        }
        if (f == u"LEFT" && n->commas.size() == 1) {
            m_edits.replace[n->opToken] = QStringLiteral("tsql_left");
            return SqlType::Text;
        }
        if (f == u"SUBSTRING") {
            m_edits.replace[n->opToken]
                = n->args.size() == 3 ? QStringLiteral("tsql_substring") : QStringLiteral("SUBSTR");
            return SqlType::Text;
        }
        if (f == u"LEN") {
            m_edits.replace[n->opToken] = QStringLiteral("tsql_len");
            return SqlType::Int;
        }
        if (f == u"ROUND") {
            m_edits.replace[n->opToken]
                = first == SqlType::Money ? QStringLiteral("tsql_roundm") : QStringLiteral("tsql_round");
            return first;
        }
        if (f == u"GETDATE") {
            n->rewrite = Node::Rewrite::Today;
            return SqlType::Date;
        }
        if (f == u"AVG" && (first == SqlType::Int || first == SqlType::Bit)) {
            // The average of whole numbers is a whole number, cut off toward zero.
            n->rewrite = Node::Rewrite::IntAverage;
            return SqlType::Int;
        }
        if (f == u"SUM" || f == u"MIN" || f == u"MAX" || f == u"ABS" || f == u"AVG")
            return first;
        if (f == u"MONTH" || f == u"YEAR" || f == u"DAY") {
            // The server reads a text argument as a datetime, month first.
            if (n->args.size() == 1)
                dateContext(n->args.front(), false);
            return SqlType::Int;
        }
        if (f == u"COUNT")
            return SqlType::Int;
        if (f == u"RTRIM" || f == u"LTRIM" || f == u"UPPER" || f == u"LOWER" || f == u"REPLACE" || f == u"SUBSTR")
            return SqlType::Text;
        return SqlType::Unknown;
    }

    const QVector<Token>& m_tokens;
    const Catalog& m_catalog;
    Edits& m_edits;
    QString m_error;
    std::map<const Node*, Derived> m_derived;
    std::map<const Node*, Resolved> m_derivedNames;
};

} // namespace

Analysis analyze(ParsedStatement& statement, const Catalog& catalog, Edits& edits)
{
    Analysis out;
    Analyzer analyzer(statement.tokens, catalog, edits);
    Node* root = statement.root;
    switch (root->kind) {
    case Kind::Insert:
        analyzer.insert(root);
        break;
    case Kind::Update:
        analyzer.update(root);
        break;
    case Kind::Delete:
        analyzer.remove(root);
        break;
    default:
        for (const OutColumn& c : analyzer.query(root, nullptr)) {
            out.columnTypes << c.type;
            out.columnNames << c.name;
        }
        break;
    }
    out.error = analyzer.error();
    return out;
}

} // namespace knjige::tsql
