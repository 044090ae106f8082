#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace knjige::output
{

// Windows-1250, the code page of the Bosnian workstations the component's files are
// read on (Č, Ć, Đ, Š, Ž and the other Central European letters).
//
// A character the code page cannot hold is written as "?" and appended once to
// *unmappable (when given), so the caller can tell the person instead of losing it
// silently. Surrogate pairs count as one character.
QByteArray toCp1250(const QString& text, QString* unmappable = nullptr);

// The same, appended to `out`: lets a writer encode line by line into one buffer.
void appendCp1250(QByteArray& out, QStringView text, QString* unmappable = nullptr);

namespace codepage
{
// The platform's converter (iconv or the Windows API) for text that is not plain ASCII.
void appendCp1250Converted(QByteArray& out, QStringView text, QString* unmappable);
// Adds `character` (one or two UTF-16 units) to the list of unmappable characters
// unless it is there already.
void noteUnmappable(QString* unmappable, QStringView character);
} // namespace codepage

} // namespace knjige::output
