#pragma once

#include "session/Interaction.h"

namespace knjige {

// The seam as a person meets it: real message boxes, modal dialogs, file choosers
// and program starts. A host (or the component's first window) installs it once.
class DialogInteraction final : public Interaction {
public:
    Answer show(const Message& message) override;
    int exec(QDialog& dialog) override;
    QString chooseSaveFile(const FileChoice& choice) override;
    QString chooseOpenFile(const FileChoice& choice) override;
    bool startProgram(const QString& program, const QStringList& arguments) override;
};

// Installs DialogInteraction where nobody installed a seam yet; a test's scripted
// person stays in charge.
void ensureDialogInteraction();

} // namespace knjige
