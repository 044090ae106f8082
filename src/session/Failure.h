#pragma once

#include <QString>

namespace knjige
{

// "Desila se greška: " followed by the phrase naming the step that failed and, where
// the data layer (or the file system) said why, its description, as written: every
// failure the component reports begins the same way, whoever shows it.
inline QString failureText(const QString& phrase, const QString& detail = {})
{
    return QStringLiteral("Desila se greška: ") + phrase + detail;
}

} // namespace knjige
