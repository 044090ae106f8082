#pragma once

#include <QDate>
#include <QString>
#include <QTime>

namespace knjige::tsql
{

// A text as SQL Server reads it into a datetime under SET DATEFORMAT mdy, the order
// in which the system writes its date literals.
struct DateText {
    enum class Status {
        Date, // date (and time) read
        OutOfRange, // a date's shape with an impossible month, day or year: '15.03.2026'
        NotADate, // no date at all
    };
    Status status = Status::NotADate;
    QDate date;
    QTime time; // midnight when the text has no time

    // "yyyy-MM-dd", the one form the embedded database stores dates in.
    QString storedForm() const;
    // The stored form, with " HH:mm:ss[.zzz]" when the time is not midnight: compared
    // as text with stored dates it orders as the server orders datetimes.
    QString comparableForm() const;
};

// Reads 'm.d.yyyy', 'mm/dd/yy', 'm-d-yyyy' (two-digit years 00-49 are 2000-2049),
// 'yyyy-mm-dd', 'yyyymmdd', each optionally followed by a time ('10:30', '10:30:15.250',
// '2:05 PM'; after an ISO date also 'T10:30:00'). A blank text is 1 January 1900, as
// on the server.
DateText readDateText(const QString& text);

// The server's messages for a literal that cannot become a datetime; `national` for
// an N'..' literal.
QString outOfRangeMessage(bool national);
QString notADateMessage();

} // namespace knjige::tsql
