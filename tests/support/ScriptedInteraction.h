#pragma once

#include "session/Interaction.h"

#include <QList>
#include <QQueue>
#include <functional>

namespace knjige::test
{

// One operation's progress as the person would have seen it.
struct ProgressRecord {
    QString title;
    QStringList texts; // each stage's text as last shown: "Ispis: stranica 3 od 3"
    qint64 total = 0; // of the last stage
    qint64 done = -1; // the last count reported
    bool cancellable = false;
    bool cancelled = false; // the script stopped it
    bool finished = false; // the operation let it go
};

// Stands in for the person at the screen: records every message, answers questions
// from a script (the message's default when the script runs dry), and lets a test
// drive each modal dialog with a handler of its own.
class ScriptedInteraction final : public Interaction
{
public:
    QList<Message> messages;
    QQueue<Answer> answers;
    QQueue<QString> files;
    QList<QStringList> startedPrograms; // program first, then its arguments
    // Runs a modal dialog; without a handler the dialog is rejected at once.
    std::function<int(QDialog&)> onDialog;
    // Runs when a question is put, before it is answered: what others do meanwhile.
    std::function<void(const Message&)> onQuestion;
    QList<ProgressRecord> progress;
    // Where stopping is offered, the person stops the next operation once its text
    // begins with this ("Ispis: stranica 2 od"); empty: never.
    QString cancelAt;

    Answer show(const Message& message) override;
    int exec(QDialog& dialog) override;
    // Either file chooser takes the next of `files`; nothing once they run out.
    QString chooseSaveFile(const FileChoice&) override { return files.isEmpty() ? QString() : files.dequeue(); }
    QString chooseOpenFile(const FileChoice& choice) override { return chooseSaveFile(choice); }
    bool startProgram(const QString& program, const QStringList& arguments) override;
    std::unique_ptr<Progress> startProgress(const ProgressSpec& spec) override;

    QStringList texts() const;
    void clear();
};

// Installs a scripted person for the life of the object and restores the previous one.
class ScopedScript
{
public:
    ScopedScript();
    ~ScopedScript();
    ScriptedInteraction* operator->() { return m_script; }

private:
    ScriptedInteraction* m_script;
    std::unique_ptr<Interaction> m_previous;
};

} // namespace knjige::test
