#include "session/tsql/TSqlFunctions.h"

#include "session/Dates.h"
#include "session/Money.h"
#include "session/tsql/TSqlCollation.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sqlite3.h>

namespace knjige::tsql
{
namespace
{

const char* const kDivideByZero = "Divide by zero error encountered.";

// 10^n for 0 <= n <= 18.
qint64 pow10i(int n)
{
    qint64 p = 1;
    while (n-- > 0)
        p *= 10;
    return p;
}

// 10^n as a double, exact as far as doubles go.
double pow10d(int n)
{
    return n >= 0 && n <= 18 ? double(pow10i(n)) : std::pow(10.0, n);
}

QByteArray overflowText(const char* source, const char* target)
{
    return QByteArray("Arithmetic overflow error converting ") + source + " to data type " + target + '.';
}

void overflow(sqlite3_context* ctx, const char* source, const char* target)
{
    const QByteArray text = overflowText(source, target);
    sqlite3_result_error(ctx, text.constData(), int(text.size()));
}

// An exact decimal text ("-922337203685477.5807", "12.34567") as ten-thousandths,
// rounded half away from zero at the fourth decimal.
enum class TextMoney { Ok, Overflow, Syntax };
TextMoney moneyFromText(const char* text, qint64* units)
{
    const char* p = text;
    while (*p == ' ')
        ++p;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        ++p;
    quint64 whole = 0;
    int wholeDigits = 0, fractionDigits = 0;
    quint64 fraction = 0; // the first four decimals
    bool roundUp = false;
    for (; *p >= '0' && *p <= '9'; ++p) {
        if (wholeDigits > 0 || *p != '0')
            ++wholeDigits;
        if (wholeDigits > 15)
            return TextMoney::Overflow;
        whole = whole * 10 + quint64(*p - '0');
    }
    const bool anyWhole = p != text && p[-1] >= '0' && p[-1] <= '9';
    if (*p == '.') {
        for (++p; *p >= '0' && *p <= '9'; ++p, ++fractionDigits) {
            if (fractionDigits < 4)
                fraction = fraction * 10 + quint64(*p - '0');
            else if (fractionDigits == 4)
                roundUp = *p >= '5';
        }
    }
    while (*p == ' ')
        ++p;
    if (*p != '\0' || (!anyWhole && fractionDigits == 0))
        return TextMoney::Syntax;
    for (int i = std::min(fractionDigits, 4); i < 4; ++i)
        fraction *= 10;
    const quint64 magnitude = whole * 10000 + fraction + (roundUp ? 1 : 0);
    const quint64 limit
        = negative ? quint64(std::numeric_limits<qint64>::max()) + 1 : quint64(std::numeric_limits<qint64>::max());
    if (magnitude > limit)
        return TextMoney::Overflow;
    *units = negative ? qint64(0 - magnitude) : qint64(magnitude);
    return TextMoney::Ok;
}

bool isNull(sqlite3_value* v)
{
    return sqlite3_value_type(v) == SQLITE_NULL;
}
bool isInteger(sqlite3_value* v)
{
    return sqlite3_value_numeric_type(v) == SQLITE_INTEGER;
}

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
        sqlite3_result_int64(ctx, a / b); // truncates toward zero, as SQL Server does
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

void tsqlDiv(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    divide(ctx, argv, false);
}
void tsqlDivMoney(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    divide(ctx, argv, true);
}

// v rounded half away from zero (or truncated) to a multiple of p; nothing when the
// result leaves 64 bits.
std::optional<qint64> roundToMultiple(qint64 v, qint64 p, bool truncate)
{
    const qint64 r = v % p;
    qint64 q = v / p;
    if (!truncate && std::llabs(r) * 2 >= p)
        q += v < 0 ? -1 : 1;
    if (q > std::numeric_limits<qint64>::max() / p || q < std::numeric_limits<qint64>::min() / p)
        return std::nullopt;
    return q * p;
}

// ROUND(x, n [, f]): a non-zero f truncates, as on the server.
void tsqlRound(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (isNull(argv[0]) || (argc > 1 && isNull(argv[1]))) {
        sqlite3_result_null(ctx);
        return;
    }
    const int n = argc > 1 ? sqlite3_value_int(argv[1]) : 0;
    const bool truncate = argc > 2 && sqlite3_value_int(argv[2]) != 0;
    if (isInteger(argv[0])) {
        const sqlite3_int64 v = sqlite3_value_int64(argv[0]);
        if (n >= 0 || n < -18) {
            sqlite3_result_int64(ctx, n >= 0 ? v : 0);
            return;
        }
        if (const auto r = roundToMultiple(v, pow10i(-n), truncate))
            sqlite3_result_int64(ctx, *r);
        else
            overflow(ctx, "expression", "int");
        return;
    }
    const double x = sqlite3_value_double(argv[0]);
    sqlite3_result_double(ctx, truncate ? std::trunc(x * pow10d(n)) / pow10d(n) : roundDecimal(x, n));
}

// ROUND of money, on its exact ten-thousandths: rounding up past the largest amount
// is the server's overflow, not a saturated double.
void tsqlRoundMoney(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (isNull(argv[0]) || isNull(argv[1])) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto units = moneyUnits(sqlite3_value_double(argv[0]));
    const int n = sqlite3_value_int(argv[1]);
    if (!units) {
        overflow(ctx, "expression", "money");
        return;
    }
    if (n >= 4 || n < -14) {
        sqlite3_result_double(ctx, n >= 4 ? double(*units) / 10000.0 : 0.0);
        return;
    }
    const bool truncate = argc > 2 && sqlite3_value_int(argv[2]) != 0;
    if (const auto r = roundToMultiple(*units, pow10i(4 - n), truncate))
        sqlite3_result_double(ctx, double(*r) / 10000.0);
    else
        overflow(ctx, "expression", "money");
}

// An operand of money arithmetic in ten-thousandths: a whole number exactly, a
// double as money reads it.
std::optional<qint64> moneyOperand(sqlite3_value* v)
{
    if (sqlite3_value_numeric_type(v) == SQLITE_INTEGER) {
        const sqlite3_int64 whole = sqlite3_value_int64(v);
        if (whole > std::numeric_limits<qint64>::max() / 10000 || whole < std::numeric_limits<qint64>::min() / 10000)
            return std::nullopt;
        return whole * 10000;
    }
    return moneyUnits(sqlite3_value_double(v));
}

// a + b and a - b of money, the overflow error past either end of the range.
template <bool Subtract> void tsqlMoneySum(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0]) || isNull(argv[1])) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto a = moneyOperand(argv[0]), b = moneyOperand(argv[1]);
    const Money sum = a && b
        ? (Subtract ? Money::fromUnits(*a) - Money::fromUnits(*b) : Money::fromUnits(*a) + Money::fromUnits(*b))
        : Money::outOfRange();
    if (sum.isOutOfRange())
        overflow(ctx, "expression", "money");
    else
        sqlite3_result_double(ctx, double(sum.units()) / 10000.0);
}

void tsqlMoney(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto* source = argc > 1 ? reinterpret_cast<const char*>(sqlite3_value_text(argv[1])) : nullptr;
    if (!source)
        source = "expression";
    if (sqlite3_value_type(argv[0]) == SQLITE_TEXT) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
        qint64 units = 0;
        switch (moneyFromText(text ? text : "", &units)) {
        case TextMoney::Ok:
            sqlite3_result_double(ctx, double(units) / 10000.0);
            return;
        case TextMoney::Overflow:
            overflow(ctx, source, "money");
            return;
        case TextMoney::Syntax:
            // Other number forms (1e3) go the way of a double.
            if (sqlite3_value_numeric_type(argv[0]) == SQLITE_TEXT) {
                sqlite3_result_error(
                    ctx, "Cannot convert a char value to money. The char value has incorrect syntax.", -1);
                return;
            }
            break;
        }
    }
    const double v = sqlite3_value_double(argv[0]);
    if (!moneyUnits(v)) {
        overflow(ctx, source, "money");
        return;
    }
    sqlite3_result_double(ctx, roundDecimal(v, 4));
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

template <int Part> void datePart(sqlite3_context* ctx, int, sqlite3_value** argv)
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

std::optional<qint64> moneyUnits(double value)
{
    // The largest amount as a double is 922337203685477.625: every double up to it
    // stands for an amount in range.
    constexpr double limit = 922337203685477.5807;
    if (!(std::fabs(value) <= limit))
        return std::nullopt;
    const double scaled = value * 10000.0;
    if (scaled >= 9223372036854775807.0)
        return std::numeric_limits<qint64>::max();
    if (scaled <= -9223372036854775808.0)
        return std::numeric_limits<qint64>::min();
    // A stored amount k/10000 is the double nearest it: the exact product value*10000
    // lies within 10000*ulp(value)/2 of k, less than half a unit while |value| < 2^39.
    // The nearest whole number to the exact product (fma gives what the rounded
    // product lost) is then k: every amount up to 549,755,813,888.0002 reads back as
    // written, 549,755,813,888.0003 is the first that may not.
    const double nearest = std::nearbyint(scaled);
    const double off = (scaled - nearest) + std::fma(value, 10000.0, -scaled);
    // A computed value a hair off a decimal half (1.00005) rounds half to even, as
    // Money does; the hair is what holding a decimal in a double can move it, and
    // where it grows near half a unit no half is told apart any more.
    const double hair = std::fabs(scaled) * std::numeric_limits<double>::epsilon();
    if (hair < 0.25 && std::fabs(std::fabs(off) - 0.5) <= std::max(hair, 1e-9)) {
        const double lower = off > 0 ? nearest : nearest - 1;
        return qint64(std::fmod(lower, 2.0) == 0 ? lower : lower + 1);
    }
    return qint64(off > 0.5 ? nearest + 1 : off < -0.5 ? nearest - 1 : nearest);
}

QString overflowMessage(const char* type)
{
    return QString::fromLatin1(overflowText("expression", type));
}

double roundDecimal(double x, int n)
{
    if (!std::isfinite(x) || n > 400)
        return x;
    if (n < -400)
        return 0.0;
    // The 15 significant digits of x: digits * 10^(exponent - 14).
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.14e", std::fabs(x));
    const char* e = std::strchr(buf, 'e');
    const int exponent = std::atoi(e + 1);
    qint64 digits = 0;
    for (const char* p = buf; p < e; ++p)
        if (*p >= '0' && *p <= '9')
            digits = digits * 10 + (*p - '0');
    const int cut = -(exponent - 14 + n); // decimal places of the digits below the rounding place
    if (cut <= 0)
        return x;
    if (cut > 15)
        return 0.0;
    const qint64 p = pow10i(cut);
    qint64 q = digits / p;
    if ((digits % p) * 2 >= p)
        ++q;
    const double magnitude = n >= 0 ? double(q) / pow10d(n) : double(q) * pow10d(-n);
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
        { "tsql_div", 2, tsqlDiv },
        { "tsql_divm", 2, tsqlDivMoney },
        { "tsql_round", 2, tsqlRound },
        { "tsql_round", 3, tsqlRound },
        { "tsql_money", 1, tsqlMoney },
        { "tsql_money", 2, tsqlMoney },
        { "tsql_roundm", 2, tsqlRoundMoney },
        { "tsql_roundm", 3, tsqlRoundMoney },
        { "tsql_str", 2, tsqlStr },
        { "tsql_madd", 2, tsqlMoneySum<false> },
        { "tsql_msub", 2, tsqlMoneySum<true> },
        { "tsql_len", 1, tsqlLen },
        { "YEAR", 1, datePart<0> },
        { "MONTH", 1, datePart<1> },
        { "DAY", 1, datePart<2> },
    };
    for (const Def& d : defs) {
        const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
        if (sqlite3_create_function_v2(db, d.name, d.args, flags, nullptr, d.fn, nullptr, nullptr, nullptr)
            != SQLITE_OK)
            return false;
    }
    return registerConversions(db) && registerCollation(db);
}

} // namespace knjige::tsql
