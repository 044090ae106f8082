#pragma once

#include "journal/Journal.h"

#include <QByteArrayView>
#include <QMap>
#include <QString>
#include <limits>
#include <map>
#include <vector>

// The journal played forward for the book check: what each table should hold now.
namespace knjige::journal::bookcheck
{

using Values = QMap<QString, QString>;
inline const QString kRBroj = QStringLiteral("RBROJ");
inline const QString kLink = QStringLiteral("RBROJKPR");
inline const QString kNull = QStringLiteral("\\N");

qint64 number(const Values& v, const QString& column, qint64 otherwise = std::numeric_limits<qint64>::min());

// A row as the journal says it should be. A book of a million entries has a million of
// them, so a row as a record wrote it stays that record's line, where the chain's rows
// hold it (bytes `offset` to `offset + size` of the Poslije of chain row `record`), with
// the numbers given to it since beside it; only a row edited since holds its values
// (`edited`, an index into the replay's edited rows). Receivables remember the entry of
// the income and expense book their link was given for (`target`: its id, -1 for no
// link, -2 for a link to nothing, 0 when the journal cannot tell).
struct Row {
    int record = -1;
    qint32 offset = 0;
    qint32 size = 0;
    int edited = -1;
    int id = 0;
    int target = 0;
    bool gone = false;
    bool renumbered = false; // `rBroj` is its RBROJ
    bool relinked = false; // `link` is its RBROJKPR
    qint64 rBroj = 0;
    qint64 link = 0;
};

struct Table {
    std::vector<Row> rows;
    bool baseline = false;
    bool takingBaseline = false; // the baseline's further records belong to it
};

class Replay
{
public:
    // The rows must stay as they are while the replay is in use: its rows point into them.
    explicit Replay(const db::ResultSet& chain)
        : m_chain(chain)
    {
    }

    // Record `r` (read without its texts) of chain row `record`.
    void apply(int record, const Record& r);
    const Table* table(int tip) const;

    Values values(const Row& row) const;
    QString value(const Row& row, const QString& column, const QString& otherwise = QString()) const;
    qint64 number(const Row& row, const QString& column, qint64 otherwise = std::numeric_limits<qint64>::min()) const;

private:
    QByteArrayView text(int record, const char* column) const;
    QByteArrayView line(const Row& row) const;
    bool matches(const Values& pattern, const Row& row) const;
    void setNumber(Row& row, const QString& column, qint64 n);
    void addLines(Table& t, const QString& name, int record);
    void add(Table& t, const QString& name, Row row);
    void aim(Row& row);
    Row* find(Table& t, const Values& pattern) const;
    template <typename InScope> void remap(Table& t, const QString& column, const QString& text, InScope inScope);

    const db::ResultSet& m_chain;
    std::map<QString, Table> m_tables;
    std::vector<Values> m_edited;
    int m_nextId = 0;
};

} // namespace knjige::journal::bookcheck
