#pragma once

#include <QDialog>

class QAction;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace knjige::output
{

// The viewer of long texts: a message that does not fit a message box, optionally
// with a yes/no question under it, which the person can also save as a text file in
// the workstation's 8-bit code page.
class frmPrikazTeksta final : public QDialog
{
    Q_OBJECT
public:
    explicit frmPrikazTeksta(QWidget* parent = nullptr);

    // Shows `tekst` under the caption `naslov`, modally through the interaction seam.
    // With `pitaj` the window asks `pitanje` with Da and Ne instead of closing with OK.
    // Returns when the window is hidden; Odgovor() tells the answer.
    void Prikaži(const QString& naslov, const QString& tekst, bool pitaj, const QString& pitanje);
    // True only after Da.
    bool Odgovor() const { return m_odgovor; }

    // mnuSpremiTekst and cmdSpremiTekst: asks for a file and writes the text into it.
    // Nothing is written when no file is chosen or an existing one is not to be
    // overwritten; a failed write is not reported, the text stays to be saved again.
    void SpremiTekst();

    QPlainTextEdit* txtPoruka = nullptr;
    QLabel* lblPitanje = nullptr;
    QPushButton* cmdDa = nullptr;
    QPushButton* cmdNe = nullptr;
    QPushButton* OKButton = nullptr;
    QPushButton* cmdSpremiTekst = nullptr;
    QAction* mnuSpremiTekst = nullptr;

private:
    QString m_tekst; // as given: the file gets its line ends unchanged
    bool m_odgovor = false;
};

// Makes the real seam (DialogInteraction) show long messages in this viewer. Whoever
// installs the real seam calls it first.
void useTextViewerForLongTexts();

} // namespace knjige::output
