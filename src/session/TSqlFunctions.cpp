#include "session/TSqlFunctions.h"

#include "session/Dates.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <sqlite3.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <limits>

namespace knjige::tsql {
namespace {

const char* const kDivideByZero = "Divide by zero error encountered.";

qint64 pow10i(int n)
{
    qint64 p = 1;
    while (n-- > 0)
        p *= 10;
    return p;
}

bool isNull(sqlite3_value* v) { return sqlite3_value_type(v) == SQLITE_NULL; }
bool isInteger(sqlite3_value* v) { return sqlite3_value_numeric_type(v) == SQLITE_INTEGER; }

// Shared by tsql_div and tsql_divm; `money` rounds the quotient to four decimals.
void divide(sqlite3_context* ctx, sqlite3_value** argv, bool money)
{
    if (isNull(argv[0]) || isNull(argv[1])) {
        sqlite3_result_null(ctx);
        return;
    }
    if (isInteger(argv[0]) && isInteger(argv[1])) {
        const sqlite3_int64 a = sqlite3_value_int64(argv[0]);
        const sqlite3_int64 b = sqlite3_value_int64(argv[1]);
        if (b == 0) {
            sqlite3_result_error(ctx, kDivideByZero, -1);
            return;
        }
        if (a == std::numeric_limits<sqlite3_int64>::min() && b == -1) {
            sqlite3_result_error(ctx, "Arithmetic overflow error converting expression to data type int.", -1);
            return;
        }
        sqlite3_result_int64(ctx, a / b);   // truncates toward zero, as SQL Server does
        return;
    }
    const double b = sqlite3_value_double(argv[1]);
    if (b == 0) {
        sqlite3_result_error(ctx, kDivideByZero, -1);
        return;
    }
    const double q = sqlite3_value_double(argv[0]) / b;
    sqlite3_result_double(ctx, money ? roundDecimal(q, 4) : q);
}

void tsqlDiv(sqlite3_context* ctx, int, sqlite3_value** argv) { divide(ctx, argv, false); }
void tsqlDivMoney(sqlite3_context* ctx, int, sqlite3_value** argv) { divide(ctx, argv, true); }

void tsqlRound(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (isNull(argv[0]) || (argc > 1 && isNull(argv[1]))) {
        sqlite3_result_null(ctx);
        return;
    }
    const int n = argc > 1 ? sqlite3_value_int(argv[1]) : 0;
    if (isInteger(argv[0])) {
        const sqlite3_int64 v = sqlite3_value_int64(argv[0]);
        if (n >= 0 || n < -18) {
            sqlite3_result_int64(ctx, n >= 0 ? v : 0);
            return;
        }
        const qint64 p = pow10i(-n);
        const qint64 r = v % p;
        qint64 q = v / p;
        if (std::llabs(r) * 2 >= p)
            q += v < 0 ? -1 : 1;
        sqlite3_result_int64(ctx, q * p);
        return;
    }
    sqlite3_result_double(ctx, roundDecimal(sqlite3_value_double(argv[0]), n));
}

void tsqlMoney(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    sqlite3_result_double(ctx, roundDecimal(sqlite3_value_double(argv[0]), 4));
}

void tsqlStr(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    const int decimals = std::clamp(sqlite3_value_int(argv[1]), 0, 10);
    const double v = roundDecimal(sqlite3_value_double(argv[0]), decimals);
    const QByteArray text = QByteArray::number(v, 'f', decimals);
    sqlite3_result_text(ctx, text.constData(), int(text.size()), SQLITE_TRANSIENT);
}

void tsqlLen(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    QString s = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(argv[0])));
    int end = s.size();
    while (end > 0 && s[end - 1] == u' ')
        --end;
    sqlite3_result_int(ctx, end);
}

// Dates are stored as ISO text; a month-first text that reached the engine
// unconverted is read as SQL Server would read it under SET DATEFORMAT mdy.
QDate dateOf(sqlite3_value* v)
{
    const QString s = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(v))).trimmed();
    const QDate d = dates::fromIsoText(s);
    return d.isValid() ? d : dates::parseMonthFirst(s);
}

template<int Part>
void datePart(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    const QDate d = dateOf(argv[0]);
    if (!d.isValid()) {
        sqlite3_result_error(ctx, "Conversion failed when converting date and/or time from character string.", -1);
        return;
    }
    sqlite3_result_int(ctx, Part == 0 ? d.year() : Part == 1 ? d.month() : d.day());
}

} // namespace

double roundDecimal(double x, int n)
{
    if (!std::isfinite(x))
        return x;
    // The 15 significant digits of x: digits * 10^(exponent - 14).
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.14e", std::fabs(x));
    const char* e = std::strchr(buf, 'e');
    const int exponent = std::atoi(e + 1);
    qint64 digits = 0;
    for (const char* p = buf; p < e; ++p)
        if (*p >= '0' && *p <= '9')
            digits = digits * 10 + (*p - '0');
    const int cut = -(exponent - 14 + n);   // decimal places of the digits below the rounding place
    if (cut <= 0)
        return x;
    if (cut > 15)
        return 0.0;
    const qint64 p = pow10i(cut);
    qint64 q = digits / p;
    if ((digits % p) * 2 >= p)
        ++q;
    const double magnitude = n >= 0 ? double(q) / double(pow10i(n)) : double(q) * double(pow10i(-n));
    return x < 0 ? -magnitude : magnitude;
}

bool registerFunctions(sqlite3* db)
{
    struct Def {
        const char* name;
        int args;
        void (*fn)(sqlite3_context*, int, sqlite3_value**);
    };
    static const Def defs[] = {
        { "tsql_div", 2, tsqlDiv },   { "tsql_divm", 2, tsqlDivMoney }, { "tsql_round", 2, tsqlRound },
        { "tsql_round", 3, tsqlRound }, { "tsql_money", 1, tsqlMoney }, { "tsql_str", 2, tsqlStr },
        { "tsql_len", 1, tsqlLen },   { "YEAR", 1, datePart<0> },      { "MONTH", 1, datePart<1> },
        { "DAY", 1, datePart<2> },
    };
    for (const Def& d : defs) {
        const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
        if (sqlite3_create_function_v2(db, d.name, d.args, flags, nullptr, d.fn, nullptr, nullptr, nullptr) != SQLITE_OK)
            return false;
    }
    return true;
}

} // namespace knjige::tsql
