#include "journal/Journal.h"

#include "books/BookKind.h"
#include "session/Session.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <optional>
#include <unordered_map>

namespace knjige::journal
{
namespace
{

const QString kNull = QStringLiteral("\\N");
const QString kTable = QStringLiteral("dbo.KnjDnevnik");

QHash<QString, bool>& availability()
{
    static QHash<QString, bool> known;
    return known;
}

QSet<QString>& baselines()
{
    static QSet<QString> known;
    return known;
}

// Ten-thousandths in the shortest exact decimal form: 12, 12.5, -0.0001.
QString unitsText(qint64 units)
{
    const bool negative = units < 0;
    const quint64 magnitude = negative ? quint64(0) - quint64(units) : quint64(units);
    QString text = QString::number(magnitude / 10000);
    if (const quint64 fraction = magnitude % 10000) {
        QString digits = QString::number(fraction).rightJustified(4, u'0');
        while (digits.endsWith(u'0'))
            digits.chop(1);
        text += u'.' + digits;
    }
    return negative ? u'-' + text : text;
}

QString escaped(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\\':
            out += QStringLiteral("\\\\");
            break;
        case '\t':
            out += QStringLiteral("\\t");
            break;
        case '\n':
            out += QStringLiteral("\\n");
            break;
        case '\r':
            out += QStringLiteral("\\r");
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString joined(std::vector<std::pair<QString, QString>> pairs)
{
    std::sort(pairs.begin(), pairs.end());
    QString out;
    for (const auto& [name, value] : pairs) {
        if (!out.isEmpty())
            out += u'\t';
        out += name + u'=' + value;
    }
    return out;
}

QString scopeKey(db::Database& db, qint16 company, qint16 year, const QString& table)
{
    return db.connectionString() + u'|' + QString::number(company) + u'|' + QString::number(year) + u'|' + table;
}

QString serverTime(db::Database& db, QString* error)
{
    // The embedded database runs in this process: its clock is this machine's.
    if (db.dialect() == db::SqlDialect::Sqlite)
        return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    db::ResultSet now;
    if (!db.open(QStringLiteral("SELECT CONVERT(varchar(23), GETDATE(), 121) AS Vrijeme"), now) || now.isEmpty()) {
        *error = db.errorDescription();
        return {};
    }
    return now.text(0, 0);
}

QString kindsList(int tip)
{
    QStringList out;
    for (int k : kindsOfTable(tip))
        out << QString::number(k);
    return out.join(u',');
}

bool hasRecords(db::Database& db, const Scope& s, bool* has, QString* error)
{
    const QString key = scopeKey(db, s.company, s.year, tableOf(s.tip));
    if (baselines().contains(key)) {
        *has = true;
        return true;
    }
    db::ResultSet rs;
    const QString sql = QStringLiteral("SELECT COUNT(*) AS Broj FROM dbo.KnjDnevnik WHERE BrojPoduzeca=")
        + QString::number(s.company) + QStringLiteral(" AND GodinaKnj=") + QString::number(s.year)
        + QStringLiteral(" AND TipKnjige IN (") + kindsList(s.tip) + u')';
    if (!db.open(sql, rs)) {
        *error = db.errorDescription();
        return false;
    }
    *has = !rs.isEmpty() && rs.integer(0, 0) > 0;
    // Only what is already committed is remembered: a baseline written now may still be
    // rolled back with the change it came with.
    if (*has && !db.inTransaction())
        baselines().insert(key);
    return true;
}

bool writeBaseline(db::Database& db, const Scope& s, QString* error)
{
    bool has = false;
    if (!hasRecords(db, s, &has, error))
        return false;
    if (has)
        return true;
    // A book of a decade is fingerprinted in records of kBaselineRows rows each, read
    // in parts and held compressed until written: the whole book's text at once would
    // take several times the memory its window takes. The first record is the start of
    // the baseline; those after it carry their place (2, 3, ...) as their number. They
    // are written after the read, since a server connection takes no statement while a
    // result is still being read.
    QList<QByteArray> packed;
    QString chunk;
    int inChunk = 0;
    const bool read
        = db.openInParts(QStringLiteral("SELECT * FROM ") + tableOf(s.tip) + QStringLiteral(" WHERE GodinaKnj=")
                + QString::number(s.year) + QStringLiteral(" AND BrojPoduzeca=") + QString::number(s.company),
            [&](const db::ResultSet& part) {
                for (int r = 0; r < part.rowCount(); ++r) {
                    chunk += rowText(part, r) + u'\n';
                    if (++inChunk == kBaselineRows) {
                        packed << qCompress(chunk.toUtf8());
                        chunk.clear();
                        inChunk = 0;
                    }
                }
                return true;
            });
    if (!read) {
        *error = db.errorDescription();
        return false;
    }
    if (inChunk > 0 || packed.isEmpty())
        packed << qCompress(chunk.toUtf8());
    chunk.clear();
    // All records or none: a baseline cut short would later read as rows deleted
    // outside the program.
    std::optional<db::TransactionGuard> tx;
    if (!db.inTransaction()) {
        tx.emplace(db);
        if (!tx->isActive()) {
            *error = db.errorDescription();
            return false;
        }
    }
    for (qsizetype i = 0; i < packed.size(); ++i) {
        const std::optional<qint64> place = i == 0 ? std::nullopt : std::optional<qint64>(i + 1);
        const QString text = QString::fromUtf8(qUncompress(packed[i]));
        packed[i].clear();
        if (!append(db, { s.tip, s.company, s.year, 0 }, { RecordKind::Osnova, place, {}, text }, error))
            return false;
    }
    if (tx && !tx->commit()) {
        *error = db.errorDescription();
        return false;
    }
    return true;
}

} // namespace

QString valueText(const QVariant& value)
{
    if (!value.isValid() || value.isNull())
        return kNull;
    if (value.userType() == qMetaTypeId<Money>())
        return unitsText(value.value<Money>().units());
    switch (value.typeId()) {
    case QMetaType::QDate:
    case QMetaType::QDateTime:
        return value.toDate().toString(Qt::ISODate);
    case QMetaType::Double:
    case QMetaType::Float:
        return unitsText(Money::fromDouble(value.toDouble()).units());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return QString::number(value.toLongLong());
    default:
        return escaped(value.toString());
    }
}

QString rowText(const db::ResultSet& rows, int row)
{
    std::vector<std::pair<QString, QString>> pairs;
    for (int c = 0; c < rows.fieldCount(); ++c)
        pairs.emplace_back(rows.field(c).name.toUpper(), valueText(rows.value(row, c)));
    return joined(std::move(pairs));
}

QString rowText(const db::RowChange::Values& values)
{
    std::vector<std::pair<QString, QString>> pairs;
    for (const auto& [name, value] : values)
        pairs.emplace_back(name.toUpper(), valueText(value));
    return joined(std::move(pairs));
}

QMap<QString, QString> parseRow(const QString& text)
{
    QMap<QString, QString> out;
    for (const QString& part : text.split(u'\t', Qt::SkipEmptyParts)) {
        const qsizetype eq = part.indexOf(u'=');
        if (eq > 0)
            out.insert(part.left(eq), part.mid(eq + 1));
    }
    return out;
}

db::RowChange::Values merged(const db::RowChange::Values& original, const db::RowChange::Values& written)
{
    db::RowChange::Values out = written;
    for (const auto& column : original) {
        const bool rewritten = std::any_of(written.begin(), written.end(),
            [&](const auto& w) { return w.first.compare(column.first, Qt::CaseInsensitive) == 0; });
        if (!rewritten)
            out.append(column);
    }
    return out;
}

QString rowMark(const QString& datum, const QString& opis)
{
    const QByteArray bytes = (datum + QChar(0x1f) + opis).toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(8));
}

QString rowMark(const db::ResultSet& rows, int row)
{
    const int d = rows.indexOf(QStringLiteral("Datum"));
    const int o = rows.indexOf(QStringLiteral("Opis"));
    return rowMark(d < 0 ? kNull : valueText(rows.value(row, d)), o < 0 ? kNull : valueText(rows.value(row, o)));
}

QString recordHash(qint16 company, qint16 year, const Record& r, const QString& previousHash)
{
    const QStringList fields { QString::number(r.redni), QString::number(company), QString::number(year),
        QString::number(r.tip), QString::number(r.brojProd), r.vrijeme, r.operater, r.radnja,
        r.rBroj ? QString::number(*r.rBroj) : kNull, r.prije, r.poslije, previousHash };
    return QString::fromLatin1(
        QCryptographicHash::hash(fields.join(QChar(0x1f)).toUtf8(), QCryptographicHash::Sha256).toHex());
}

bool hasTable(db::Database& db, const QString& table)
{
    const QString key = db.connectionString() + u'\n' + table;
    const auto it = availability().constFind(key);
    if (it != availability().constEnd())
        return *it;
    db::ResultSet probe;
    const bool has
        = db.open(QStringLiteral("SELECT COUNT(*) AS Broj FROM ") + table + QStringLiteral(" WHERE 1=0"), probe);
    if (db.isConnected())
        availability().insert(key, has);
    return has;
}

bool available(db::Database& db)
{
    return hasTable(db, kTable);
}

bool readChain(db::Database& db, qint16 company, qint16 year, db::ResultSet& rows)
{
    return db.open(QStringLiteral("SELECT * FROM dbo.KnjDnevnik WHERE BrojPoduzeca=") + QString::number(company)
            + QStringLiteral(" AND GodinaKnj=") + QString::number(year) + QStringLiteral(" ORDER BY Redni"),
        rows);
}

Record chainRecord(const db::ResultSet& rs, int r, bool texts)
{
    const auto col = [&rs](const char* name) { return rs.indexOf(QString::fromLatin1(name)); };
    Record rec;
    rec.redni = rs.integer(r, col("Redni"));
    rec.tip = int(rs.integer(r, col("TipKnjige")));
    rec.brojProd = qint32(rs.integer(r, col("BrojProd")));
    rec.vrijeme = rs.text(r, col("Vrijeme"));
    rec.operater = rs.text(r, col("Operater"));
    rec.radnja = rs.text(r, col("Radnja"));
    if (!rs.isNull(r, col("RBroj")))
        rec.rBroj = rs.integer(r, col("RBroj"));
    if (texts) {
        rec.prije = rs.text(r, col("Prije"));
        rec.poslije = rs.text(r, col("Poslije"));
    }
    rec.hash = rs.text(r, col("Hash")).trimmed();
    return rec;
}

bool readChain(db::Database& db, qint16 company, qint16 year, std::vector<Record>& out)
{
    db::ResultSet rs;
    if (!readChain(db, company, year, rs))
        return false;
    out.clear();
    out.reserve(size_t(rs.rowCount()));
    for (int r = 0; r < rs.rowCount(); ++r)
        out.push_back(chainRecord(rs, r));
    return true;
}

QString tableOf(int tip)
{
    const books::BookKind* book = books::findBook(tip);
    return book ? book->table : QString();
}

QList<int> kindsOfTable(int tip)
{
    QList<int> out;
    const QString table = tableOf(tip);
    for (const books::BookKind& b : books::allBooks())
        if (b.table.compare(table, Qt::CaseInsensitive) == 0)
            out << b.code;
    return out;
}

bool append(db::Database& db, const Scope& s, const Change& change, QString* error)
{
    if (!available(db))
        return true;
    // On SQL Server the last record stays locked until the transaction ends, so two
    // writers never continue the chain from one record.
    const QString hint
        = db.dialect() == db::SqlDialect::SqlServer ? QStringLiteral(" WITH (UPDLOCK, HOLDLOCK)") : QString();
    db::ResultSet last;
    if (!db.open(QStringLiteral("SELECT TOP 1 Redni,Hash FROM dbo.KnjDnevnik") + hint
                + QStringLiteral(" WHERE BrojPoduzeca=") + QString::number(s.company)
                + QStringLiteral(" AND GodinaKnj=") + QString::number(s.year) + QStringLiteral(" ORDER BY Redni DESC"),
            last)) {
        *error = db.errorDescription();
        return false;
    }
    Record r;
    r.redni = last.isEmpty() ? 1 : last.integer(0, 0) + 1;
    const QString previous = last.isEmpty() ? QString() : last.text(0, 1).trimmed();
    r.tip = s.tip;
    r.brojProd = s.brojProd;
    r.vrijeme = serverTime(db, error);
    if (r.vrijeme.isEmpty())
        return false;
    r.operater = session().ImeOperatera.isNull() ? QStringLiteral("") : session().ImeOperatera;
    r.radnja = change.radnja;
    r.rBroj = change.rBroj;
    r.prije = change.prije;
    r.poslije = change.poslije;
    r.hash = recordHash(s.company, s.year, r, previous);
    const db::RowChange::Values values { { QStringLiteral("BrojPoduzeca"), int(s.company) },
        { QStringLiteral("GodinaKnj"), int(s.year) }, { QStringLiteral("Redni"), r.redni },
        { QStringLiteral("TipKnjige"), r.tip }, { QStringLiteral("BrojProd"), r.brojProd },
        { QStringLiteral("Vrijeme"), r.vrijeme }, { QStringLiteral("Operater"), r.operater },
        { QStringLiteral("Radnja"), r.radnja }, { QStringLiteral("RBroj"), r.rBroj ? QVariant(*r.rBroj) : QVariant() },
        { QStringLiteral("Prije"), r.prije.isNull() ? QStringLiteral("") : r.prije },
        { QStringLiteral("Poslije"), r.poslije.isNull() ? QStringLiteral("") : r.poslije },
        { QStringLiteral("Hash"), r.hash } };
    if (!db.writeRow({ db::RowChange::Kind::Insert, kTable, values, {} })) {
        *error = db.errorDescription();
        return false;
    }
    return true;
}

bool ensureBaseline(db::Database& db, const Scope& s, QString* error)
{
    if (!available(db) || tableOf(s.tip).isEmpty())
        return true;
    const bool linked = s.tip == Knjiga::PrihRashFBiH || tableOf(s.tip) == tableOf(Knjiga::EvidPotObvFBiH);
    if (linked)
        return writeBaseline(db, { Knjiga::PrihRashFBiH, s.company, s.year, 0 }, error)
            && writeBaseline(db, { Knjiga::EvidPotObvFBiH, s.company, s.year, 0 }, error);
    return writeBaseline(db, s, error);
}

bool baselineEveryBook(db::Database& db, QString* error)
{
    QSet<QString> tables;
    for (const books::BookKind& book : books::allBooks()) {
        if (tables.contains(book.table))
            continue;
        tables.insert(book.table);
        db::ResultSet scopes;
        if (!db.open(QStringLiteral("SELECT DISTINCT BrojPoduzeca,GodinaKnj FROM ") + book.table
                    + QStringLiteral(" ORDER BY GodinaKnj,BrojPoduzeca"),
                scopes)) {
            *error = db.errorDescription();
            return false;
        }
        for (int r = 0; r < scopes.rowCount(); ++r)
            if (!ensureBaseline(
                    db, { book.code, qint16(scopes.integer(r, 0)), qint16(scopes.integer(r, 1)), 0 }, error))
                return false;
    }
    return true;
}

bool appendRowChange(db::Database& db, const Scope& s, const db::RowChange& change, QString* error)
{
    Change c;
    switch (change.kind) {
    case db::RowChange::Kind::Insert:
        c.radnja = RecordKind::Unos;
        c.poslije = rowText(change.values);
        break;
    case db::RowChange::Kind::Update:
        c.radnja = RecordKind::Izmjena;
        c.prije = rowText(change.original);
        c.poslije = rowText(merged(change.original, change.values));
        break;
    case db::RowChange::Kind::Delete:
        c.radnja = RecordKind::Brisanje;
        c.prije = rowText(change.original);
        break;
    }
    const QMap<QString, QString> row = parseRow(c.poslije.isEmpty() ? c.prije : c.poslije);
    bool ok = false;
    const qint64 n = row.value(QStringLiteral("RBROJ")).toLongLong(&ok);
    if (ok)
        c.rBroj = n;
    return append(db, s, c, error);
}

QString numberChanges(
    const db::ResultSet& rows, const QString& column, const std::vector<std::optional<qint64>>& changes)
{
    const int c = rows.indexOf(column);
    std::unordered_map<qint64, int> count;
    for (int r = 0; r < rows.rowCount(); ++r)
        ++count[rows.integer(r, c)];
    QString out;
    for (int r = 0; r < rows.rowCount() && size_t(r) < changes.size(); ++r) {
        if (!changes[size_t(r)])
            continue;
        const qint64 old = rows.integer(r, c);
        out += QString::number(old);
        if (count[old] > 1)
            out += u'#' + rowMark(rows, r);
        out += u'>' + QString::number(*changes[size_t(r)]) + u'\n';
    }
    return out;
}

QString valueChanges(const std::vector<std::pair<qint64, qint64>>& pairs)
{
    QString out;
    for (const auto& [from, to] : pairs)
        out += u'=' + QString::number(from) + u'>' + QString::number(to) + u'\n';
    return out;
}

QString rowsText(const db::ResultSet& rows)
{
    QString out;
    for (int r = 0; r < rows.rowCount(); ++r)
        out += rowText(rows, r) + u'\n';
    return out;
}

} // namespace knjige::journal
