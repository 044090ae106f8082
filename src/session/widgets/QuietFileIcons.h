#pragma once

#include <QObject>

class QAbstractFileIconProvider;

namespace knjige
{

// Icons and type names of files told from their names alone. The toolkit's own provider
// opens each file of a listed folder to sniff its type; opening and closing the embedded
// database, its -wal or its -shm that way would cost SQLite its locks on them, so no
// folder list of this program ever uses it.
QAbstractFileIconProvider& quietFileIcons();

// Gives every file system model under `root` (a file chooser's, a completer's) the
// quiet icons.
void quietenFileModels(QObject* root);

// While alive, every dialog the toolkit opens by itself (the print preview's printer
// dialog with its file name completer, that dialog's file chooser) gets the quiet icons
// as it is first shown, before its models list a folder.
class QuietFileDialogs final : public QObject
{
public:
    QuietFileDialogs();
    ~QuietFileDialogs() override;
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace knjige
