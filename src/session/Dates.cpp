#include "session/Dates.h"

#include <QStringList>

namespace knjige::dates
{

QString sqlLiteral(const QDate& date)
{
    return date.toString(QStringLiteral("MM.dd.yyyy"));
}
QString display(const QDate& date)
{
    return date.toString(QStringLiteral("dd.MM.yy"));
}
QString dayFirstShort(const QDate& date)
{
    return date.toString(QStringLiteral("dd.MM.yy"));
}
QString monthFirstShort(const QDate& date)
{
    return date.toString(QStringLiteral("MM.dd.yy"));
}

static QDate parseParts(const QString& text, int dayIndex, int monthIndex)
{
    const QStringList parts = text.trimmed().split(u'.');
    if (parts.size() != 3)
        return {};
    bool okD = false, okM = false, okY = false;
    const int d = parts[dayIndex].toInt(&okD);
    const int m = parts[monthIndex].toInt(&okM);
    const int y = parts[2].toInt(&okY);
    if (!okD || !okM || !okY || parts[2].size() != 4)
        return {};
    return QDate(y, m, d);
}

QDate parseDayFirst(const QString& text)
{
    return parseParts(text, 0, 1);
}
QDate parseMonthFirst(const QString& text)
{
    return parseParts(text, 1, 0);
}

QString isoText(const QDate& date)
{
    return date.toString(Qt::ISODate);
}

QDate fromIsoText(const QString& text)
{
    // Every date of a large book passes here on each load, so the one stored form
    // "yyyy-MM-dd" is read digit by digit. Rows written by other tools may carry a
    // time part; the books keep dates only.
    if (text.size() >= 10 && text[4] == u'-' && text[7] == u'-') {
        int parts[3] = { 0, 0, 0 };
        const int starts[3] = { 0, 5, 8 };
        const int lengths[3] = { 4, 2, 2 };
        for (int p = 0; p < 3; ++p) {
            for (int i = 0; i < lengths[p]; ++i) {
                const QChar c = text[starts[p] + i];
                if (c < u'0' || c > u'9')
                    return {};
                parts[p] = parts[p] * 10 + (c.unicode() - u'0');
            }
        }
        return QDate(parts[0], parts[1], parts[2]);
    }
    return QDate::fromString(text.left(10), Qt::ISODate);
}

QDate firstOfYear(int year)
{
    return QDate(year, 1, 1);
}
QDate lastOfYear(int year)
{
    return QDate(year, 12, 31);
}

} // namespace knjige::dates
