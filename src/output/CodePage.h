#pragma once

#include <QByteArray>
#include <QString>

namespace knjige {

// Text in Windows-1250, the 8-bit code page of the workstations that keep these books
// (Bosnian, Croatian and Serbian in Latin letters), for files that office programs of
// those workstations read. Line ends are kept as they are. A character the code page
// lacks becomes '?'; each such character is added once to *unmappable when given.
QByteArray toCp1250(const QString& text, QString* unmappable = nullptr);

} // namespace knjige
