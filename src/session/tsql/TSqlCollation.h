#pragma once

#include <cstddef>

struct sqlite3;

namespace knjige::tsql
{

// Text comparison as the SQL Server databases of the region compare (Croatian_CI_AS):
// letter case is ignored for every letter (Č equals č), accents are not (č is not c),
// and the shorter text is taken as padded with blanks, so trailing blanks do not
// count. Č, Ć, Đ, Š and Ž order as letters of their own after C, Č, D, S and Z; other
// accented letters right after their base letter. Both texts are UTF-8. Returns <0,
// 0 or >0.
int compareText(const char* a, std::size_t aLength, const char* b, std::size_t bLength);

// `text LIKE pattern [ESCAPE escape]` as the server matches it under that collation:
// % any run, _ any one character, [a-m] a range, [^...] none of, [_] a plain _; every
// letter compared without case and with its accents; trailing blanks count. `escape`
// is 0 when there is none.
bool likeMatch(
    const char* pattern, std::size_t patternLength, const char* text, std::size_t textLength, char32_t escape = 0);

// Registers the collation tsql_ci_as and the like() function with two and three
// arguments on a connection, so that LIKE follows likeMatch. Returns false when the
// engine refuses.
bool registerCollation(sqlite3* db);

} // namespace knjige::tsql
