#include "browser/Renumbering.h"

#include "books/BookKind.h"
#include "browser/BookQuery.h"
#include "journal/PeriodLock.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/db/BulkNumbers.h"

#include <QHash>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace knjige::browser::renumber
{
namespace
{

const QString kReceivables = QStringLiteral("dbo.KnjEvidPotrIObvFBiH");
const QString kLockedNumber = QStringLiteral("Renumeracija bi promijenila redni broj stavke %1 datirane %2.");
const QString kLockedLink
    = QStringLiteral("Renumeracija bi promijenila vezu stavke %1 knjige evid.potr.i obveza datirane %2.");

// The numbers change in a few statements inside one transaction, so the operator sees
// its steps, and stopping is not offered: the rows read may no longer be the book's.
std::unique_ptr<Progress> showSteps(int steps)
{
    return interaction().startProgress(
        { QStringLiteral("Renumeracija"), QStringLiteral("Renumeracija: korak %1 od %2"), steps, false });
}

// A refusal or failure that leaves the book as it was, to be told as a warning.
Outcome refusal(const QString& text)
{
    return { After::Stay, { text, {}, Icon::Exclamation } };
}

QString num(qint64 v)
{
    return QString::number(v);
}

QString tableOf(int tip)
{
    const books::BookKind* book = books::findBook(tip);
    return book ? book->table : QString();
}

// The rows a book's SELECT reads, as conditions on the table's own columns.
QString bookScope(const Book& b)
{
    QString scope = QStringLiteral("GodinaKnj=") + num(b.year) + QStringLiteral(" AND BrojPoduzeca=") + num(b.company);
    if (books::isTradeBook(b.tip))
        scope += QStringLiteral(" AND BrojProd=") + num(b.brojProd);
    return scope;
}

QString receivablesScope(const Book& b)
{
    return QStringLiteral("GodinaKnj=") + num(b.year) + QStringLiteral(" AND BrojPoduzeca=") + num(b.company);
}

std::vector<qint64> numbersOf(const db::ResultSet& rows)
{
    const int c = rows.indexOf(QStringLiteral("RBroj"));
    std::vector<qint64> out(size_t(rows.rowCount()));
    for (int r = 0; r < rows.rowCount(); ++r)
        out[size_t(r)] = rows.integer(r, c);
    return out;
}

// The first row whose number is not its place counted from 0, or -1. A book numbered
// from 1 stops at its first row, so the question is always asked there.
int firstOutOfPlace(const std::vector<qint64>& numbers)
{
    for (size_t i = 0; i < numbers.size(); ++i)
        if (numbers[i] != qint64(i))
            return int(i);
    return -1;
}

// From `from` on, each row whose number is not its place counted from 1 takes it.
std::vector<std::optional<qint64>> ordinalNumbers(const std::vector<qint64>& numbers, int from)
{
    std::vector<std::optional<qint64>> out(numbers.size());
    for (size_t i = size_t(from); i < numbers.size(); ++i)
        if (numbers[i] != qint64(i + 1))
            out[i] = qint64(i + 1);
    return out;
}

// For each changed number, in the order of the book, the first receivables row (in
// its own order) whose link holds the old number at that moment takes the new one. A
// link moved once can be moved again by a later change, as the rows are walked.
std::vector<std::optional<qint64>> followFirstLinks(
    const std::vector<qint64>& numbers, const std::vector<std::optional<qint64>>& changes, const db::ResultSet& links)
{
    const int c = links.indexOf(QStringLiteral("RBrojKPR"));
    std::vector<qint64> value(size_t(links.rowCount()));
    std::unordered_map<qint64, std::set<int>> rowsWith;
    for (int r = 0; r < links.rowCount(); ++r) {
        value[size_t(r)] = links.integer(r, c);
        rowsWith[value[size_t(r)]].insert(r);
    }
    for (size_t i = 0; i < numbers.size(); ++i) {
        if (!changes[i])
            continue;
        const auto it = rowsWith.find(numbers[i]);
        if (it == rowsWith.end() || it->second.empty())
            continue;
        const int r = *it->second.begin();
        it->second.erase(it->second.begin());
        value[size_t(r)] = *changes[i];
        rowsWith[*changes[i]].insert(r);
    }
    std::vector<std::optional<qint64>> out(value.size());
    for (int r = 0; r < links.rowCount(); ++r)
        if (value[size_t(r)] != links.integer(r, c))
            out[size_t(r)] = value[size_t(r)];
    return out;
}

// Where each link value ends when the rows are walked twice: first every link equal
// to a row's number moves up by the offset, then every link equal to a row's lifted
// number takes the row's new place. All links of one value move together, and a value
// equal to no number stays. Gives the values that change.
std::unordered_map<qint64, qint64> followAllLinks(
    const std::vector<qint64>& numbers, const std::vector<qint64>& linkValues)
{
    std::unordered_map<qint64, std::vector<qint64>> at; // value now -> values at the start
    for (qint64 v : linkValues)
        at[v].push_back(v);
    const auto move = [&at](qint64 from, qint64 to) {
        const auto it = at.find(from);
        if (from == to || it == at.end())
            return;
        std::vector<qint64> moving = std::move(it->second);
        at.erase(it);
        std::vector<qint64>& there = at[to];
        if (there.size() < moving.size())
            there.swap(moving);
        there.insert(there.end(), moving.begin(), moving.end());
    };
    for (qint64 n : numbers)
        move(n, n + kOffset);
    for (size_t i = 0; i < numbers.size(); ++i)
        move(numbers[i] + kOffset, qint64(i + 1));
    std::unordered_map<qint64, qint64> out;
    for (const auto& [now, starts] : at)
        for (qint64 start : starts)
            if (start != now)
                out.emplace(start, now);
    return out;
}

// One record lists every number that changed, another every link that followed.
bool journalNumbers(db::Database& db, const Book& b, const QString& numbers, const QString& links, QString* error)
{
    return (numbers.isEmpty()
               || journal::append(db, b, { journal::RecordKind::Renumeracija, std::nullopt, {}, numbers }, error))
        && (links.isEmpty()
            || journal::append(db, { Knjiga::EvidPotObvFBiH, b.company, b.year, 0 },
                { journal::RecordKind::Veze, std::nullopt, {}, links }, error));
}

bool saveOrdinal(db::Database& db, const Book& b, const db::ResultSet& rows,
    const std::vector<std::optional<qint64>>& book, const db::ResultSet& links,
    const std::vector<std::optional<qint64>>& linked, QString* error)
{
    const auto progress = showSteps(2);
    db::TransactionGuard tx(db);
    if (!tx.isActive()) {
        *error = db.errorDescription();
        return false;
    }
    const db::NumberTarget rowsTarget { tableOf(b.tip), QStringLiteral("RBroj"), QStringLiteral("RBroj"),
        bookScope(b) };
    const db::NumberTarget linkTarget { kReceivables, QStringLiteral("RBrojKPR"), QStringLiteral("RBroj"),
        receivablesScope(b) + QStringLiteral(" AND RBrojKPR<>0") };
    if (!journal::ensureBaseline(db, b, error) || !db::rewriteNumbers(db, rowsTarget, rows, book, error))
        return false;
    progress->advance(1);
    if ((links.rowCount() > 0 && !db::rewriteNumbers(db, linkTarget, links, linked, error))
        || !journalNumbers(db, b, journal::numberChanges(rows, QStringLiteral("RBroj"), book),
            journal::numberChanges(links, QStringLiteral("RBroj"), linked), error))
        return false;
    progress->advance(2);
    if (!tx.commit()) {
        *error = db.errorDescription();
        db.rollback();
        return false;
    }
    return true;
}

// The link values of the receivables rows of the year, with how many rows hold each.
bool readLinkValues(db::Database& db, const Book& b, std::vector<qint64>& values, QHash<qint64, qint64>& counts)
{
    db::ResultSet rs;
    const QString sql = QStringLiteral("SELECT RBrojKPR,COUNT(*) AS Broj FROM dbo.KnjEvidPotrIObvFBiH WHERE GODINAKNJ=")
        + num(b.year) + QStringLiteral(" AND BROJPODUZECA=") + num(b.company)
        + QStringLiteral(" AND RBrojKPR IS NOT NULL GROUP BY RBrojKPR");
    if (!db.open(sql, rs))
        return false;
    for (int r = 0; r < rs.rowCount(); ++r) {
        values.push_back(rs.integer(r, 0));
        counts.insert(rs.integer(r, 0), rs.integer(r, 1));
    }
    return true;
}

// The step of a renumbering by date that failed, if any.
enum class DateStep { Done, Begin, Read, Locked, Write };

// The links of the receivables book follow the numbers of book 96, so an entry of the
// receivables book's closed period would change with them: that stops the renumbering.
QString refuseMovedLinks(
    db::Database& db, const Book& b, const db::ResultSet& links, const std::vector<std::optional<qint64>>& moving)
{
    return journal::periodlock::refuseRows(
        db, { Knjiga::EvidPotObvFBiH, b.company, b.year, 0 }, links, &moving, kLockedLink);
}

DateStep moveLinks(db::Database& db, const Book& b, const std::vector<qint64>& numbers, QString* links, QString* error)
{
    std::vector<qint64> values;
    QHash<qint64, qint64> counts;
    if (!readLinkValues(db, b, values, counts)) {
        *error = db.errorDescription();
        return DateStep::Write;
    }
    const std::unordered_map<qint64, qint64> moved = followAllLinks(numbers, values);
    QDate lock;
    if (!moved.empty()
        && !journal::periodlock::lockDate(db, { Knjiga::EvidPotObvFBiH, b.company, b.year, 0 }, &lock, error))
        return DateStep::Write;
    if (lock.isValid()) {
        db::ResultSet held;
        if (!db.open(linkedReceivablesSql(b), held)) {
            *error = db.errorDescription();
            return DateStep::Write;
        }
        const int c = held.indexOf(QStringLiteral("RBrojKPR"));
        std::vector<std::optional<qint64>> moving(size_t(held.rowCount()));
        for (int r = 0; r < held.rowCount(); ++r)
            if (const auto it = moved.find(held.integer(r, c)); it != moved.end())
                moving[size_t(r)] = it->second;
        *error = journal::periodlock::refuseRows(lock, held, &moving, kLockedLink);
        if (!error->isEmpty())
            return DateStep::Locked;
    }
    std::vector<std::pair<qint64, qint64>> pairs(moved.begin(), moved.end());
    qint64 rowsMoved = 0;
    for (const auto& [from, to] : pairs)
        rowsMoved += counts.value(from);
    *links = journal::valueChanges(pairs);
    const db::NumberTarget target { kReceivables, QStringLiteral("RBrojKPR"), QStringLiteral("RBrojKPR"),
        receivablesScope(b) };
    return db::remapNumbers(db, target, pairs, rowsMoved, error) ? DateStep::Done : DateStep::Write;
}

// The whole renumbering by date in one transaction, rolled back on any failure. The
// rows come in the server's order, equal dates as the server returns them, and each
// takes its place in that order.
DateStep renumberByDate(db::Database& db, const Book& b, QString* error)
{
    const auto progress = showSteps(3);
    db::TransactionGuard tx(db);
    if (!tx.isActive()) {
        *error = db.errorDescription();
        return DateStep::Begin;
    }
    db::ResultSet rows;
    if (!journal::ensureBaseline(db, b, error))
        return DateStep::Write;
    if (!db.open(rowsSql(b, dateOrder(b.tip)), rows)) {
        *error = db.errorDescription();
        return DateStep::Read;
    }
    progress->advance(1);
    const std::vector<qint64> numbers = numbersOf(rows);
    const db::NumberTarget target { tableOf(b.tip), QStringLiteral("RBroj"), QStringLiteral("RBroj"), bookScope(b) };
    const std::vector<std::optional<qint64>> changes = ordinalNumbers(numbers, 0);
    *error = journal::periodlock::refuseRows(db, b, rows, &changes, kLockedNumber);
    if (!error->isEmpty())
        return DateStep::Locked;
    if (!db::rewriteNumbers(db, target, rows, changes, error))
        return DateStep::Write;
    progress->advance(2);
    QString links;
    if (b.tip == Knjiga::PrihRashFBiH)
        if (const DateStep step = moveLinks(db, b, numbers, &links, error); step != DateStep::Done)
            return step;
    if (!journalNumbers(db, b, journal::numberChanges(rows, QStringLiteral("RBroj"), changes), links, error))
        return DateStep::Write;
    progress->advance(3);
    if (!tx.commit()) {
        *error = db.errorDescription();
        db.rollback();
        return DateStep::Write;
    }
    return DateStep::Done;
}

} // namespace

Book sessionBook(int tip, qint32 brojProd)
{
    const Session& s = session();
    return Book { tip, s.BrojPoduzeca, s.RadnaGodina, brojProd };
}

Book bookOf(const browser::BookQuery& query)
{
    return Book { query.bookKind, query.company, query.year, query.salesPoint() };
}

bool takesPart(int tip)
{
    const books::BookKind* book = books::findBook(tip);
    return book && book->renumbers;
}

QString shiftSql(const Book& b, qint32 n)
{
    return QStringLiteral("UPDATE ") + tableOf(b.tip) + QStringLiteral(" SET RBROJ=RBROJ+1 WHERE GODINAKNJ=")
        + num(b.year) + QStringLiteral(" AND BROJPODUZECA=") + num(b.company) + QStringLiteral(" AND RBroj>=") + num(n);
}

QString blankEntrySql(const Book& b, qint32 n)
{
    const books::BookKind* book = books::findBook(b.tip);
    if (!book || book->blankEntryHead.isEmpty())
        return {};
    const QString c = num(b.company);
    const QString y = num(b.year);
    // Company, number, date and year; the trade books put the sales point second.
    const QString company = book->family == books::BookFamily::Trade ? c + u',' + num(b.brojProd) : c;
    return book->blankEntryHead + company + u',' + num(n) + QStringLiteral(",'1.1.") + y + QStringLiteral("',") + y
        + book->blankEntryTail;
}

QString rowsSql(const Book& b, const QString& order)
{
    QString sql = QStringLiteral("SELECT * FROM ") + tableOf(b.tip) + QStringLiteral(" WHERE GODINAKNJ=") + num(b.year)
        + QStringLiteral(" AND BROJPODUZECA=") + num(b.company);
    if (books::isTradeBook(b.tip))
        sql += QStringLiteral(" AND BrojProd=") + num(b.brojProd);
    return sql + order;
}

QString dateOrder(int tip)
{
    const books::BookKind* book = books::findBook(tip);
    return book ? book->dateOrder : QStringLiteral(" order by Datum,Vrsta");
}

QString linkedReceivablesSql(const Book& b)
{
    return QStringLiteral("SELECT * FROM dbo.KnjEvidPotrIObvFBiH WHERE GODINAKNJ=") + num(b.year)
        + QStringLiteral(" AND BROJPODUZECA=") + num(b.company) + QStringLiteral(" AND RBrojKPR<>0 order by RBroj");
}

Outcome insertAt(const Book& b, qint32 n)
{
    // A trade book without a chosen sales point would get a blank entry of none.
    if (n == 0 || !takesPart(b.tip) || (books::isTradeBook(b.tip) && b.brojProd == 0))
        return {};
    db::Database& db = session().db();
    // The blank entry is dated 1 January and every entry after it changes its number.
    const QString locked = journal::periodlock::refuseDates(db, b, { QDate(b.year, 1, 1) },
        QStringLiteral("Ubačena stavka bila bi datirana %1, a stavke iza nje dobile bi nove redne brojeve."));
    if (!locked.isEmpty())
        return refusal(locked);
    db::TransactionGuard tx(db);
    QString error;
    db::ResultSet blank;
    const bool inserted = tx.isActive() && journal::ensureBaseline(db, b, &error) && db.execute(shiftSql(b, n))
        && db.execute(blankEntrySql(b, n)) && db.open(rowsSql(b, QStringLiteral(" AND RBroj=") + num(n)), blank)
        && journal::append(db, b, { journal::RecordKind::Umetanje, n, {}, journal::rowsText(blank) }, &error)
        && tx.commit();
    return { inserted ? After::Reload : After::Stay, {} };
}

Outcome byOrdinal(const Book& b)
{
    if (!takesPart(b.tip))
        return {};
    db::Database& db = session().db();
    db::ResultSet links;
    if (b.tip == Knjiga::PrihRashFBiH && !db.open(linkedReceivablesSql(b), links)) {
        return refusal(
            failureText(QStringLiteral(" u čitanju zapisa knjige evid.potr.i obveza "), db.errorDescription()));
    }
    db::ResultSet rows;
    if (!db.open(rowsSql(b, QStringLiteral(" order by RBroj")), rows)) {
        return refusal(failureText(QStringLiteral(" Čitanje tek.zapisa "), db.errorDescription()));
    }
    const std::vector<qint64> numbers = numbersOf(rows);
    const int from = firstOutOfPlace(numbers);
    if (from < 0)
        return {};
    if (interaction().show({ QStringLiteral("Želite li pokrenuti renumeraciju stavki ?"),
            QStringLiteral("Renumeracija"), Icon::Question, Buttons::YesNo, Answer::Yes })
        != Answer::Yes)
        return { After::Reload, {} };
    const std::vector<std::optional<qint64>> changes = ordinalNumbers(numbers, from);
    if (const QString locked = journal::periodlock::refuseRows(db, b, rows, &changes, kLockedNumber);
        !locked.isEmpty()) {
        return refusal(locked);
    }
    const std::vector<std::optional<qint64>> linked = followFirstLinks(numbers, changes, links);
    if (const QString locked = refuseMovedLinks(db, b, links, linked); !locked.isEmpty())
        return refusal(locked);
    QString error;
    if (!saveOrdinal(db, b, rows, changes, links, linked, &error))
        return { After::Reload,
            { failureText(QStringLiteral("u spremanju renumeriranih zapisa. Ponovite! "), error), {},
                Icon::Critical } };
    return { After::Reload, {} };
}

Outcome byDate(const Book& b)
{
    if (!takesPart(b.tip))
        return {};
    const QString question = QStringLiteral("Želite li ažurirati redne brojeve, ali tako da budu složeni po datumima "
                                            "dokumenata?")
        + u'\n' + QStringLiteral("Pažljivo. Svi redni brojevi se mijenjaju!");
    if (interaction().show({ question, {}, Icon::Question, Buttons::YesNo, Answer::No }) != Answer::Yes)
        return {};

    QString error;
    // Each notice is told after the rollback, so no lock is held while it is read.
    switch (renumberByDate(session().db(), b, &error)) {
    case DateStep::Done:
        return { After::Reload, {} };
    case DateStep::Begin:
        return refusal(failureText(QStringLiteral(" u otvaranju konekcije: "), error));
    case DateStep::Read:
        return refusal(failureText(QStringLiteral(" Čitanje tek.zapisa "), error));
    case DateStep::Locked:
        return refusal(error);
    case DateStep::Write:
        break;
    }
    return { After::Reload,
        { failureText(QStringLiteral(" u ažuriranju broja knjige prihoda i rashoda: "), error), {}, Icon::Critical } };
}

} // namespace knjige::browser::renumber
