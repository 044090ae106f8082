#pragma once

#include "session/tsql/TSqlTokenizer.h"
#include "session/tsql/TSqlTypes.h"

#include <QStringList>
#include <memory>
#include <vector>

namespace knjige::tsql
{

// A node of a parsed statement. Every node covers a range of tokens (indices into the
// statement's token list, inclusive); `kids` are its sub-nodes in source order, so a
// node is written back by copying its tokens and writing each kid in its place.
struct Node {
    enum class Kind {
        Literal,
        Name,
        Star,
        Param,
        Func,
        Cast,
        Case,
        Unary,
        Binary,
        Between,
        In,
        IsNull,
        Exists,
        Paren,
        Subquery,
        Select,
        Compound,
        Insert,
        Update,
        Delete
    };
    enum class Rewrite {
        None,
        Divide,
        Modulo,
        MoneySum,
        IntAverage,
        CastMoney,
        CastText,
        CastInteger,
        CastReal,
        CastDrop,
        Today
    };

    Kind kind = Kind::Literal;
    int first = 0;
    int last = -1;
    std::vector<Node*> kids;

    QString op; // Binary/Unary operator, function name (upper case), CAST target type (lower case)
    int opToken = -1; // the operator's or function name's token
    QStringList parts; // Name: the dotted parts as written, without brackets
    Node* a = nullptr; // Binary left, Unary/Cast/Paren/IsNull/Between/In operand, Case operand
    Node* b = nullptr; // Binary right, Between low, Case ELSE
    Node* c = nullptr; // Between high
    std::vector<Node*> args; // Func arguments, In list or subquery, Case WHEN/THEN pairs
    std::vector<int> commas; // Func: the comma tokens between the arguments
    int width = 0; // CAST target length
    bool negated = false;

    // Select
    struct Item {
        Node* expr = nullptr; // nullptr for * and T.*
        QString starTable; // T of T.*
        QString alias; // the column's name: its alias, or a plain column's own name
    };
    struct TableRef {
        QString table; // name without schema; empty for a derived table
        QString alias;
        Node* derived = nullptr;
        int nameFirst = -1, nameLast = -1, aliasToken = -1;
        bool aliasWithAs = false;
    };
    std::vector<Item> items;
    std::vector<TableRef> tables;
    std::vector<Node*> groupBy, orderBy;
    int topFirst = -1, topLast = -1;
    QString topCount;
    bool topPercent = false;
    // Compound: the selects joined by UNION, in `args`.
    // Insert / Update / Delete
    QString table;
    QStringList columns; // Insert column list; Update SET columns
    std::vector<std::vector<Node*>> rows; // Insert VALUES rows; Update SET values (one row)
    Node* query = nullptr; // Insert ... SELECT
    Node* where = nullptr;
    int deleteTargetFirst = -1, deleteTargetLast = -1; // DELETE <target> FROM ...

    // Filled by analysis.
    SqlType type = SqlType::Unknown;
    Rewrite rewrite = Rewrite::None;
    // A value stored into a money column: the server keeps four decimals of it.
    bool storedAsMoney = false;
    // The value converted as the server converts it where it stands: a text in
    // arithmetic with a number, a fraction or text stored into an int column, a
    // number or text stored into a date column. Unknown: no conversion.
    SqlType convertTo = SqlType::Unknown;
    // Compared as text: the comparison takes the server's case-insensitive collation.
    bool collate = false;
};

// The deepest a statement may nest (parentheses, subqueries, a chain of operators),
// as the embedded engine limits its own expressions; deeper ones are refused with
// kNestedTooDeeply instead of running out of stack.
constexpr int kMaxNesting = 1000;
extern const char* const kNestedTooDeeply;
// Thrown by the parser and by the steps that walk a parsed tree when the statement
// nests too deeply for the stack that is left.
struct NestingError {
};

// A parsed statement: owns its nodes.
struct ParsedStatement {
    QVector<Token> tokens;
    std::vector<std::unique_ptr<Node>> pool;
    Node* root = nullptr; // nullptr when the statement is not one the parser reads
    QString firstWord; // upper case: SELECT, INSERT, UPDATE, DELETE, CREATE, SET ...
    QString error; // why parsing stopped, when root is nullptr
    bool tooDeep = false; // it stopped at kMaxNesting: the statement must not run
};

// Parses one statement (no ';' separators). Statements other than SELECT, INSERT,
// UPDATE and DELETE, and anything the parser cannot read, give root nullptr.
ParsedStatement parseStatement(const QString& sql);

} // namespace knjige::tsql
