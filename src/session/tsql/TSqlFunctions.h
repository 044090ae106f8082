#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

struct sqlite3;

namespace knjige::tsql
{

// Registers on an embedded database connection the functions the translated
// statements call:
//   tsql_div(a, b)    a / b as SQL Server divides: integer division when both are
//                     integers, the error "Divide by zero error encountered." for a
//                     zero divisor, NULL when either is NULL
//   tsql_divm(a, b)   the same, rounded to four decimals (a money quotient)
//   tsql_round(x, n)  ROUND on the decimal value of x, half away from zero
//   tsql_roundm(x, n) ROUND of money on its four decimals, the overflow error past
//                     the largest amount
//   tsql_money(x [, source])  CAST(x AS money): rounded to four decimals; beyond the
//                     money range the server's "Arithmetic overflow error converting
//                     <source> to data type money."; a text x is read as an exact
//                     decimal, so the range's edge is judged exactly
//   tsql_madd(a, b), tsql_msub(a, b)  money a + b, a - b on the exact
//                     ten-thousandths, the overflow error past either end
//   tsql_int(x [, type [, source]])  x as a whole number of the type ('int'):
//                     a fraction cut off toward zero, past the range the overflow
//                     error, a text that is no whole number "Conversion failed when
//                     converting the <source> value 'x' to data type int."
//   tsql_num(x, type, source)  a text as a numeric or float number, or the error
//   tsql_date(x)      x as the stored date: a number counts days from 1900-01-01
//   tsql_mod(a, b)    a % b, "Divide by zero error encountered." for b = 0
//   tsql_substring(s, start, n)  SUBSTRING, positions below 1 counted but empty
//   upper, lower      every letter, not ASCII alone
//   tsql_str(x, n)    a number as text with n decimals
//   tsql_len(s)       LEN: the length without trailing blanks
//   MONTH, YEAR, DAY  of a date stored as ISO text
//   like(p, s [, e])  and the collation tsql_ci_as (see TSqlCollation.h)
// Returns false when the engine refuses one.
bool registerFunctions(sqlite3* db);
// The conversions among them (TSqlConversions.cpp).
bool registerConversions(sqlite3* db);

// x rounded to n decimals (n may be negative) as SQL Server rounds a decimal: the
// value is taken to its 15 significant decimal digits first, so 2.675, held as
// 2.67499999..., rounds to 2.68; halves go away from zero.
double roundDecimal(double x, int n);

// A double read back as money: its ten-thousandths, or nothing when the server's
// money type could not hold it. The edge amounts, which a double cannot tell from
// their neighbours, read as the edge.
std::optional<qint64> moneyUnits(double value);
// "Arithmetic overflow error converting expression to data type <type>."
QString overflowMessage(const char* type);

} // namespace knjige::tsql
