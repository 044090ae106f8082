#pragma once

struct sqlite3;

namespace knjige::tsql {

// Registers on an embedded database connection the functions the translated
// statements call:
//   tsql_div(a, b)    a / b as SQL Server divides: integer division when both are
//                     integers, the error "Divide by zero error encountered." for a
//                     zero divisor, NULL when either is NULL
//   tsql_divm(a, b)   the same, rounded to four decimals (a money quotient)
//   tsql_round(x, n)  ROUND on the decimal value of x, half away from zero
//   tsql_money(x)     CAST(x AS money): rounded to four decimals
//   tsql_str(x, n)    a number as text with n decimals
//   tsql_len(s)       LEN: the length without trailing blanks
//   MONTH, YEAR, DAY  of a date stored as ISO text
// Returns false when the engine refuses one.
bool registerFunctions(sqlite3* db);

// x rounded to n decimals (n may be negative) as SQL Server rounds a decimal: the
// value is taken to its 15 significant decimal digits first, so 2.675, held as
// 2.67499999..., rounds to 2.68; halves go away from zero.
double roundDecimal(double x, int n);

} // namespace knjige::tsql
