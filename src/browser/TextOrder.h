#pragma once

#include "session/db/ResultSet.h"

#include <QCollator>
#include <QCollatorSortKey>
#include <memory>
#include <vector>

namespace knjige::browser
{

// Bosnian alphabetical order (C, Č, Ć, D, Dž, Đ, ... S, Š, Z, Ž), letter case ignored.
QCollator textCollator();

// The sort keys of one text column, made once per load and compared as bytes. Texts of
// the characters a book's descriptions are made of (printable ASCII and the Bosnian
// letters) get the alphabet's own keys, one byte a letter, read off the collator once
// per process; a column holding any other character takes the collator's keys.
// Either way the order is the collator's.
class TextSortKeys
{
public:
    // Keys of the column's texts, the key of row r at index position[r].
    TextSortKeys(const db::ResultSet& rows, int column, const std::vector<int>& position);
    // <0, 0, >0 as the key at index a sorts before, with or after the one at b. NULL
    // cells have an empty key; the caller places them.
    int compare(int a, int b) const;
    // Orders rows (given by their positions) as compare() does, ties by position, the
    // order reversed but ties kept when descending.
    void order(std::vector<int>& positions, bool descending) const;

private:
    bool m_own = false;
    // The first sixteen bytes of each key, the first one highest: the beginnings of a
    // book's descriptions ("Nabavka robe - ") tell most of them apart.
    struct Prefix {
        quint64 high = 0;
        quint64 low = 0;
        bool operator==(const Prefix& o) const { return high == o.high && low == o.low; }
        bool operator<(const Prefix& o) const { return high != o.high ? high < o.high : low < o.low; }
    };
    std::vector<Prefix> m_prefix;
    std::vector<qint64> m_start; // where the rest of each key, past the prefix, begins in m_rest
    std::vector<qint64> m_length; // and its length
    std::vector<quint8> m_rest;
    std::vector<QCollatorSortKey> m_collator;
};

} // namespace knjige::browser
