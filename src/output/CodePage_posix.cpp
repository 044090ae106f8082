// Windows-1250 through the C library's iconv.
#include "output/CodePage.h"

#include <QList>
#include <QSysInfo>

#include <cerrno>
#include <cstring>
#include <iconv.h>

namespace knjige {
namespace {

void noteUnmappable(char32_t c, QString* unmappable)
{
    if (!unmappable)
        return;
    const QString s = QString::fromUcs4(&c, 1);
    if (!unmappable->contains(s))
        *unmappable += s;
}

} // namespace

QByteArray toCp1250(const QString& text, QString* unmappable)
{
    if (text.isEmpty())
        return {};
    const QList<uint> ucs4 = text.toUcs4();
    QByteArray out;
    out.reserve(ucs4.size());
    iconv_t cd = iconv_open("CP1250", QSysInfo::ByteOrder == QSysInfo::LittleEndian ? "UTF-32LE" : "UTF-32BE");
    if (cd == iconv_t(-1)) {
        // Without the code page only ASCII can be written as it is.
        for (uint c : ucs4) {
            out += c < 0x80 ? char(c) : '?';
            if (c >= 0x80)
                noteUnmappable(char32_t(c), unmappable);
        }
        return out;
    }
    // One byte per character: the output never outgrows the count of characters.
    out.resize(ucs4.size());
    char* src = reinterpret_cast<char*>(const_cast<uint*>(ucs4.constData()));
    size_t srcLeft = size_t(ucs4.size()) * sizeof(uint);
    char* dst = out.data();
    size_t dstLeft = size_t(out.size());
    while (srcLeft > 0) {
        if (iconv(cd, &src, &srcLeft, &dst, &dstLeft) != size_t(-1))
            break;
        if (errno != EILSEQ || dstLeft == 0)
            break;
        // A character the code page lacks: '?' in its place, and on with the next.
        char32_t c = 0;
        memcpy(&c, src, sizeof c);
        noteUnmappable(c, unmappable);
        *dst++ = '?';
        --dstLeft;
        src += sizeof(uint);
        srcLeft -= sizeof(uint);
    }
    out.resize(int(dst - out.data()));
    iconv_close(cd);
    return out;
}

} // namespace knjige
