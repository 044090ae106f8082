// Windows-1250 through the system's own conversion.
#include "output/CodePage.h"

#include <windows.h>

namespace knjige {

QByteArray toCp1250(const QString& text, QString* unmappable)
{
    if (text.isEmpty())
        return {};
    constexpr UINT cp1250 = 1250;
    const auto* wide = reinterpret_cast<const wchar_t*>(text.utf16());
    QByteArray out;
    // One character at a time, so that each unmappable one is known; surrogate pairs
    // go together.
    for (int i = 0; i < text.size();) {
        const int length = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        char buffer[8];
        BOOL usedDefault = FALSE;
        const int n = WideCharToMultiByte(cp1250, WC_NO_BEST_FIT_CHARS, wide + i, length, buffer, sizeof buffer, "?",
                                          &usedDefault);
        if (n <= 0 || usedDefault) {
            out += '?';
            const QString c = text.mid(i, length);
            if (unmappable && !unmappable->contains(c))
                *unmappable += c;
        } else {
            out.append(buffer, n);
        }
        i += length;
    }
    return out;
}

} // namespace knjige
