#pragma once

#include <QDate>
#include <QString>

namespace knjige::dates
{

// "mm.dd.yyyy": the month-first literal that goes into SQL text ('03.15.2016').
QString sqlLiteral(const QDate& date);
// "dd.MM.yy": how a date is shown on screen.
QString display(const QDate& date);
// "dd.mm.yy" and "mm.dd.yy": the two label forms of the totals panel.
QString dayFirstShort(const QDate& date);
QString monthFirstShort(const QDate& date);
// Reads "31.12.2015" or "1.1.2016" day first, as the program builds dates from text.
QDate parseDayFirst(const QString& text);
// Reads a month-first literal, "03.15.2016" or "1.1.2016". Invalid text gives an
// invalid date.
QDate parseMonthFirst(const QString& text);
// The ISO text form in which the embedded database stores every date.
QString isoText(const QDate& date);
QDate fromIsoText(const QString& text);

QDate firstOfYear(int year);
QDate lastOfYear(int year);

} // namespace knjige::dates
