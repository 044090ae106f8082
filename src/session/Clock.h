#pragma once

#include <QDate>

namespace knjige::clock
{

// Today's date as every rule of the component sees it: the new entry's date, the
// search period, whether a year has begun. The system's date unless a test has fixed
// another one.
QDate today();

// Fixes today's date for the whole process; an invalid date goes back to the
// system's date.
void setToday(const QDate& date);

} // namespace knjige::clock
