#pragma once

#include "session/db/ResultSet.h"

#include <QByteArray>
#include <QString>
#include <QStringEncoder>
#include <optional>

class QIODevice;

namespace knjige
{
class Progress;
}

namespace knjige::output
{

// How the text of an exported file is encoded: Windows-1250, the code page of the
// workstations the files are opened on, or UTF-8 with a byte-order mark (which Excel
// and LibreOffice recognise), for machines without that code page.
enum class TextEncoding { Windows1250, Utf8WithBom };

// "cp1250" and "utf-8": the names in the settings and on the command line.
QString encodingName(TextEncoding encoding);
std::optional<TextEncoding> encodingFromName(const QString& name);

struct ExportOptions {
    QString separator = QStringLiteral(";");
    QString decimalMark = QStringLiteral(","); // "." or ","
    bool quoteTexts = true; // names and texts in quotation marks
    TextEncoding encoding = TextEncoding::Windows1250;
};

// What the person filled in before pressing the export button.
struct ExportFields {
    QString fileName;
    QString separator;
    QString decimalMark;
    QString program;
    bool startProgram = false;
};

// The message of the first check the fields fail, in the order they are checked, or
// an empty text when the export may go ahead. The program is checked only when it is
// to be started.
QString firstFailedCheck(const ExportFields& fields);
// The program as it will be started: a path as given, or a bare name found on the
// search path; empty when it names no existing program.
QString resolveProgram(const QString& program);

// "U datoteku: <name> prebačeno <n> zapisa u CSV formatu!"
QString reportText(const QString& fileName, qint64 rows);
// The note on characters written as "?"; empty when there were none.
QString unmappableNote(const QString& characters, qint64 firstLine);

// The default file: "C:\Export.csv" on Windows, Export.csv in the documents folder
// elsewhere, or in the home folder where there is no documents folder.
QString defaultFileName();
// The program that opens a file with the desktop's default application for its type
// (explorer on Windows, open on macOS, xdg-open elsewhere); empty when there is none.
QString desktopOpener();

struct ExportResult {
    qint64 rows = 0; // data lines written
    QString unmappable; // distinct characters the code page lacks, written as "?"
    qint64 firstUnmappableLine = 0; // line of the file (the header is line 1) where the first was
    QString error; // the device's error when writing failed; empty otherwise
    bool cancelled = false; // the person stopped it; nothing was written
    bool ok() const { return error.isEmpty() && !cancelled; }
};

// Writes a result set as delimited text for office programs, one line at a time, in
// the order of its rows (the order the grid shows), so that a large book is never held
// a second time in memory.
//
// The first line holds the field names. Every line ends with CR LF; values are
// separated by the separator. NULL and empty values are written as nothing; numbers in
// plain form without grouping, every "." replaced by the decimal mark; dates as
// "dd.MM.yyyy" (the grid's day and month, the whole year); flags as 1 and 0; texts
// trimmed, or, with quotation on, untrimmed in quotation marks with every quotation
// mark inside doubled.
class OfficeExportWriter
{
public:
    OfficeExportWriter(QIODevice& device, ExportOptions options);

    // False when the device refused the data (see result().error).
    bool writeHeader(const QVector<db::Field>& fields);
    bool writeRow(const db::ResultSet& rows, int row);
    // Hands what is still buffered to the device.
    bool finish();
    const ExportResult& result() const { return m_result; }

    // One value as it appears between the separators.
    static void appendValue(
        QString& line, const db::ResultSet& rows, int row, int column, const ExportOptions& options);

private:
    bool endLine();
    bool flush();

    QIODevice& m_device;
    ExportOptions m_options;
    QStringEncoder m_utf8;
    QString m_line;
    QByteArray m_buffer;
    qint64 m_lines = 0;
    ExportResult m_result;
};

// Header and every row; the result tells how many rows were written and what failed.
// Each row is reported to `progress`, which may stop the writing.
ExportResult writeOfficeExport(
    const db::ResultSet& rows, const ExportOptions& options, QIODevice& device, Progress* progress = nullptr);

// Writes the file whole or not at all: an existing file is replaced only once the new
// one is complete, so a failure halfway leaves it as it was. The error names the file
// and the step that failed. The rows written are shown through the interaction seam;
// the person may stop where the file is left as it was.
ExportResult exportToFile(const db::ResultSet& rows, const ExportOptions& options, const QString& path);

// Settings keys of the export, under settings::sharedApplication(), section "Settings".
namespace keys
{
inline QString nazivDat()
{
    return QStringLiteral("ExpNazivDat");
}
inline QString separator()
{
    return QStringLiteral("ExpSeparator");
}
inline QString decTocka()
{
    return QStringLiteral("ExpDecTočka");
}
inline QString prikazNavodnika()
{
    return QStringLiteral("ExpPrikazNavodnika");
}
inline QString exeDat()
{
    return QStringLiteral("ExpEXEDat");
}
inline QString automPokr()
{
    return QStringLiteral("ExpAutomPokr");
}
// Ours: the encoding chosen where the system has no Windows-1250 code page.
inline QString kodiranje()
{
    return QStringLiteral("ExpKodiranje");
}
} // namespace keys

} // namespace knjige::output
