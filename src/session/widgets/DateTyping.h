#pragma once

class QDateTimeEdit;

namespace knjige {

// Lets a date be typed as it is written, "15.03.2016": a date picker moves on to the
// next part by itself once a part is full, and the separator typed right after that is
// taken as already done instead of skipping a further part. Dates typed without
// separators ("15032016") work as before.
void typeDatesAsWritten(QDateTimeEdit* edit);

} // namespace knjige
