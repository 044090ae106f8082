// Windows-1250 through the Windows API.
#include "output/CodePage.h"

#include <windows.h>

namespace knjige::output::codepage
{
namespace
{

constexpr UINT kCp1250 = 1250;

// Converts without best-fit substitutes (which would turn "∑" into "S" unnoticed);
// true when every character had a place in the code page.
bool convert(QStringView text, QByteArray& out, qsizetype at)
{
    BOOL usedDefault = FALSE;
    const int written = WideCharToMultiByte(kCp1250, WC_NO_BEST_FIT_CHARS, reinterpret_cast<LPCWCH>(text.utf16()),
        int(text.size()), out.data() + at, int(out.size() - at), "?", &usedDefault);
    out.resize(at + written);
    return !usedDefault;
}

} // namespace

void appendCp1250Converted(QByteArray& out, QStringView text, QString* unmappable)
{
    const qsizetype start = out.size();
    out.resize(start + text.size());
    if (convert(text, out, start) || !unmappable)
        return;
    // Something was replaced: go character by character to name what.
    out.resize(start);
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length
            = i + 1 < text.size() && text[i].isHighSurrogate() && text[i + 1].isLowSurrogate() ? 2 : 1;
        const QStringView character = text.mid(i, length);
        const qsizetype at = out.size();
        out.resize(at + length);
        if (!convert(character, out, at))
            noteUnmappable(unmappable, character);
        i += length;
    }
}

} // namespace knjige::output::codepage
