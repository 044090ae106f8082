#include "journal/CheckReplay.h"

#include "books/BookKind.h"

#include <QHash>
#include <optional>

namespace knjige::journal::bookcheck
{
namespace
{

// Where each line of a text is, blank ones left out.
template <typename Each> void eachLine(QByteArrayView text, Each each)
{
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0)
            end = text.size();
        if (end > start)
            each(start, end - start);
        start = end + 1;
    }
}

// One column of a row's line, read as parseRow would (the last of a name counts),
// without parsing the rest.
std::optional<QByteArrayView> field(QByteArrayView line, QByteArrayView key)
{
    std::optional<QByteArrayView> found;
    qsizetype start = 0;
    while (start < line.size()) {
        qsizetype end = line.indexOf('\t', start);
        if (end < 0)
            end = line.size();
        const QByteArrayView part = line.sliced(start, end - start);
        if (part.size() > key.size() && part.startsWith(key) && part[key.size()] == '=')
            found = part.sliced(key.size() + 1);
        start = end + 1;
    }
    return found;
}

bool isReceivables(const QString& name)
{
    return name == journal::tableOf(Knjiga::EvidPotObvFBiH).toUpper();
}

} // namespace

qint64 number(const Values& v, const QString& column, qint64 otherwise)
{
    bool ok = false;
    const qint64 n = v.value(column).toLongLong(&ok);
    return ok ? n : otherwise;
}

void Replay::apply(int record, const Record& r)
{
    const QString name = journal::tableOf(r.tip).toUpper();
    if (name.isEmpty())
        return;
    Table& t = m_tables[name];
    const auto parsed = [&](const char* column) { return journal::parseRow(QString::fromUtf8(text(record, column))); };
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
            addLines(t, name, record);
    } else if (r.radnja == RecordKind::Unos || r.radnja == RecordKind::Generiranje
        || r.radnja == RecordKind::PocetnaStanja) {
        addLines(t, name, record);
    } else if (r.radnja == RecordKind::Izmjena) {
        Row* row = find(t, parsed("Prije"));
        const Values after = parsed("Poslije");
        if (!row) {
            m_edited.push_back(after);
            add(t, name, { .edited = int(m_edited.size()) - 1 });
        } else {
            Values v = values(*row);
            for (auto it = after.begin(); it != after.end(); ++it)
                v[it.key()] = it.value();
            m_edited.push_back(std::move(v));
            row->edited = int(m_edited.size()) - 1;
            if (isReceivables(name))
                aim(*row);
        }
    } else if (r.radnja == RecordKind::Brisanje || r.radnja == RecordKind::BrisanjePrikazanih) {
        const QByteArrayView before = text(record, "Prije");
        eachLine(before, [&](qsizetype at, qsizetype size) {
            if (Row* row = find(t, journal::parseRow(QString::fromUtf8(before.sliced(at, size)))))
                row->gone = true;
        });
    } else if (r.radnja == RecordKind::Umetanje && r.rBroj) {
        for (Row& row : t.rows)
            if (!row.gone && number(row, kRBroj) >= *r.rBroj)
                setNumber(row, kRBroj, number(row, kRBroj) + 1);
        addLines(t, name, record);
    } else if (r.radnja == RecordKind::Renumeracija) {
        const bool perPoint = books::isTradeBook(r.tip);
        remap(t, kRBroj, QString::fromUtf8(text(record, "Poslije")),
            [&](const Row& row) { return !perPoint || number(row, QStringLiteral("BROJPROD")) == r.brojProd; });
    } else if (r.radnja == RecordKind::Veze) {
        remap(t, kLink, QString::fromUtf8(text(record, "Poslije")), [](const Row&) { return true; });
    }
}

const Table* Replay::table(int tip) const
{
    const auto it = m_tables.find(journal::tableOf(tip).toUpper());
    return it == m_tables.end() ? nullptr : &it->second;
}

Values Replay::values(const Row& row) const
{
    if (row.edited >= 0)
        return m_edited[size_t(row.edited)];
    Values v = journal::parseRow(QString::fromUtf8(line(row)));
    if (row.renumbered)
        v[kRBroj] = QString::number(row.rBroj);
    if (row.relinked)
        v[kLink] = QString::number(row.link);
    return v;
}

QString Replay::value(const Row& row, const QString& column, const QString& otherwise) const
{
    if (row.edited >= 0)
        return m_edited[size_t(row.edited)].value(column, otherwise);
    if (row.renumbered && column == kRBroj)
        return QString::number(row.rBroj);
    if (row.relinked && column == kLink)
        return QString::number(row.link);
    const std::optional<QByteArrayView> f = field(line(row), column.toUtf8());
    return f ? QString::fromUtf8(*f) : otherwise;
}

qint64 Replay::number(const Row& row, const QString& column, qint64 otherwise) const
{
    bool ok = false;
    const qint64 n = value(row, column).toLongLong(&ok);
    return ok ? n : otherwise;
}

QByteArrayView Replay::text(int record, const char* column) const
{
    return m_chain.utf8(record, m_chain.indexOf(QLatin1String(column)));
}

QByteArrayView Replay::line(const Row& row) const
{
    return text(row.record, "Poslije").sliced(row.offset, row.size);
}

bool Replay::matches(const Values& pattern, const Row& row) const
{
    // The number first: it tells most rows apart at once.
    const auto it = pattern.find(kRBroj);
    if (it != pattern.end() && value(row, kRBroj, kNull) != *it)
        return false;
    for (auto c = pattern.begin(); c != pattern.end(); ++c)
        if (c != it && value(row, c.key(), kNull) != c.value())
            return false;
    return true;
}

void Replay::setNumber(Row& row, const QString& column, qint64 n)
{
    if (row.edited < 0 && column == kRBroj) {
        row.renumbered = true;
        row.rBroj = n;
    } else if (row.edited < 0 && column == kLink) {
        row.relinked = true;
        row.link = n;
    } else {
        if (row.edited < 0) {
            m_edited.push_back(values(row));
            row.edited = int(m_edited.size()) - 1;
        }
        m_edited[size_t(row.edited)][column] = QString::number(n);
    }
}

void Replay::addLines(Table& t, const QString& name, int record)
{
    eachLine(text(record, "Poslije"), [&](qsizetype at, qsizetype size) {
        add(t, name, { .record = record, .offset = qint32(at), .size = qint32(size) });
    });
}

void Replay::add(Table& t, const QString& name, Row row)
{
    row.id = ++m_nextId;
    t.rows.push_back(row);
    if (isReceivables(name))
        aim(t.rows.back());
}

// A link given by a person points at the entry that holds its number now.
void Replay::aim(Row& row)
{
    const qint64 link = number(row, kLink, 0);
    row.target = link == 0 ? -1 : -2;
    if (link == 0)
        return;
    const auto it = m_tables.find(journal::tableOf(Knjiga::PrihRashFBiH).toUpper());
    if (it != m_tables.end())
        for (const Row& entry : it->second.rows)
            if (!entry.gone && number(entry, kRBroj) == link) {
                row.target = entry.id;
                return;
            }
}

Row* Replay::find(Table& t, const Values& pattern) const
{
    for (Row& row : t.rows)
        if (!row.gone && matches(pattern, row))
            return &row;
    return nullptr;
}

// "old>new" and "old#mark>new" take a row by its number; "=old>new" every row of a
// value. All at once, as the statements change them.
template <typename InScope> void Replay::remap(Table& t, const QString& column, const QString& text, InScope inScope)
{
    QHash<QString, qint64> byKey;
    QHash<qint64, qint64> byValue;
    for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts)) {
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
        const qint64 value = number(row, column);
        if (byValue.contains(value)) {
            changes.emplace_back(&row, byValue.value(value));
            continue;
        }
        const QString key = this->value(row, kRBroj);
        if (byKey.isEmpty())
            continue;
        const QString marked = key + u'#'
            + journal::rowMark(
                this->value(row, QStringLiteral("DATUM"), kNull), this->value(row, QStringLiteral("OPIS"), kNull));
        if (byKey.contains(marked))
            changes.emplace_back(&row, byKey.value(marked));
        else if (byKey.contains(key))
            changes.emplace_back(&row, byKey.value(key));
    }
    for (const auto& [row, to] : changes)
        setNumber(*row, column, to);
}

} // namespace knjige::journal::bookcheck
