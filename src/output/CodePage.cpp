#include "output/CodePage.h"

namespace knjige::output
{

QByteArray toCp1250(const QString& text, QString* unmappable)
{
    QByteArray out;
    appendCp1250(out, text, unmappable);
    return out;
}

void appendCp1250(QByteArray& out, QStringView text, QString* unmappable)
{
    // Most of a book is ASCII, which every code page holds as it is; only a text with
    // other characters goes through the converter.
    const char16_t* units = text.utf16();
    const qsizetype n = text.size();
    qsizetype ascii = 0;
    while (ascii < n && units[ascii] < 0x80)
        ++ascii;
    if (ascii == n) {
        const qsizetype start = out.size();
        out.resize(start + n);
        char* dst = out.data() + start;
        for (qsizetype i = 0; i < n; ++i)
            dst[i] = char(units[i]);
        return;
    }
    codepage::appendCp1250Converted(out, text, unmappable);
}

namespace codepage
{

void noteUnmappable(QString* unmappable, QStringView character)
{
    if (unmappable && !unmappable->contains(character))
        unmappable->append(character);
}

} // namespace codepage

} // namespace knjige::output
