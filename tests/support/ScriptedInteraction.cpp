#include "support/ScriptedInteraction.h"

namespace knjige::test
{
namespace
{

class RecordedProgress final : public Progress
{
public:
    RecordedProgress(ScriptedInteraction& script, const ProgressSpec& spec)
        : m_script(script)
        , m_index(script.progress.size())
        , m_label(spec.label)
    {
        ProgressRecord record;
        record.title = spec.title;
        record.cancellable = spec.cancellable;
        script.progress.append(record);
        restart(spec.label, spec.total);
    }
    ~RecordedProgress() override { record().finished = true; }

    bool advance(qint64 done) override
    {
        ProgressRecord& r = record();
        if (r.cancelled)
            return false;
        r.done = done;
        r.texts.last() = progressText(m_label, done, r.total);
        if (r.cancellable && !m_script.cancelAt.isEmpty() && r.texts.last().startsWith(m_script.cancelAt)) {
            r.cancelled = true;
            m_script.cancelAt.clear();
        }
        return !r.cancelled;
    }
    void restart(const QString& label, qint64 total) override
    {
        m_label = label;
        ProgressRecord& r = record();
        r.total = total;
        r.texts.append(progressText(label, 0, total));
    }

private:
    ProgressRecord& record() { return m_script.progress[m_index]; }

    ScriptedInteraction& m_script;
    qsizetype m_index;
    QString m_label;
};

} // namespace

Answer ScriptedInteraction::show(const Message& message)
{
    messages.append(message);
    if (message.buttons == Buttons::Ok)
        return Answer::Ok;
    if (onQuestion)
        onQuestion(message);
    return answers.isEmpty() ? message.defaultAnswer : answers.dequeue();
}

int ScriptedInteraction::exec(QDialog& dialog)
{
    return onDialog ? onDialog(dialog) : 0;
}

bool ScriptedInteraction::startProgram(const QString& program, const QStringList& arguments)
{
    startedPrograms.append(QStringList { program } + arguments);
    return true;
}

std::unique_ptr<Progress> ScriptedInteraction::startProgress(const ProgressSpec& spec)
{
    return std::make_unique<RecordedProgress>(*this, spec);
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
    progress.clear();
    cancelAt.clear();
}

ScopedScript::ScopedScript()
{
    auto script = std::make_unique<ScriptedInteraction>();
    m_script = script.get();
    m_previous = setInteraction(std::move(script));
}

ScopedScript::~ScopedScript()
{
    setInteraction(std::move(m_previous));
}

} // namespace knjige::test
