#pragma once

#include "session/Interaction.h"

#include <QFileDialog>
#include <memory>

namespace knjige
{

// The seam as a person meets it: real message boxes, modal dialogs, file choosers
// and program starts. A host (or the component's first window) installs it once.
class DialogInteraction final : public Interaction
{
public:
    Answer show(const Message& message) override;
    int exec(QDialog& dialog) override;
    QString chooseSaveFile(const FileChoice& choice) override;
    QString chooseOpenFile(const FileChoice& choice) override;
    bool startProgram(const QString& program, const QStringList& arguments) override;
    // A modal progress window over the active one, shown once the operation looks to
    // take more than a second: while it is up the book's window takes no input, so
    // nothing can start a second operation or close the window underneath.
    std::unique_ptr<Progress> startProgress(const ProgressSpec& spec) override;
};

// The file chooser the seam shows, not yet shown: the toolkit's own dialog (a desktop's
// native one runs inside this process) with icons that never open the listed files.
std::unique_ptr<QFileDialog> fileChooser(const FileChoice& choice, QFileDialog::AcceptMode mode);

// Installs DialogInteraction where nobody installed a seam yet; a test's scripted
// person stays in charge.
void ensureDialogInteraction();

// The window a message box or dialog belongs to, so that it opens centred on it: the
// modal dialog in front, else the active window, else the book window last shown (a
// window just shown is not yet active: the window system activates it later).
QWidget* dialogOwner();

// The window a long message opens in, which scrolls and can save the text: it lives in
// output's windows, above this layer, so output registers it (useTextViewerForLongTexts
// in output/widgets/frmPrikazTeksta.h). It returns true for Da. Until one is registered
// a long text shows in a message box like any other.
using TextViewer
    = bool (*)(QWidget* owner, const QString& title, const QString& text, bool ask, const QString& question);
void setTextViewer(TextViewer viewer);
// The book window that owns messages while no window is active.
void setBookWindow(QWidget* window);

} // namespace knjige
