#pragma once

#include "session/Failure.h"

#include <QString>

namespace knjige::browser::openingstate
{

// The one statement that carries the assets of `year` into the next year, each written
// down by one year's straight-line depreciation (100 / life per cent of the purchase
// value, the division as the column types make it). Assets that would reach zero or
// below are not carried. The new rows give no number: the table numbers them after the
// highest of the new year, in the order of their old numbers.
QString insertSql(qint16 company, qint16 year);

// Whether rows were made, and what to tell the operator afterwards: the refusal, the
// failure with the data layer's words, or the success.
struct Generated {
    bool made = false;
    Notice notice;
};

// Makes the opening state of the year after the session's working year for the asset
// list `tip`: refuses a year that has not begun yet (by clock::today()), asks through
// the seam (saying so when the year already holds rows) and runs the statement in one
// transaction. The outcome is returned, not shown: the caller tells it.
Generated generate(int tip);

} // namespace knjige::browser::openingstate
