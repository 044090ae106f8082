// The conversions SQL Server makes (or refuses) where SQLite would quietly make a
// number of a text or round a fraction into a whole number.
#include "session/Dates.h"
#include "session/tsql/TSqlFunctions.h"

#include <QByteArray>
#include <QDate>
#include <QString>
#include <cmath>
#include <cstring>
#include <limits>
#include <sqlite3.h>

namespace knjige::tsql
{
namespace
{

bool isNull(sqlite3_value* v)
{
    return sqlite3_value_type(v) == SQLITE_NULL;
}

const char* textOf(sqlite3_value* v)
{
    const auto* t = reinterpret_cast<const char*>(sqlite3_value_text(v));
    return t ? t : "";
}

// The optional text argument i, or the fallback.
const char* argText(int argc, sqlite3_value** argv, int i, const char* fallback)
{
    return argc > i && !isNull(argv[i]) ? textOf(argv[i]) : fallback;
}

void error(sqlite3_context* ctx, const QByteArray& text)
{
    sqlite3_result_error(ctx, text.constData(), int(text.size()));
}

QByteArray conversionFailed(const char* source, sqlite3_value* v, const char* target)
{
    return QByteArray("Conversion failed when converting the ") + source + " value '" + textOf(v) + "' to data type "
        + target + '.';
}

QByteArray overflowed(const char* target)
{
    return QByteArray("Arithmetic overflow error converting expression to data type ") + target + '.';
}

// The whole-number types by name, with their ranges; bit takes any whole number
// (every one but 0 is 1).
struct IntRange {
    qint64 low, high;
};
IntRange rangeOf(const char* type)
{
    if (std::strcmp(type, "smallint") == 0)
        return { -32768, 32767 };
    if (std::strcmp(type, "tinyint") == 0)
        return { 0, 255 };
    if (std::strcmp(type, "bigint") == 0 || std::strcmp(type, "bit") == 0)
        return { std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max() };
    return { std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max() };
}

// A text as SQL Server reads it into a whole number: blanks around, a sign, digits
// (an empty text, or a sign alone, is 0). Nothing else: '1.5' and '1e3' are refused.
enum class TextInt { Ok, Overflow, Syntax };
TextInt intFromText(const char* p, qint64* out)
{
    while (*p == ' ')
        ++p;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        ++p;
    quint64 magnitude = 0;
    bool overflow = false;
    for (; *p >= '0' && *p <= '9'; ++p) {
        if (magnitude > (quint64(1) << 62))
            overflow = true;
        else
            magnitude = magnitude * 10 + quint64(*p - '0');
    }
    while (*p == ' ')
        ++p;
    if (*p != '\0')
        return TextInt::Syntax;
    if (overflow || magnitude > quint64(std::numeric_limits<qint64>::max()))
        return TextInt::Overflow;
    *out = negative ? -qint64(magnitude) : qint64(magnitude);
    return TextInt::Ok;
}

// tsql_int(x [, type [, source]]): x converted to a whole number of the type ('int'
// unless named) as the server converts it: a fraction is cut off toward zero (money,
// `source` 'money', rounds half away from zero), a
// value past the type's range overflows, a text must be a whole number. `source`
// names the text's type in the message ('varchar' for a plain literal).
void tsqlInt(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    const char* type = argText(argc, argv, 1, "int");
    const IntRange range = rangeOf(type);
    qint64 v = 0;
    switch (sqlite3_value_type(argv[0])) {
    case SQLITE_INTEGER:
        v = sqlite3_value_int64(argv[0]);
        break;
    case SQLITE_FLOAT: {
        // Money rounds to a whole number (half away from zero); float and decimal are cut off.
        const double x = sqlite3_value_double(argv[0]);
        const double d = std::strcmp(argText(argc, argv, 2, ""), "money") == 0 ? std::round(x) : std::trunc(x);
        if (!(d >= double(range.low) && d <= double(range.high)) || !(std::fabs(d) < 9223372036854775808.0)) {
            error(ctx, overflowed(type));
            return;
        }
        v = qint64(d);
        break;
    }
    default: {
        const char* source = argText(argc, argv, 2, "nvarchar");
        switch (intFromText(textOf(argv[0]), &v)) {
        case TextInt::Ok:
            break;
        case TextInt::Overflow:
            error(ctx,
                QByteArray("The conversion of the ") + source + " value '" + textOf(argv[0]) + "' overflowed an " + type
                    + " column.");
            return;
        case TextInt::Syntax:
            error(ctx, conversionFailed(source, argv[0], type));
            return;
        }
    }
    }
    if (v < range.low || v > range.high) {
        error(ctx, overflowed(type));
        return;
    }
    sqlite3_result_int64(ctx, v);
}

// tsql_num(x, type, source): a text read as a decimal ('numeric') or float number,
// or the server's "Error converting data type varchar to numeric.".
void tsqlNum(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (sqlite3_value_type(argv[0]) != SQLITE_TEXT) {
        sqlite3_result_value(ctx, argv[0]);
        return;
    }
    const char* text = textOf(argv[0]);
    char* end = nullptr;
    const double d = std::strtod(text, &end);
    while (end && *end == ' ')
        ++end;
    const bool blank = text[std::strspn(text, " ")] == '\0';
    if (blank || !end || *end != '\0' || !std::isfinite(d)) {
        error(ctx,
            QByteArray("Error converting data type ") + argText(argc, argv, 2, "nvarchar") + " to "
                + argText(argc, argv, 1, "numeric") + '.');
        return;
    }
    sqlite3_result_double(ctx, d);
}

const char* const kNotADate = "Conversion failed when converting date and/or time from character string.";

// tsql_date(x): x as the stored date text. A number counts days from 1 January 1900
// (a fraction is a time of day, which a date column does not keep); a text is read
// as the server reads it under SET DATEFORMAT mdy.
void tsqlDate(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    QDate d;
    switch (sqlite3_value_type(argv[0])) {
    case SQLITE_NULL:
        sqlite3_result_null(ctx);
        return;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT: {
        const double days = std::floor(sqlite3_value_double(argv[0]));
        // datetime runs from 1 January 1753 to 31 December 9999.
        if (!(days >= -53690.0 && days <= 2958463.0)) {
            error(ctx, overflowed("datetime"));
            return;
        }
        d = QDate(1900, 1, 1).addDays(qint64(days));
        break;
    }
    default: {
        const QString s = QString::fromUtf8(textOf(argv[0])).trimmed();
        d = dates::fromIsoText(s);
        if (!d.isValid())
            d = dates::parseMonthFirst(s);
        if (!d.isValid()) {
            sqlite3_result_error(ctx, kNotADate, -1);
            return;
        }
    }
    }
    const QByteArray iso = dates::isoText(d).toLatin1();
    sqlite3_result_text(ctx, iso.constData(), int(iso.size()), SQLITE_TRANSIENT);
}

// a % b: the remainder takes the dividend's sign, a zero divisor stops the statement.
void tsqlMod(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0]) || isNull(argv[1])) {
        sqlite3_result_null(ctx);
        return;
    }
    if (sqlite3_value_numeric_type(argv[0]) == SQLITE_INTEGER
        && sqlite3_value_numeric_type(argv[1]) == SQLITE_INTEGER) {
        const sqlite3_int64 a = sqlite3_value_int64(argv[0]), b = sqlite3_value_int64(argv[1]);
        if (b == 0)
            sqlite3_result_error(ctx, "Divide by zero error encountered.", -1);
        else
            sqlite3_result_int64(ctx, b == -1 ? 0 : a % b);
        return;
    }
    const double b = sqlite3_value_double(argv[1]);
    if (b == 0)
        sqlite3_result_error(ctx, "Divide by zero error encountered.", -1);
    else
        sqlite3_result_double(ctx, std::fmod(sqlite3_value_double(argv[0]), b));
}

// SUBSTRING(s, start, length): the characters at positions start .. start+length-1,
// counted from 1; positions before the first count but give nothing. LEFT(s, length)
// is SUBSTRING from 1 with its own name in the refusal.
template <bool Left> void tsqlSubstring(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    sqlite3_value* const lengthArg = argv[Left ? 1 : 2];
    if (isNull(argv[0]) || isNull(argv[1]) || isNull(lengthArg)) {
        sqlite3_result_null(ctx);
        return;
    }
    const sqlite3_int64 start = Left ? 1 : sqlite3_value_int64(argv[1]);
    const sqlite3_int64 length = sqlite3_value_int64(lengthArg);
    if (length < 0) {
        sqlite3_result_error(ctx,
            Left ? "Invalid length parameter passed to the left function."
                 : "Invalid length parameter passed to the substring function.",
            -1);
        return;
    }
    const QString s = QString::fromUtf8(textOf(argv[0]));
    const sqlite3_int64 from = std::max<sqlite3_int64>(start, 1);
    const sqlite3_int64 to
        = start > std::numeric_limits<sqlite3_int64>::max() - length ? start : start + length; // exclusive
    const QByteArray out
        = from >= to || from > s.size() ? QByteArray() : s.mid(qsizetype(from - 1), qsizetype(to - from)).toUtf8();
    sqlite3_result_text(ctx, out.constData(), int(out.size()), SQLITE_TRANSIENT);
}

// UPPER and LOWER of every letter, one letter for one as the server maps them (ß stays ß).
template <bool Upper> void changeCase(sqlite3_context* ctx, int, sqlite3_value** argv)
{
    if (isNull(argv[0])) {
        sqlite3_result_null(ctx);
        return;
    }
    const char* text = textOf(argv[0]);
    QByteArray out(text, sqlite3_value_bytes(argv[0]));
    bool ascii = true;
    for (char& ch : out) {
        if (static_cast<unsigned char>(ch) >= 0x80) {
            ascii = false;
            break;
        }
        if (Upper && ch >= 'a' && ch <= 'z')
            ch = char(ch - 32);
        else if (!Upper && ch >= 'A' && ch <= 'Z')
            ch = char(ch + 32);
    }
    if (!ascii) {
        const QString s = QString::fromUtf8(text);
        QString r;
        r.reserve(s.size());
        for (qsizetype i = 0; i < s.size(); ++i) {
            char32_t c = s[i].unicode();
            if (QChar::isHighSurrogate(c) && i + 1 < s.size() && s[i + 1].isLowSurrogate()) {
                c = QChar::surrogateToUcs4(s[i], s[i + 1]);
                ++i;
            }
            const char32_t m = Upper ? QChar::toUpper(c) : QChar::toLower(c);
            r += QString::fromUcs4(&m, 1);
        }
        out = r.toUtf8();
    }
    sqlite3_result_text(ctx, out.constData(), int(out.size()), SQLITE_TRANSIENT);
}

} // namespace

bool registerConversions(sqlite3* db)
{
    struct Def {
        const char* name;
        int args;
        void (*fn)(sqlite3_context*, int, sqlite3_value**);
    };
    static const Def defs[] = {
        { "tsql_int", 1, tsqlInt },
        { "tsql_int", 2, tsqlInt },
        { "tsql_int", 3, tsqlInt },
        { "tsql_num", 3, tsqlNum },
        { "tsql_date", 1, tsqlDate },
        { "tsql_mod", 2, tsqlMod },
        { "tsql_substring", 3, tsqlSubstring<false> },
        { "tsql_left", 2, tsqlSubstring<true> },
        { "upper", 1, changeCase<true> },
        { "lower", 1, changeCase<false> },
    };
    for (const Def& d : defs) {
        const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
        if (sqlite3_create_function_v2(db, d.name, d.args, flags, nullptr, d.fn, nullptr, nullptr, nullptr)
            != SQLITE_OK)
            return false;
    }
    return true;
}

} // namespace knjige::tsql
