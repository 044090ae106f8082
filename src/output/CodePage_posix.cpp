// Windows-1250 through iconv: the C library's converter on Linux and the other
// POSIX systems.
#include "output/CodePage.h"

#include <QSysInfo>
#include <cerrno>
#include <iconv.h>

namespace knjige::output::codepage
{
namespace
{

// One converter per thread, opened on first use: opening one per line would cost
// more than the conversion itself. Windows-1250 keeps no shift state between calls.
class Converter
{
public:
    Converter()
        : m_cd(iconv_open("CP1250", QSysInfo::ByteOrder == QSysInfo::LittleEndian ? "UTF-16LE" : "UTF-16BE"))
    {
    }
    ~Converter()
    {
        if (valid())
            iconv_close(m_cd);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    bool valid() const { return m_cd != iconv_t(-1); }
    iconv_t handle() const { return m_cd; }

private:
    iconv_t m_cd;
};

// The length in UTF-16 units of the character at `p`, of which `left` units remain.
qsizetype characterLength(const char16_t* p, qsizetype left)
{
    return left >= 2 && QChar::isHighSurrogate(p[0]) && QChar::isLowSurrogate(p[1]) ? 2 : 1;
}

} // namespace

void appendCp1250Converted(QByteArray& out, QStringView text, QString* unmappable)
{
    thread_local Converter converter;
    const qsizetype start = out.size();
    // One byte per character at most: the buffer never has to grow.
    out.resize(start + text.size());
    char* dst = out.data() + start;
    size_t dstLeft = size_t(text.size());
    const char16_t* src = text.utf16();
    qsizetype srcLeft = text.size();
    while (srcLeft > 0) {
        if (converter.valid()) {
            char* in = reinterpret_cast<char*>(const_cast<char16_t*>(src));
            size_t inLeft = size_t(srcLeft) * 2;
            const size_t done = iconv(converter.handle(), &in, &inLeft, &dst, &dstLeft);
            src = reinterpret_cast<const char16_t*>(in);
            srcLeft = qsizetype(inLeft / 2);
            if (done != size_t(-1) || srcLeft == 0)
                break;
            if (errno != EILSEQ && errno != EINVAL)
                break;
        }
        // The character at src has no place in the code page (or there is no
        // converter at all): a question mark stands in for it.
        const qsizetype length = converter.valid() ? characterLength(src, srcLeft) : 1;
        if (converter.valid() || *src >= 0x80) {
            noteUnmappable(unmappable, QStringView(src, length));
            *dst++ = '?';
        } else {
            *dst++ = char(*src);
        }
        --dstLeft;
        src += length;
        srcLeft -= length;
    }
    out.resize(dst - out.data());
}

} // namespace knjige::output::codepage
