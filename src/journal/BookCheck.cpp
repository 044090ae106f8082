#include "journal/BookCheck.h"

#include "books/BookKind.h"
#include "journal/CheckReplay.h"
#include "journal/Journal.h"

#include <QHash>
#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace knjige::journal::bookcheck
{
namespace
{

// A long list is cut: the first ones tell the story, the count the size of it.
constexpr int kShown = 200;

QString shown(const QString& value)
{
    if (value == kNull)
        return QStringLiteral("(prazno)");
    const QDate d = QDate::fromString(value, Qt::ISODate);
    return d.isValid() ? d.toString(QStringLiteral("dd.MM.yyyy")) : u'"' + value + u'"';
}

// A section's findings: of a long list only the ones shown are kept, the rest counted,
// so that a book of a million entries does not hold a million sentences.
class Findings
{
public:
    Findings() = default;
    Findings(std::initializer_list<QString> findings)
    {
        for (const QString& f : findings)
            *this << f;
    }

    Findings& operator<<(const QString& finding)
    {
        if (m_shown.size() < kShown)
            m_shown << finding;
        ++m_count;
        return *this;
    }

    bool isEmpty() const { return m_count == 0; }
    const QStringList& shown() const { return m_shown; }
    qsizetype count() const { return m_count; }

private:
    QStringList m_shown;
    qsizetype m_count = 0;
};

class Checker
{
public:
    Checker(db::Database& db, const Request& q)
        : m_db(db)
        , m_q(q)
        , m_book(books::findBook(q.tip))
    {
    }

    Report run()
    {
        Report report;
        if (!m_book) {
            report.status = Report::Status::Unreadable;
            report.text = QStringLiteral("Nepoznata knjiga: %1\n").arg(m_q.tip);
            return report;
        }
        if (!readBook()) {
            report.status = Report::Status::Unreadable;
            report.text = QStringLiteral("Knjigu nije moguće pročitati: ") + m_db.errorDescription() + u'\n';
            return report;
        }
        m_text = QStringLiteral("Provjera knjige: %1 (%2)\nPoduzeće: %3, godina: %4")
                     .arg(m_book->caption)
                     .arg(m_q.tip)
                     .arg(m_q.company)
                     .arg(m_q.year);
        if (m_q.brojProd != 0)
            m_text += QStringLiteral(", prodajno mjesto: %1").arg(m_q.brojProd);
        m_text += QStringLiteral("\nStavki u knjizi: %1\n").arg(m_raw.rowCount());
        journalSection();
        numberingSection();
        if (m_book->table == journal::tableOf(Knjiga::EvidPotObvFBiH))
            linksSection();
        datesSection();
        if (books::isAssetList(m_q.tip))
            openingSection();
        if (m_q.tip == Knjiga::PrihRashDB)
            generationSection();
        sumsSection();
        m_text += m_count == 0 ? QStringLiteral("\nKnjiga je ispravna: provjera nije našla ništa.\n")
                               : QStringLiteral("\nUkupno nalaza: %1\n").arg(m_count);
        report.status = m_count == 0 ? Report::Status::Clean : Report::Status::Findings;
        report.findings = m_all;
        report.count = m_count;
        report.text = m_text;
        return report;
    }

private:
    bool readBook()
    {
        QString sql = QStringLiteral("SELECT * FROM ") + m_book->table + QStringLiteral(" WHERE GodinaKnj=")
            + QString::number(m_q.year) + QStringLiteral(" AND BrojPoduzeca=") + QString::number(m_q.company);
        if (books::isTradeBook(m_q.tip) && m_q.brojProd != 0)
            sql += QStringLiteral(" AND BrojProd=") + QString::number(m_q.brojProd);
        if (!m_db.open(sql, m_raw))
            return false;
        for (int c = 0; c < m_raw.fieldCount(); ++c)
            m_columns.insert(m_raw.field(c).name.toUpper(), c);
        return true;
    }

    // The book's rows stay in the result they were read into, a value read as the
    // journal writes it; a column the book does not have is `otherwise`.
    QString cell(int row, const QString& column, const QString& otherwise = QString()) const
    {
        const auto it = m_columns.constFind(column);
        return it == m_columns.cend() ? otherwise : journal::valueText(m_raw.value(row, *it));
    }

    std::optional<qint64> numberOf(int row, const QString& column) const
    {
        bool ok = false;
        const qint64 n = cell(row, column).toLongLong(&ok);
        return ok ? std::optional(n) : std::nullopt;
    }

    qint64 number(int row, const QString& column, qint64 otherwise = std::numeric_limits<qint64>::min()) const
    {
        return numberOf(row, column).value_or(otherwise);
    }

    Values values(int row) const { return journal::parseRow(journal::rowText(m_raw, row)); }

    void section(const QString& title, const Findings& findings, const QString& clean = QStringLiteral("U redu."))
    {
        m_text += u'\n' + title + u'\n';
        if (findings.isEmpty())
            m_text += QStringLiteral("  ") + clean + u'\n';
        for (const QString& finding : findings.shown())
            m_text += QStringLiteral("  - ") + finding + u'\n';
        if (findings.count() > kShown)
            m_text += QStringLiteral("  ... i još %1.\n").arg(findings.count() - kShown);
        m_all += findings.shown();
        m_count += findings.count();
    }

    static QString entry(const Values& v)
    {
        return QStringLiteral("stavka ") + v.value(kRBroj, QStringLiteral("bez broja"));
    }

    QString entry(int row) const { return QStringLiteral("stavka ") + cell(row, kRBroj, QStringLiteral("bez broja")); }

    void journalSection()
    {
        Findings findings;
        if (!journal::available(m_db)) {
            m_text += QStringLiteral("\nDnevnik promjena\n  Knjiga nema dnevnik promjena: u bazi nema tablice "
                                     "dbo.KnjDnevnik (naredba za nju je u uputama, README).\n");
            return;
        }
        if (!journal::readChain(m_db, m_q.company, m_q.year, m_chain)) {
            section(QStringLiteral("Dnevnik promjena"),
                { QStringLiteral("Dnevnik nije moguće pročitati: ") + m_db.errorDescription() });
            return;
        }
        QString previous;
        qint64 expected = 1;
        const int records = m_chain.rowCount();
        // A record at a time: a baseline of a million rows is a hundred records of texts.
        for (int i = 0; i < records; ++i) {
            const journal::Record r = journal::chainRecord(m_chain, i);
            if (r.redni != expected) {
                findings << (r.redni > expected
                        ? QStringLiteral("Lanac dnevnika je prekinut: nedostaje zapis %1 (sljedeći je %2).")
                              .arg(expected)
                              .arg(r.redni)
                        : QStringLiteral("Lanac dnevnika je prekinut: zapis %1 je umetnut ili ponovljen iza zapisa %2.")
                              .arg(r.redni)
                              .arg(expected - 1));
                break;
            }
            if (journal::recordHash(m_q.company, m_q.year, r, previous) != r.hash) {
                findings << QStringLiteral("Lanac dnevnika je prekinut kod zapisa %1 (%2, %3): zapis je mijenjan "
                                           "nakon upisa ili nije upisan ovim programom.")
                                .arg(r.redni)
                                .arg(r.radnja, r.vrijeme);
                break;
            }
            previous = r.hash;
            ++expected;
        }
        for (int i = 0; i < records; ++i)
            m_replay.apply(i, journal::chainRecord(m_chain, i, false));
        const Table* mine = m_replay.table(m_q.tip);
        QString summary;
        if (findings.isEmpty())
            summary = records == 0 ? QStringLiteral("Dnevnik ove godine još nema zapisa.")
                                   : QStringLiteral("Lanac dnevnika je neprekinut: %1 zapisa, zadnji %2 (%3).")
                                         .arg(records)
                                         .arg(journal::chainRecord(m_chain, records - 1, false).vrijeme,
                                             journal::chainRecord(m_chain, records - 1, false).hash.left(16));
        section(QStringLiteral("Dnevnik promjena"), findings, summary);
        if (!mine || !mine->baseline) {
            m_text += QStringLiteral("\nPromjene izvan programa\n  Dnevnik još nema početni zapis ove knjige: nastaje "
                                     "kad se knjiga prvi put otvori ili promijeni.\n");
            return;
        }
        outsideSection(*mine);
    }

    bool inScope(const Values& v) const
    {
        return !books::isTradeBook(m_q.tip) || m_q.brojProd == 0
            || bookcheck::number(v, QStringLiteral("BROJPROD")) == m_q.brojProd;
    }

    // The book's rows by the text of their values in some columns: hashes sorted, each
    // row compared in full where its hash is the one looked for. `skip` leads past rows
    // already taken.
    struct Index {
        std::vector<int> columns; // of the book, -1 for one it does not have
        std::vector<std::pair<size_t, int>> byHash;
        std::vector<int> skip;
    };

    QString joinedValues(int row, const std::vector<int>& columns) const
    {
        QString out;
        for (size_t k = 0; k < columns.size(); ++k) {
            if (k > 0)
                out += u'\t';
            out += columns[k] < 0 ? kNull : journal::valueText(m_raw.value(row, columns[k]));
        }
        return out;
    }

    Index index(const QStringList& keys) const
    {
        Index x;
        for (const QString& k : keys)
            x.columns.push_back(m_columns.value(k, -1));
        const int count = m_raw.rowCount();
        x.byHash.reserve(size_t(count));
        for (int i = 0; i < count; ++i)
            x.byHash.emplace_back(qHash(joinedValues(i, x.columns)), i);
        std::sort(x.byHash.begin(), x.byHash.end());
        x.skip.resize(size_t(count));
        for (int p = 0; p < count; ++p)
            x.skip[size_t(p)] = p + 1;
        return x;
    }

    // The first row not yet used whose values are `text`, -1 for none.
    int take(Index& x, const QString& text, const std::vector<bool>& used) const
    {
        const size_t h = qHash(text);
        const int count = int(x.byHash.size());
        int p = int(std::lower_bound(x.byHash.begin(), x.byHash.end(), std::make_pair(h, 0)) - x.byHash.begin());
        int usedFrom = -1;
        for (; p < count && x.byHash[size_t(p)].first == h;) {
            const int row = x.byHash[size_t(p)].second;
            if (used[size_t(row)]) {
                usedFrom = usedFrom < 0 ? p : usedFrom;
                p = x.skip[size_t(p)];
                continue;
            }
            if (usedFrom >= 0)
                x.skip[size_t(std::exchange(usedFrom, -1))] = p;
            if (joinedValues(row, x.columns) == text)
                return row;
            ++p;
        }
        if (usedFrom >= 0)
            x.skip[size_t(usedFrom)] = p;
        return -1;
    }

    void outsideSection(const Table& expected)
    {
        std::vector<bool> used(size_t(m_raw.rowCount()), false);
        std::map<QString, Index> indexes;
        std::vector<const Row*> missing;
        for (const Row& r : expected.rows) {
            if (r.gone)
                continue;
            const Values v = m_replay.values(r);
            if (!inScope(v))
                continue;
            const QStringList keys = v.keys();
            const QString signature = keys.join(u'\t');
            auto x = indexes.find(signature);
            if (x == indexes.end())
                x = indexes.emplace(signature, index(keys)).first;
            const int row = take(x->second, QStringList(v.values()).join(u'\t'), used);
            if (row < 0)
                missing.push_back(&r);
            else
                used[size_t(row)] = true;
        }
        indexes.clear();
        Findings findings;
        std::multimap<QString, int> extra;
        for (int i = 0; i < m_raw.rowCount(); ++i)
            if (!used[size_t(i)])
                extra.emplace(cell(i, kRBroj), i);
        for (const Row* r : missing) {
            const Values v = m_replay.values(*r);
            const auto it = extra.find(v.value(kRBroj));
            if (it == extra.end()) {
                findings << QStringLiteral("Uklonjena izvan programa: %1 (%2).").arg(entry(v), describe(v));
                continue;
            }
            const Values now = values(it->second);
            QStringList changes;
            for (auto c = v.begin(); c != v.end(); ++c)
                if (now.value(c.key(), kNull) != c.value())
                    changes << QStringLiteral("%1: %2 → %3")
                                   .arg(c.key(), shown(c.value()), shown(now.value(c.key(), kNull)));
            findings << QStringLiteral("Promijenjena izvan programa: %1: %2.")
                            .arg(entry(v), changes.join(QStringLiteral("; ")));
            extra.erase(it);
        }
        for (const auto& [n, i] : extra)
            findings << QStringLiteral("Dodana izvan programa: %1 (%2).").arg(entry(i), describe(values(i)));
        section(QStringLiteral("Promjene izvan programa (od početnog zapisa dnevnika)"), findings);
    }

    static QString describe(const Values& v)
    {
        QStringList parts;
        for (const char* column : { "DATUM", "ISPRAVA", "OPIS", "NAZIV" })
            if (v.contains(QLatin1String(column)) && v.value(QLatin1String(column)) != kNull)
                parts << shown(v.value(QLatin1String(column)));
        return parts.join(QStringLiteral(", "));
    }

    void numberingSection()
    {
        Findings findings;
        std::map<qint64, std::vector<int>> byPoint;
        std::vector<std::optional<qint64>> numbers;
        numbers.reserve(size_t(m_raw.rowCount()));
        for (int i = 0; i < m_raw.rowCount(); ++i) {
            byPoint[books::isTradeBook(m_q.tip) ? number(i, QStringLiteral("BROJPROD"), 0) : 0].push_back(i);
            numbers.push_back(numberOf(i, kRBroj));
        }
        const qint64 unnumbered = std::numeric_limits<qint64>::min();
        for (auto& [point, rows] : byPoint) {
            const QString where
                = books::isTradeBook(m_q.tip) ? QStringLiteral(" (prodajno mjesto %1)").arg(point) : QString();
            std::stable_sort(rows.begin(), rows.end(), [&numbers, unnumbered](int a, int b) {
                return numbers[size_t(a)].value_or(unnumbered) < numbers[size_t(b)].value_or(unnumbered);
            });
            qint64 previous = 0;
            QDate latest;
            qint64 latestNumber = 0;
            for (size_t k = 0; k < rows.size(); ++k) {
                const int row = rows[k];
                const qint64 n = numbers[size_t(row)].value_or(0);
                if (n < 1)
                    findings << QStringLiteral("Redni broj %1 je manji od 1%2.").arg(n).arg(where);
                else if (k > 0 && n == previous)
                    findings << QStringLiteral("Redni broj %1 se ponavlja%2.").arg(n).arg(where);
                else if (n > previous + 1 && previous >= 0)
                    findings << (n == previous + 2
                            ? QStringLiteral("Nedostaje redni broj %1%2.").arg(previous + 1).arg(where)
                            : QStringLiteral("Nedostaju redni brojevi %1 do %2%3.")
                                  .arg(previous + 1)
                                  .arg(n - 1)
                                  .arg(where));
                previous = std::max(previous, n);
                const QDate d = QDate::fromString(cell(row, QStringLiteral("DATUM")), Qt::ISODate);
                if (books::isAssetList(m_q.tip) || !d.isValid())
                    continue;
                if (latest.isValid() && d < latest)
                    findings << QStringLiteral("Stavka %1 (%2) je datirana prije stavke %3 (%4): redni brojevi ne "
                                               "prate datume dokumenata%5.")
                                    .arg(n)
                                    .arg(d.toString(QStringLiteral("dd.MM.yyyy")))
                                    .arg(latestNumber)
                                    .arg(latest.toString(QStringLiteral("dd.MM.yyyy")), where);
                else {
                    latest = d;
                    latestNumber = n;
                }
            }
        }
        section(QStringLiteral("Redni brojevi"), findings);
    }

    void linksSection()
    {
        Findings findings;
        db::ResultSet entries;
        QHash<qint64, int> numbers;
        if (!m_db.open(QStringLiteral("SELECT RBroj FROM dbo.KnjPrihRashFBiH WHERE GodinaKnj=")
                    + QString::number(m_q.year) + QStringLiteral(" AND BrojPoduzeca=") + QString::number(m_q.company),
                entries)) {
            section(QStringLiteral("Veze s knjigom prihoda i rashoda"),
                { QStringLiteral("Knjigu prihoda i rashoda nije moguće pročitati: ") + m_db.errorDescription() });
            return;
        }
        for (int r = 0; r < entries.rowCount(); ++r)
            ++numbers[entries.integer(r, 0)];
        for (int i = 0; i < m_raw.rowCount(); ++i) {
            const qint64 link = number(i, kLink, 0);
            if (link != 0 && !numbers.contains(link))
                findings << QStringLiteral("%1 je vezana za stavku %2 knjige prihoda i rashoda, koja ne postoji.")
                                .arg(entry(i))
                                .arg(link);
        }
        // Where the journal knows which entry a link was given for, the link must still
        // point at it.
        const Table* links = m_replay.table(Knjiga::EvidPotObvFBiH);
        const Table* book = m_replay.table(Knjiga::PrihRashFBiH);
        if (links && book && links->baseline && book->baseline)
            for (const Row& r : links->rows) {
                if (r.gone || r.target == 0 || r.target == -2)
                    continue;
                const qint64 link = m_replay.number(r, kLink, 0);
                const Row* now = nullptr;
                const Row* then = nullptr;
                for (const Row& e : book->rows) {
                    if (!e.gone && m_replay.number(e, kRBroj) == link && (!now || e.id == r.target))
                        now = &e;
                    if (e.id == r.target)
                        then = &e;
                }
                const auto at = [this](const Row& e) {
                    const Values v = m_replay.values(e);
                    return QStringLiteral("stavku %1 (%2)").arg(v.value(kRBroj), describe(v));
                };
                if ((r.target == -1 && link != 0) || (r.target > 0 && (!now || now->id != r.target)))
                    findings << QStringLiteral("%1: veza je pomjerena na drugi dokument. Data je za %2, a sada "
                                               "pokazuje na %3.")
                                    .arg(entry(m_replay.values(r)), then ? at(*then) : QStringLiteral("nijednu stavku"),
                                        now ? at(*now) : QStringLiteral("stavku %1").arg(link));
            }
        section(QStringLiteral("Veze s knjigom prihoda i rashoda"), findings);
    }

    void datesSection()
    {
        if (books::isAssetList(m_q.tip))
            return;
        Findings findings;
        const QDate first(m_q.year, 1, 1);
        for (int i = 0; i < m_raw.rowCount(); ++i) {
            const QDate d = QDate::fromString(cell(i, QStringLiteral("DATUM")), Qt::ISODate);
            if (d.isValid() && d < first)
                findings << QStringLiteral("%1 je datirana %2, prije godine knjige.")
                                .arg(entry(i), d.toString(QStringLiteral("dd.MM.yyyy")));
        }
        section(QStringLiteral("Datumi"), findings);
    }

    void openingSection()
    {
        Findings findings;
        db::ResultSet closing;
        const QString sql = m_book->selectSql + QStringLiteral(" WHERE K.GodinaKnj=") + QString::number(m_q.year - 1)
            + QStringLiteral(" AND K.BrojPoduzeca=") + QString::number(m_q.company)
            + QStringLiteral(" ORDER BY K.RBroj");
        if (!m_db.open(sql, closing)) {
            section(QStringLiteral("Početna stanja"),
                { QStringLiteral("Stanja prethodne godine nije moguće pročitati: ") + m_db.errorDescription() });
            return;
        }
        const QString carried = QStringLiteral("Poč.stanje iz ") + QString::number(m_q.year - 1);
        std::vector<bool> used(size_t(closing.rowCount()), false);
        const auto col = [&closing](const char* name) { return closing.indexOf(QLatin1String(name)); };
        for (int i = 0; i < m_raw.rowCount(); ++i) {
            if (cell(i, QStringLiteral("ISPRAVA")) != carried)
                continue;
            const Values v = values(i);
            const Money opening = Money::parse(v.value(QStringLiteral("KNJIGVRIJEDNOST"))).value_or(Money());
            int match = -1;
            for (int r = 0; r < closing.rowCount() && match < 0; ++r)
                if (!used[size_t(r)] && closing.text(r, col("Naziv")) == v.value(QStringLiteral("NAZIV"))
                    && journal::valueText(closing.value(r, col("NabVrijednost")))
                        == v.value(QStringLiteral("NABVRIJEDNOST"))
                    && journal::valueText(closing.value(r, col("VijekTr"))) == v.value(QStringLiteral("VIJEKTR")))
                    match = r;
            if (match < 0)
                continue;
            used[size_t(match)] = true;
            const Money closed = closing.money(match, col("NovaKnjigVrij"));
            if (closed != opening)
                findings << QStringLiteral("%1 (%2): početno stanje %3 razlikuje se od stanja na kraju %4. godine %5.")
                                .arg(entry(v), shown(v.value(QStringLiteral("NAZIV"))), opening.toPlainString())
                                .arg(m_q.year - 1)
                                .arg(closed.toPlainString());
        }
        section(QStringLiteral("Početna stanja"), findings);
    }

    void generationSection()
    {
        QStringList found;
        QHash<QString, QList<QString>> documents;
        for (int i = 0; i < m_raw.rowCount(); ++i) {
            const QString isprava = cell(i, QStringLiteral("ISPRAVA"), kNull);
            if (isprava == kNull || isprava.isEmpty())
                continue;
            const QString key = QStringList { isprava, cell(i, QStringLiteral("DATUM")),
                cell(i, QStringLiteral("VRSTA")), cell(i, QStringLiteral("IZNOS")) }
                                    .join(u'\t');
            documents[key] << cell(i, kRBroj);
        }
        for (auto it = documents.begin(); it != documents.end(); ++it)
            if (it->size() > 1)
                found << QStringLiteral("Dokument %1 je proknjižen %2 puta (stavke %3).")
                             .arg(shown(it.key().section(u'\t', 0, 0)))
                             .arg(it->size())
                             .arg(it->join(QStringLiteral(", ")));
        found.sort();
        Findings findings;
        for (const QString& finding : std::as_const(found))
            findings << finding;
        section(QStringLiteral("Generiranje"), findings);
    }

    void sumsSection()
    {
        Findings findings;
        for (int c = 0; c < m_raw.fieldCount(); ++c) {
            if (m_raw.field(c).type != db::FieldType::Currency)
                continue;
            qint64 sum = 0;
            bool over = false;
            for (int r = 0; r < m_raw.rowCount() && !over; ++r) {
                const Money m = m_raw.money(r, c);
                const qint64 u = m.units();
                over = m.isOutOfRange() || (u > 0 && sum > std::numeric_limits<qint64>::max() - u)
                    || (u < 0 && sum < std::numeric_limits<qint64>::min() + 1 - u);
                sum += over ? 0 : u;
            }
            if (over)
                findings << QStringLiteral("Zbir stupca %1 prelazi opseg novčanog iznosa.").arg(m_raw.field(c).name);
        }
        section(QStringLiteral("Zbirovi"), findings);
    }

    db::Database& m_db;
    Request m_q;
    const books::BookKind* m_book;
    db::ResultSet m_raw;
    QHash<QString, int> m_columns; // of m_raw by upper-case name
    db::ResultSet m_chain; // the journal's records, which the replay's rows point into
    Replay m_replay { m_chain };
    QString m_text;
    QStringList m_all;
    qsizetype m_count = 0;
};

} // namespace

Report check(db::Database& db, const Request& request)
{
    return Checker(db, request).run();
}

} // namespace knjige::journal::bookcheck
