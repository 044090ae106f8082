#include "session/Dates.h"

#include <QStringList>

namespace knjige::dates {

QString sqlLiteral(const QDate& date) { return date.toString(QStringLiteral("MM.dd.yyyy")); }
QString display(const QDate& date) { return date.toString(QStringLiteral("dd.MM.yy")); }
QString dayFirstShort(const QDate& date) { return date.toString(QStringLiteral("dd.MM.yy")); }
QString monthFirstShort(const QDate& date) { return date.toString(QStringLiteral("MM.dd.yy")); }

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

QDate parseDayFirst(const QString& text) { return parseParts(text, 0, 1); }
QDate parseMonthFirst(const QString& text) { return parseParts(text, 1, 0); }

QString isoText(const QDate& date) { return date.toString(Qt::ISODate); }

QDate fromIsoText(const QString& text)
{
    // Rows written by other tools may carry a time part; the books keep dates only.
    return QDate::fromString(text.left(10), Qt::ISODate);
}

QDate firstOfYear(int year) { return QDate(year, 1, 1); }
QDate lastOfYear(int year) { return QDate(year, 12, 31); }

} // namespace knjige::dates
