#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class QDialog;
class QWidget;

namespace knjige {

// Every place where the component speaks to a person goes through this one seam:
// message boxes, questions, modal dialogs, file choosers, starting a program.
// The windows install the real one; tests install a scripted one that records every
// message and answers from a script, so whole flows run without a display.

enum class Icon { None, Information, Exclamation, Critical, Question };
enum class Buttons { Ok, YesNo, YesNoCancel, OkCancel };
enum class Answer { Ok, Yes, No, Cancel };

struct Message {
    QString text;
    QString title;            // empty: the application's default title
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
    Answer defaultAnswer = Answer::Ok;
};

struct FileChoice {
    QString title;
    QString directory;
    QString fileName;         // proposed name
    QString filter;           // Qt form: "CSV datoteka (*.csv)"
    QString defaultSuffix;    // without the point
};

class Interaction {
public:
    virtual ~Interaction() = default;

    virtual Answer show(const Message& message) = 0;
    // Runs a modal dialog and returns its result code (QDialog::Accepted or Rejected).
    virtual int exec(QDialog& dialog) = 0;
    // Empty text when the person chose nothing.
    virtual QString chooseSaveFile(const FileChoice& choice) = 0;
    virtual QString chooseOpenFile(const FileChoice& choice) = 0;
    virtual bool startProgram(const QString& program, const QStringList& arguments) = 0;
};

// The process-wide seam. Without an installed one, messages go to standard error and
// questions are answered with their default; a window library installs the real one.
Interaction& interaction();
// Installs a new seam and returns the previous one (for tests that restore it).
std::unique_ptr<Interaction> setInteraction(std::unique_ptr<Interaction> replacement);
// True while nobody has installed a seam (the console fallback is in force).
bool usingConsoleInteraction();

// Shorthands used throughout the component.
void inform(const QString& text, const QString& title = {}, Icon icon = Icon::None);
void warn(const QString& text, const QString& title = {});          // exclamation icon
bool askYesNo(const QString& text, const QString& title = {}, Answer defaultAnswer = Answer::Yes);

} // namespace knjige
