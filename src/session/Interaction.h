#pragma once

#include <QString>
#include <QStringList>
#include <memory>

class QDialog;
class QWidget;

namespace knjige
{

// Every place where the component speaks to a person goes through this one seam:
// message boxes, questions, modal dialogs, file choosers, starting a program.
// The windows install the real one; tests install a scripted one that records every
// message and answers from a script, so whole flows run without a display.

enum class Icon { None, Information, Exclamation, Critical, Question };
enum class Buttons { Ok, YesNo, YesNoCancel, OkCancel };
enum class Answer { Ok, Yes, No, Cancel };

struct Message {
    QString text;
    QString title; // empty: the application's default title
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
    Answer defaultAnswer = Answer::Ok;
};

struct FileChoice {
    QString title;
    QString directory;
    QString fileName; // proposed name
    QString filter; // Qt form: "CSV datoteka (*.csv)"
    QString defaultSuffix; // without the point
};

// An operation that may run for seconds on a large book: a printout, an export, a
// renumbering. The person sees how far it got and, where stopping loses nothing (no
// file half written, nothing half changed), may stop it.
struct ProgressSpec {
    QString title; // the window's title
    QString label; // "%1" and "%2" become the count done and the total
    qint64 total = 0;
    bool cancellable = false;
};

class Progress
{
public:
    virtual ~Progress() = default; // the operation is over
    // `done` of the total. False once the person asked to stop; never where no
    // stopping was offered. Cheap enough to call for every row.
    virtual bool advance(qint64 done) = 0;
    // The next stage of the same operation, with a label and a total of its own.
    virtual void restart(const QString& label, qint64 total) = 0;
};

// "Ispis: stranica 12 od 459": the label with the counts put in, grouped by thousands
// ("12.000 od 20.000").
QString progressText(const QString& label, qint64 done, qint64 total);

class Interaction
{
public:
    virtual ~Interaction() = default;

    virtual Answer show(const Message& message) = 0;
    // Runs a modal dialog and returns its result code (QDialog::Accepted or Rejected).
    virtual int exec(QDialog& dialog) = 0;
    // Empty text when the person chose nothing.
    virtual QString chooseSaveFile(const FileChoice& choice) = 0;
    virtual QString chooseOpenFile(const FileChoice& choice) = 0;
    virtual bool startProgram(const QString& program, const QStringList& arguments) = 0;
    // Shows how an operation advances. The default shows nothing and never stops it:
    // the command-line tools keep their output to the result (and a script's log clean).
    virtual std::unique_ptr<Progress> startProgress(const ProgressSpec& spec);
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
void warn(const QString& text, const QString& title = {}); // exclamation icon
bool askYesNo(const QString& text, const QString& title = {}, Answer defaultAnswer = Answer::Yes);

} // namespace knjige
