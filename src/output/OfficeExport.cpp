#include "output/OfficeExport.h"

#include "output/CodePage.h"
#include "output/OutputFile.h"
#include "session/Interaction.h"

#include <QDir>
#include <QFileInfo>
#include <QIODevice>
#include <QStandardPaths>

namespace knjige::output
{
namespace
{

// Enough lines to keep the device's calls few, little enough to stay small.
constexpr qsizetype kFlushAt = 64 * 1024;
// A person is shown this many of the characters the code page lacks, then "…".
constexpr qsizetype kShownUnmappable = 20;

// Numbers, amounts and dates are formatted here digit by digit rather than through
// QString::number and QDate::toString: a large book has a million of them, and the
// general routines allocate and parse a format for every one.

void appendDigits(QString& line, quint64 value, int minimumDigits = 1)
{
    char digits[20];
    int n = 0;
    do {
        digits[n++] = char('0' + value % 10);
        value /= 10;
    } while (value != 0 || n < minimumDigits);
    while (n > 0)
        line += QLatin1Char(digits[--n]);
}

void appendInteger(QString& line, qint64 value)
{
    if (value < 0)
        line += u'-';
    appendDigits(line, value < 0 ? 0 - quint64(value) : quint64(value));
}

// Money's plain text form ("1234.5", "-7", "0.0125") with the chosen decimal mark.
void appendMoney(QString& line, Money value, QChar mark)
{
    if (value.isOutOfRange()) {
        line += QString::fromUtf8(Money::OutOfRangeText);
        return;
    }
    const qint64 units = value.units();
    const quint64 a = units < 0 ? 0 - quint64(units) : quint64(units);
    if (units < 0)
        line += u'-';
    appendDigits(line, a / Money::Scale);
    quint64 fraction = a % Money::Scale;
    if (fraction == 0)
        return;
    int digits = 4;
    while (fraction % 10 == 0) {
        fraction /= 10;
        --digits;
    }
    line += mark;
    appendDigits(line, fraction, digits);
}

// "dd.MM.yyyy": a spreadsheet reads a two-digit year into a century of its own choosing
// (15.03.30 as 1930), so the file carries the whole year even where the grid shows two.
void appendDate(QString& line, const QDate& date)
{
    int y = 0, m = 0, d = 0;
    date.getDate(&y, &m, &d);
    appendDigits(line, quint64(d), 2);
    line += u'.';
    appendDigits(line, quint64(m), 2);
    line += u'.';
    if (y < 0)
        line += u'-';
    appendDigits(line, quint64(y < 0 ? -qint64(y) : qint64(y)), 4);
}

void appendNumberText(QString& line, const QString& plain, QChar mark)
{
    const qsizetype at = line.size();
    line += plain;
    for (qsizetype i = at; i < line.size(); ++i)
        if (line[i] == u'.')
            line[i] = mark;
}

void appendQuoted(QString& line, const QString& text)
{
    line += u'"';
    if (!text.contains(u'"')) {
        line += text;
    } else {
        for (QChar c : text) {
            if (c == u'"')
                line += u'"';
            line += c;
        }
    }
    line += u'"';
}

} // namespace

QString encodingName(TextEncoding encoding)
{
    return encoding == TextEncoding::Utf8WithBom ? QStringLiteral("utf-8") : QStringLiteral("cp1250");
}

std::optional<TextEncoding> encodingFromName(const QString& name)
{
    const QString n = name.trimmed().toLower();
    if (n == QLatin1String("cp1250") || n == QLatin1String("windows-1250"))
        return TextEncoding::Windows1250;
    if (n == QLatin1String("utf-8") || n == QLatin1String("utf8"))
        return TextEncoding::Utf8WithBom;
    return std::nullopt;
}

QString resolveProgram(const QString& program)
{
    const QString name = program.trimmed();
    if (name.isEmpty())
        return {};
    const QFileInfo info(name);
    if (info.isFile() && info.isExecutable())
        return info.absoluteFilePath();
    // A bare name ("libreoffice", "excel.exe") is looked up as the system starts it.
    if (!name.contains(u'/') && !name.contains(u'\\'))
        return QStandardPaths::findExecutable(name);
    return {};
}

QString firstFailedCheck(const ExportFields& f)
{
    if (f.fileName.trimmed().isEmpty())
        return QStringLiteral("Mora se upisati ime CSV datoteke podataka!");
    if (f.separator.isEmpty())
        return QStringLiteral("Mora se upisati separator podataka!");
    if (f.decimalMark != QLatin1String(".") && f.decimalMark != QLatin1String(","))
        return QStringLiteral("Znak za decimalnu točku za brojeve može biti točka ili zarez !");
    if (f.separator == f.decimalMark)
        return QStringLiteral("Separator podataka i znak za decimalnu točku ne mogu biti isti !");
    if (f.startProgram) {
        if (f.program.trimmed().isEmpty())
            return QStringLiteral("Mora se upisati ime EXE datoteke!");
        if (resolveProgram(f.program).isEmpty())
            return QStringLiteral("Uneseno ime EXE datoteke je neispravno !");
    }
    return {};
}

QString reportText(const QString& fileName, qint64 rows)
{
    return QStringLiteral("U datoteku: ") + fileName + QStringLiteral(" prebačeno ") + QString::number(rows)
        + QStringLiteral(" zapisa u CSV formatu!");
}

QString unmappableNote(const QString& characters, qint64 firstLine)
{
    if (characters.isEmpty())
        return {};
    QString shown;
    qsizetype count = 0;
    for (qsizetype i = 0; i < characters.size(); ++i) {
        if (count == kShownUnmappable) {
            shown += QStringLiteral(" …");
            break;
        }
        if (!shown.isEmpty())
            shown += u' ';
        shown += characters[i];
        if (characters[i].isHighSurrogate() && i + 1 < characters.size())
            shown += characters[++i];
        ++count;
    }
    return QStringLiteral("Kodna stranica Windows-1250 nema znakove: %1\r\n"
                          "U datoteci su zamijenjeni znakom \"?\" (prvi put u retku %2). "
                          "Da ostanu kakvi jesu, datoteku treba zapisati u kodiranju UTF-8.")
        .arg(shown)
        .arg(firstLine);
}

QString defaultFileName()
{
#ifdef Q_OS_WIN
    return QStringLiteral("C:\\Export.csv");
#else
    // A documents folder is named on every desktop but made only on some.
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const bool there = !documents.isEmpty() && QFileInfo(documents).isDir();
    return QDir(there ? documents : QDir::homePath()).filePath(QStringLiteral("Export.csv"));
#endif
}

QString desktopOpener()
{
#if defined(Q_OS_WIN)
    return QDir(qEnvironmentVariable("SystemRoot", QStringLiteral("C:\\Windows")))
        .filePath(QStringLiteral("explorer.exe"));
#elif defined(Q_OS_MACOS)
    return QStringLiteral("/usr/bin/open");
#else
    return QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
#endif
}

OfficeExportWriter::OfficeExportWriter(QIODevice& device, ExportOptions options)
    : m_device(device)
    , m_options(std::move(options))
    , m_utf8(QStringConverter::Utf8)
{
    m_buffer.reserve(kFlushAt + 4096);
    if (m_options.encoding == TextEncoding::Utf8WithBom)
        m_buffer.append("\xEF\xBB\xBF");
}

void OfficeExportWriter::appendValue(
    QString& line, const db::ResultSet& rows, int row, int column, const ExportOptions& options)
{
    if (rows.isNull(row, column))
        return;
    const QChar mark = options.decimalMark.isEmpty() ? QChar(u'.') : options.decimalMark.front();
    switch (rows.field(column).type) {
    case db::FieldType::Integer:
        appendInteger(line, rows.integer(row, column));
        return;
    case db::FieldType::Currency:
        appendMoney(line, rows.money(row, column), mark);
        return;
    case db::FieldType::Decimal:
    case db::FieldType::Float:
        appendNumberText(line, rows.text(row, column), mark);
        return;
    case db::FieldType::Date:
        appendDate(line, rows.date(row, column));
        return;
    case db::FieldType::Boolean:
        line += rows.integer(row, column) ? u'1' : u'0';
        return;
    case db::FieldType::Text: {
        const QString text = rows.text(row, column);
        if (text.isEmpty())
            return;
        if (options.quoteTexts)
            appendQuoted(line, text);
        else
            line += QStringView(text).trimmed();
        return;
    }
    }
}

bool OfficeExportWriter::writeHeader(const QVector<db::Field>& fields)
{
    m_line.truncate(0);
    for (qsizetype c = 0; c < fields.size(); ++c) {
        if (c > 0)
            m_line += m_options.separator;
        if (m_options.quoteTexts)
            m_line += u'"' + fields[c].name + u'"';
        else
            m_line += fields[c].name;
    }
    return endLine();
}

bool OfficeExportWriter::writeRow(const db::ResultSet& rows, int row)
{
    m_line.truncate(0);
    for (int c = 0; c < rows.fieldCount(); ++c) {
        if (c > 0)
            m_line += m_options.separator;
        appendValue(m_line, rows, row, c, m_options);
    }
    if (!endLine())
        return false;
    ++m_result.rows;
    return true;
}

bool OfficeExportWriter::endLine()
{
    m_line += QLatin1String("\r\n");
    ++m_lines;
    if (m_options.encoding == TextEncoding::Utf8WithBom) {
        const qsizetype at = m_buffer.size();
        m_buffer.resize(at + m_utf8.requiredSpace(m_line.size()));
        char* end = m_utf8.appendToBuffer(m_buffer.data() + at, m_line);
        m_buffer.resize(end - m_buffer.data());
    } else {
        const qsizetype before = m_result.unmappable.size();
        appendCp1250(m_buffer, m_line, &m_result.unmappable);
        if (before == 0 && !m_result.unmappable.isEmpty())
            m_result.firstUnmappableLine = m_lines;
    }
    return m_buffer.size() < kFlushAt || flush();
}

bool OfficeExportWriter::flush()
{
    if (!m_result.ok())
        return false;
    if (!m_buffer.isEmpty() && m_device.write(m_buffer) != m_buffer.size()) {
        m_result.error = m_device.errorString();
        if (m_result.error.isEmpty())
            m_result.error = QStringLiteral("upis nije uspio");
        return false;
    }
    m_buffer.truncate(0);
    return true;
}

bool OfficeExportWriter::finish()
{
    return flush();
}

ExportResult writeOfficeExport(
    const db::ResultSet& rows, const ExportOptions& options, QIODevice& device, Progress* progress)
{
    OfficeExportWriter writer(device, options);
    bool ok = writer.writeHeader(rows.fields());
    for (int r = 0; ok && r < rows.rowCount(); ++r) {
        ok = writer.writeRow(rows, r);
        if (ok && progress && !progress->advance(r + 1)) {
            ExportResult stopped = writer.result();
            stopped.cancelled = true;
            return stopped;
        }
    }
    if (ok)
        writer.finish();
    return writer.result();
}

ExportResult exportToFile(const db::ResultSet& rows, const ExportOptions& options, const QString& path)
{
    OutputFile file(path);
    if (!file.open()) {
        ExportResult failed;
        failed.error = QStringLiteral("datoteku %1 nije moguće otvoriti za upis (%2).").arg(path, file.errorString());
        return failed;
    }
    ExportResult result;
    {
        const auto progress = interaction().startProgress({ QStringLiteral("Izvoz"),
            QStringLiteral("Izvoz: %1 od %2 redova"), rows.rowCount(), file.cancelLeavesNoTrace() });
        result = writeOfficeExport(rows, options, file.device(), progress.get());
    }
    if (result.cancelled) {
        file.cancel();
        return result;
    }
    if (result.ok() && !file.commit())
        result.error = file.errorString();
    if (!result.ok()) {
        file.cancel();
        result.error = QStringLiteral("upis u datoteku %1 nije uspio (%2).").arg(path, result.error);
    }
    return result;
}

} // namespace knjige::output
