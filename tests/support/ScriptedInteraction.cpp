#include "support/ScriptedInteraction.h"

namespace knjige::test {

Answer ScriptedInteraction::show(const Message& message)
{
    messages.append(message);
    if (message.buttons == Buttons::Ok)
        return Answer::Ok;
    return answers.isEmpty() ? message.defaultAnswer : answers.dequeue();
}

int ScriptedInteraction::exec(QDialog& dialog)
{
    return onDialog ? onDialog(dialog) : 0;
}

QString ScriptedInteraction::chooseSaveFile(const FileChoice&)
{
    return files.isEmpty() ? QString() : files.dequeue();
}

QString ScriptedInteraction::chooseOpenFile(const FileChoice&)
{
    return files.isEmpty() ? QString() : files.dequeue();
}

bool ScriptedInteraction::startProgram(const QString& program, const QStringList& arguments)
{
    startedPrograms.append(QStringList{program} + arguments);
    return true;
}

QStringList ScriptedInteraction::texts() const
{
    QStringList out;
    for (const Message& m : messages)
        out << m.text;
    return out;
}

void ScriptedInteraction::clear()
{
    messages.clear();
    answers.clear();
    files.clear();
    startedPrograms.clear();
}

ScopedScript::ScopedScript()
{
    auto script = std::make_unique<ScriptedInteraction>();
    m_script = script.get();
    m_previous = setInteraction(std::move(script));
}

ScopedScript::~ScopedScript() { setInteraction(std::move(m_previous)); }

} // namespace knjige::test
