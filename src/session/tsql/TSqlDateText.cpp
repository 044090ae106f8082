#include "session/tsql/TSqlDateText.h"

#include <QRegularExpression>

namespace knjige::tsql
{
namespace
{

// The earliest year of SQL Server's datetime.
constexpr int kFirstYear = 1753;

int fullYear(const QString& digits)
{
    const int y = digits.toInt();
    if (digits.size() != 2)
        return y;
    return y < 50 ? 2000 + y : 1900 + y;
}

DateText::Status dateFrom(int y, int m, int d, QDate* out)
{
    const QDate date(y, m, d);
    if (!date.isValid() || y < kFirstYear)
        return DateText::Status::OutOfRange;
    *out = date;
    return DateText::Status::Date;
}

// "10:30", "10:30:15", "10:30:15.250", "10:30:15:250", "2:05 PM"; an empty text is
// midnight. False when the text is not a time.
bool readTime(const QString& text, QTime* out)
{
    static const QRegularExpression re(
        QStringLiteral("^(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2})(?:[.:](\\d{1,3}))?)?\\s*([AaPp][Mm])?$"));
    if (text.isEmpty()) {
        *out = QTime(0, 0);
        return true;
    }
    const auto m = re.match(text);
    if (!m.hasMatch())
        return false;
    int h = m.captured(1).toInt();
    const QString half = m.captured(5).toUpper();
    if (!half.isEmpty()) {
        if (h < 1 || h > 12)
            return false;
        h = h % 12 + (half == u"PM" ? 12 : 0);
    }
    QString ms = m.captured(4);
    // ".25" is a quarter of a second, as the server reads it.
    while (!ms.isEmpty() && ms.size() < 3)
        ms += u'0';
    *out = QTime(h, m.captured(2).toInt(), m.captured(3).toInt(), ms.toInt());
    return out->isValid();
}

} // namespace

QString DateText::storedForm() const
{
    return date.toString(Qt::ISODate);
}

QString DateText::comparableForm() const
{
    if (time == QTime(0, 0))
        return storedForm();
    return storedForm() + u' '
        + time.toString(time.msec() ? QStringLiteral("HH:mm:ss.zzz") : QStringLiteral("HH:mm:ss"));
}

DateText readDateText(const QString& text)
{
    static const QRegularExpression monthFirst(
        QStringLiteral("^(\\d{1,2})([./-])(\\d{1,2})\\2(\\d{4}|\\d{2})(?:\\s+(.*))?$"));
    static const QRegularExpression yearFirst(
        QStringLiteral("^(\\d{4})([./-])(\\d{1,2})\\2(\\d{1,2})(?:(?:\\s+|T)(.*))?$"));
    static const QRegularExpression compact(QStringLiteral("^(\\d{4}|\\d{2})(\\d{2})(\\d{2})(?:\\s+(.*))?$"));

    DateText out;
    const QString t = text.trimmed();
    if (t.isEmpty()) {
        out.status = DateText::Status::Date;
        out.date = QDate(1900, 1, 1);
        out.time = QTime(0, 0);
        return out;
    }
    int y = 0, m = 0, d = 0;
    QString rest;
    if (const auto a = monthFirst.match(t); a.hasMatch()) {
        m = a.captured(1).toInt();
        d = a.captured(3).toInt();
        y = fullYear(a.captured(4));
        rest = a.captured(5);
    } else if (const auto b = yearFirst.match(t); b.hasMatch()) {
        y = b.captured(1).toInt();
        m = b.captured(3).toInt();
        d = b.captured(4).toInt();
        rest = b.captured(5);
    } else if (const auto c = compact.match(t); c.hasMatch()) {
        y = fullYear(c.captured(1));
        m = c.captured(2).toInt();
        d = c.captured(3).toInt();
        rest = c.captured(4);
    } else {
        return out;
    }
    if (!readTime(rest.trimmed(), &out.time))
        return out;
    out.status = dateFrom(y, m, d, &out.date);
    return out;
}

QString outOfRangeMessage(bool national)
{
    return QStringLiteral("The conversion of a %1 data type to a datetime data type resulted in an out-of-range value.")
        .arg(national ? QStringLiteral("nvarchar") : QStringLiteral("varchar"));
}

QString notADateMessage()
{
    return QStringLiteral("Conversion failed when converting date and/or time from character string.");
}

} // namespace knjige::tsql
