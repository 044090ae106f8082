#include "journal/BookCheck.h"

#include "books/BookKind.h"
#include "journal/Journal.h"

#include <QHash>
#include <algorithm>
#include <limits>
#include <map>
#include <vector>

namespace knjige::journal::bookcheck
{
namespace
{

using Values = QMap<QString, QString>;
const QString kRBroj = QStringLiteral("RBROJ");
const QString kLink = QStringLiteral("RBROJKPR");
const QString kNull = QStringLiteral("\\N");
// A long list is cut: the first ones tell the story, the count the size of it.
constexpr int kShown = 200;

// A row as the journal says it should be. Receivables remember the entry of the
// income and expense book their link was given for (`target`: its id, -1 for no
// link, -2 for a link to nothing, 0 when the journal cannot tell).
struct Row {
    Values v;
    int id = 0;
    int target = 0;
    bool gone = false;
};

struct Table {
    std::vector<Row> rows;
    bool baseline = false;
    bool takingBaseline = false; // the baseline's further records belong to it
};

qint64 number(const Values& v, const QString& column, qint64 otherwise = std::numeric_limits<qint64>::min())
{
    bool ok = false;
    const qint64 n = v.value(column).toLongLong(&ok);
    return ok ? n : otherwise;
}

QString shown(const QString& value)
{
    if (value == kNull)
        return QStringLiteral("(prazno)");
    const QDate d = QDate::fromString(value, Qt::ISODate);
    return d.isValid() ? d.toString(QStringLiteral("dd.MM.yyyy")) : u'"' + value + u'"';
}

QStringList lines(const QString& text)
{
    return text.split(u'\n', Qt::SkipEmptyParts);
}

bool matches(const Values& pattern, const Values& row)
{
    for (auto it = pattern.begin(); it != pattern.end(); ++it)
        if (row.value(it.key(), kNull) != it.value())
            return false;
    return true;
}

QString markOf(const Values& v)
{
    return journal::rowMark(v.value(QStringLiteral("DATUM"), kNull), v.value(QStringLiteral("OPIS"), kNull));
}

// Plays the journal forward: what each table should hold now.
class Replay
{
public:
    void apply(const journal::Record& r)
    {
        const QString name = journal::tableOf(r.tip).toUpper();
        if (name.isEmpty())
            return;
        Table& t = m_tables[name];
        using namespace journal;
        if (r.radnja == RecordKind::Osnova) {
            // A book's table gets one baseline: a later one (of a kind sharing the
            // table) restates rows the journal already follows.
            const bool first = !r.rBroj;
            if (first) {
                t.takingBaseline = !t.baseline;
                t.baseline = true;
            }
            if (t.takingBaseline)
                for (const QString& line : lines(r.poslije))
                    add(t, name, journal::parseRow(line));
        } else if (r.radnja == RecordKind::Unos || r.radnja == RecordKind::Generiranje
            || r.radnja == RecordKind::PocetnaStanja) {
            for (const QString& line : lines(r.poslije))
                add(t, name, journal::parseRow(line));
        } else if (r.radnja == RecordKind::Izmjena) {
            Row* row = find(t, journal::parseRow(r.prije));
            const Values after = journal::parseRow(r.poslije);
            if (!row) {
                add(t, name, after);
            } else {
                for (auto it = after.begin(); it != after.end(); ++it)
                    row->v[it.key()] = it.value();
                if (isReceivables(name))
                    aim(*row);
            }
        } else if (r.radnja == RecordKind::Brisanje || r.radnja == RecordKind::BrisanjePrikazanih) {
            for (const QString& line : lines(r.prije))
                if (Row* row = find(t, journal::parseRow(line)))
                    row->gone = true;
        } else if (r.radnja == RecordKind::Umetanje && r.rBroj) {
            for (Row& row : t.rows)
                if (!row.gone && number(row.v, kRBroj) >= *r.rBroj)
                    row.v[kRBroj] = QString::number(number(row.v, kRBroj) + 1);
            for (const QString& line : lines(r.poslije))
                add(t, name, journal::parseRow(line));
        } else if (r.radnja == RecordKind::Renumeracija) {
            const bool perPoint = books::isTradeBook(r.tip);
            remap(t, kRBroj, r.poslije,
                [&](const Row& row) { return !perPoint || number(row.v, QStringLiteral("BROJPROD")) == r.brojProd; });
        } else if (r.radnja == RecordKind::Veze) {
            remap(t, kLink, r.poslije, [](const Row&) { return true; });
        }
    }

    const Table* table(int tip) const
    {
        const auto it = m_tables.find(journal::tableOf(tip).toUpper());
        return it == m_tables.end() ? nullptr : &it->second;
    }

private:
    static bool isReceivables(const QString& name)
    {
        return name == journal::tableOf(Knjiga::EvidPotObvFBiH).toUpper();
    }

    void add(Table& t, const QString& name, const Values& v)
    {
        t.rows.push_back({ v, ++m_nextId, 0, false });
        if (isReceivables(name))
            aim(t.rows.back());
    }

    // A link given by a person points at the entry that holds its number now.
    void aim(Row& row)
    {
        const qint64 link = number(row.v, kLink, 0);
        row.target = link == 0 ? -1 : -2;
        if (link == 0)
            return;
        const auto it = m_tables.find(journal::tableOf(Knjiga::PrihRashFBiH).toUpper());
        if (it != m_tables.end())
            for (const Row& entry : it->second.rows)
                if (!entry.gone && number(entry.v, kRBroj) == link) {
                    row.target = entry.id;
                    return;
                }
    }

    static Row* find(Table& t, const Values& pattern)
    {
        for (Row& row : t.rows)
            if (!row.gone && matches(pattern, row.v))
                return &row;
        return nullptr;
    }

    // "old>new" and "old#mark>new" take a row by its number; "=old>new" every row of a
    // value. All at once, as the statements change them.
    template <typename InScope> static void remap(Table& t, const QString& column, const QString& text, InScope inScope)
    {
        QHash<QString, qint64> byKey;
        QHash<qint64, qint64> byValue;
        for (const QString& line : lines(text)) {
            const qsizetype gt = line.indexOf(u'>');
            const qint64 to = line.mid(gt + 1).toLongLong();
            if (line.startsWith(u'='))
                byValue.insert(line.mid(1, gt - 1).toLongLong(), to);
            else
                byKey.insert(line.left(gt), to);
        }
        std::vector<std::pair<Row*, qint64>> changes;
        for (Row& row : t.rows) {
            if (row.gone || !inScope(row))
                continue;
            const qint64 value = number(row.v, column);
            if (byValue.contains(value)) {
                changes.emplace_back(&row, byValue.value(value));
                continue;
            }
            const QString key = row.v.value(kRBroj);
            const QString marked = key + u'#' + markOf(row.v);
            if (byKey.contains(marked))
                changes.emplace_back(&row, byKey.value(marked));
            else if (byKey.contains(key))
                changes.emplace_back(&row, byKey.value(key));
        }
        for (const auto& [row, to] : changes)
            row->v[column] = QString::number(to);
    }

    std::map<QString, Table> m_tables;
    int m_nextId = 0;
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
        m_text += QStringLiteral("\nStavki u knjizi: %1\n").arg(m_rows.size());
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
        m_text += m_all.isEmpty() ? QStringLiteral("\nKnjiga je ispravna: provjera nije našla ništa.\n")
                                  : QStringLiteral("\nUkupno nalaza: %1\n").arg(m_all.size());
        report.status = m_all.isEmpty() ? Report::Status::Clean : Report::Status::Findings;
        report.findings = m_all;
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
        for (int r = 0; r < m_raw.rowCount(); ++r)
            m_rows.push_back(journal::parseRow(journal::rowText(m_raw, r)));
        return true;
    }

    void section(const QString& title, const QStringList& findings, const QString& clean = QStringLiteral("U redu."))
    {
        m_text += u'\n' + title + u'\n';
        if (findings.isEmpty())
            m_text += QStringLiteral("  ") + clean + u'\n';
        for (int i = 0; i < findings.size() && i < kShown; ++i)
            m_text += QStringLiteral("  - ") + findings[i] + u'\n';
        if (findings.size() > kShown)
            m_text += QStringLiteral("  ... i još %1.\n").arg(findings.size() - kShown);
        m_all += findings;
    }

    static QString entry(const Values& v)
    {
        return QStringLiteral("stavka ") + v.value(kRBroj, QStringLiteral("bez broja"));
    }

    void journalSection()
    {
        QStringList findings;
        std::vector<journal::Record> chain;
        if (!journal::available(m_db)) {
            m_text += QStringLiteral("\nDnevnik promjena\n  Knjiga nema dnevnik promjena: u bazi nema tablice "
                                     "dbo.KnjDnevnik (naredba za nju je u uputama, README).\n");
            return;
        }
        if (!journal::readChain(m_db, m_q.company, m_q.year, chain)) {
            section(QStringLiteral("Dnevnik promjena"),
                { QStringLiteral("Dnevnik nije moguće pročitati: ") + m_db.errorDescription() });
            return;
        }
        QString previous;
        qint64 expected = 1;
        for (const journal::Record& r : chain) {
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
        Replay replay;
        for (const journal::Record& r : chain)
            replay.apply(r);
        const Table* mine = replay.table(m_q.tip);
        QString summary;
        if (findings.isEmpty())
            summary = chain.empty() ? QStringLiteral("Dnevnik ove godine još nema zapisa.")
                                    : QStringLiteral("Lanac dnevnika je neprekinut: %1 zapisa, zadnji %2 (%3).")
                                          .arg(chain.size())
                                          .arg(chain.back().vrijeme, chain.back().hash.left(16));
        section(QStringLiteral("Dnevnik promjena"), findings, summary);
        m_replay = replay;
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
            || number(v, QStringLiteral("BROJPROD")) == m_q.brojProd;
    }

    void outsideSection(const Table& expected)
    {
        std::vector<const Row*> want;
        for (const Row& r : expected.rows)
            if (!r.gone && inScope(r.v))
                want.push_back(&r);
        std::vector<bool> used(m_rows.size(), false);
        QHash<QString, QHash<QString, std::vector<int>>> index;
        std::vector<const Row*> missing;
        for (const Row* r : want) {
            const QStringList keys = r->v.keys();
            const QString signature = keys.join(u'\t');
            if (!index.contains(signature)) {
                QHash<QString, std::vector<int>>& byText = index[signature];
                for (int i = int(m_rows.size()) - 1; i >= 0; --i) {
                    QStringList parts;
                    for (const QString& k : keys)
                        parts << m_rows[size_t(i)].value(k, kNull);
                    byText[parts.join(u'\t')].push_back(i);
                }
            }
            std::vector<int>& candidates = index[signature][QStringList(r->v.values()).join(u'\t')];
            while (!candidates.empty() && used[size_t(candidates.back())])
                candidates.pop_back();
            if (candidates.empty()) {
                missing.push_back(r);
                continue;
            }
            used[size_t(candidates.back())] = true;
            candidates.pop_back();
        }
        QStringList findings;
        std::multimap<QString, int> extra;
        for (size_t i = 0; i < m_rows.size(); ++i)
            if (!used[i])
                extra.emplace(m_rows[i].value(kRBroj), int(i));
        for (const Row* r : missing) {
            const auto it = extra.find(r->v.value(kRBroj));
            if (it == extra.end()) {
                findings << QStringLiteral("Uklonjena izvan programa: %1 (%2).").arg(entry(r->v), describe(r->v));
                continue;
            }
            const Values& now = m_rows[size_t(it->second)];
            QStringList changes;
            for (auto c = r->v.begin(); c != r->v.end(); ++c)
                if (now.value(c.key(), kNull) != c.value())
                    changes << QStringLiteral("%1: %2 → %3")
                                   .arg(c.key(), shown(c.value()), shown(now.value(c.key(), kNull)));
            findings << QStringLiteral("Promijenjena izvan programa: %1: %2.")
                            .arg(entry(r->v), changes.join(QStringLiteral("; ")));
            extra.erase(it);
        }
        for (const auto& [n, i] : extra)
            findings << QStringLiteral("Dodana izvan programa: %1 (%2).")
                            .arg(entry(m_rows[size_t(i)]), describe(m_rows[size_t(i)]));
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
        QStringList findings;
        std::map<qint64, std::vector<size_t>> byPoint;
        for (size_t i = 0; i < m_rows.size(); ++i)
            byPoint[books::isTradeBook(m_q.tip) ? number(m_rows[i], QStringLiteral("BROJPROD"), 0) : 0].push_back(i);
        for (auto& [point, rows] : byPoint) {
            const QString where
                = books::isTradeBook(m_q.tip) ? QStringLiteral(" (prodajno mjesto %1)").arg(point) : QString();
            std::stable_sort(rows.begin(), rows.end(),
                [this](size_t a, size_t b) { return number(m_rows[a], kRBroj) < number(m_rows[b], kRBroj); });
            qint64 previous = 0;
            QDate latest;
            qint64 latestNumber = 0;
            for (size_t k = 0; k < rows.size(); ++k) {
                const Values& v = m_rows[rows[k]];
                const qint64 n = number(v, kRBroj, 0);
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
                const QDate d = QDate::fromString(v.value(QStringLiteral("DATUM")), Qt::ISODate);
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
        QStringList findings;
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
        for (const Values& v : m_rows) {
            const qint64 link = number(v, kLink, 0);
            if (link != 0 && !numbers.contains(link))
                findings << QStringLiteral("%1 je vezana za stavku %2 knjige prihoda i rashoda, koja ne postoji.")
                                .arg(entry(v))
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
                const qint64 link = number(r.v, kLink, 0);
                const Row* now = nullptr;
                const Row* then = nullptr;
                for (const Row& e : book->rows) {
                    if (!e.gone && number(e.v, kRBroj) == link && (!now || e.id == r.target))
                        now = &e;
                    if (e.id == r.target)
                        then = &e;
                }
                if ((r.target == -1 && link != 0) || (r.target > 0 && (!now || now->id != r.target)))
                    findings
                        << QStringLiteral("%1: veza je pomjerena na drugi dokument. Data je za %2, a sada "
                                          "pokazuje na %3.")
                               .arg(entry(r.v),
                                   then ? QStringLiteral("stavku %1 (%2)").arg(then->v.value(kRBroj), describe(then->v))
                                        : QStringLiteral("nijednu stavku"),
                                   now ? QStringLiteral("stavku %1 (%2)").arg(now->v.value(kRBroj), describe(now->v))
                                       : QStringLiteral("stavku %1").arg(link));
            }
        section(QStringLiteral("Veze s knjigom prihoda i rashoda"), findings);
    }

    void datesSection()
    {
        if (books::isAssetList(m_q.tip))
            return;
        QStringList findings;
        const QDate first(m_q.year, 1, 1);
        for (const Values& v : m_rows) {
            const QDate d = QDate::fromString(v.value(QStringLiteral("DATUM")), Qt::ISODate);
            if (d.isValid() && d < first)
                findings << QStringLiteral("%1 je datirana %2, prije godine knjige.")
                                .arg(entry(v), d.toString(QStringLiteral("dd.MM.yyyy")));
        }
        section(QStringLiteral("Datumi"), findings);
    }

    void openingSection()
    {
        QStringList findings;
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
        for (const Values& v : m_rows) {
            if (v.value(QStringLiteral("ISPRAVA")) != carried)
                continue;
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
        QStringList findings;
        QHash<QString, QList<QString>> documents;
        for (const Values& v : m_rows) {
            const QString isprava = v.value(QStringLiteral("ISPRAVA"), kNull);
            if (isprava == kNull || isprava.isEmpty())
                continue;
            const QString key = QStringList { isprava, v.value(QStringLiteral("DATUM")),
                v.value(QStringLiteral("VRSTA")), v.value(QStringLiteral("IZNOS")) }
                                    .join(u'\t');
            documents[key] << v.value(kRBroj);
        }
        for (auto it = documents.begin(); it != documents.end(); ++it)
            if (it->size() > 1)
                findings << QStringLiteral("Dokument %1 je proknjižen %2 puta (stavke %3).")
                                .arg(shown(it.key().section(u'\t', 0, 0)))
                                .arg(it->size())
                                .arg(it->join(QStringLiteral(", ")));
        findings.sort();
        section(QStringLiteral("Generiranje"), findings);
    }

    void sumsSection()
    {
        QStringList findings;
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
    std::vector<Values> m_rows;
    Replay m_replay;
    QString m_text;
    QStringList m_all;
};

} // namespace

Report check(db::Database& db, const Request& request)
{
    return Checker(db, request).run();
}

} // namespace knjige::journal::bookcheck
