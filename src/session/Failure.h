#pragma once

#include "session/Interaction.h"

#include <QString>
#include <QVector>

namespace knjige
{

// "Desila se greška: " followed by the phrase naming the step that failed and, where
// the data layer (or the file system) said why, its description, as written: every
// failure the component reports begins the same way, whoever shows it.
inline QString failureText(const QString& phrase, const QString& detail = {})
{
    return QStringLiteral("Desila se greška: ") + phrase + detail;
}

// What a core routine has to tell the person once its work is over, most often a
// failure, as a value: the routine does the work and returns it, and whoever called
// (a window, a batch command) decides how to show it. An empty text: nothing to tell.
struct Notice {
    QString text;
    QString title; // empty: the application's default title
    Icon icon = Icon::Exclamation;
};

using Notices = QVector<Notice>; // in the order they arose

// Shows a notice through the seam as a message box with its icon; nothing for an empty one.
inline void tell(const Notice& notice)
{
    if (!notice.text.isEmpty())
        inform(notice.text, notice.title, notice.icon);
}

inline void tell(const Notices& notices)
{
    for (const Notice& notice : notices)
        tell(notice);
}

} // namespace knjige
