#pragma once

#include "session/tsql/TSqlTokenizer.h"
#include "session/tsql/TSqlTypes.h"

#include <QHash>
#include <QString>
#include <optional>

namespace knjige::tsql
{

// Replacement texts by token index, applied when a statement is written back.
struct Edits {
    QHash<int, QString> replace;
    QHash<int, QString> append; // written after the token
};

// A CREATE TABLE statement: the table it defines and the rewrites of its column types.
struct CreateTable {
    TableDef table;
    Edits edits;
};
std::optional<CreateTable> createTable(const QVector<Token>& tokens);

} // namespace knjige::tsql
