#pragma once

#include <QString>
#include <QStringList>

namespace knjige::host
{

// The window commands of the knjige program. Each takes the arguments after the
// program's name (runOpen: after "open") and returns the exit code: 0 done, 1 the
// work failed, 2 the command line is wrong.

// Runs before the QApplication is made: with --screenshot and no display the windows
// are drawn off screen; without a display (Linux: neither DISPLAY nor WAYLAND_DISPLAY, and no
// QT_QPA_PLATFORM) it explains how to run under Xvfb or with --screenshot and
// returns 1. Returns 0 when the windows can be made.
int prepareWindowSystem(const QStringList& args);

// `knjige [opcije]`: the book chooser.
int runChooser(const QStringList& args);
// `knjige open KNJIGA [opcije]`: one book, as a host opens it.
int runOpen(const QStringList& args);

QString chooserUsage();
QString openUsage();

// Installs the host's rights service and the partner and shop pickers.
void installProgramServices();

} // namespace knjige::host
