#include "session/Interaction.h"

#include <QTextStream>
#include <cstdio>

namespace knjige
{
namespace
{

// Used where no window library is present (the command-line tools): prints what a
// message box would have said and takes each question's default answer.
class ConsoleInteraction final : public Interaction
{
public:
    Answer show(const Message& message) override
    {
        QTextStream err(stderr);
        if (!message.title.isEmpty())
            err << message.title << ": ";
        err << message.text << Qt::endl;
        return message.buttons == Buttons::Ok ? Answer::Ok : message.defaultAnswer;
    }
    int exec(QDialog&) override { return 0; }
    QString chooseSaveFile(const FileChoice&) override { return {}; }
    QString chooseOpenFile(const FileChoice&) override { return {}; }
    bool startProgram(const QString&, const QStringList&) override { return false; }
};

std::unique_ptr<Interaction>& current()
{
    static std::unique_ptr<Interaction> instance = std::make_unique<ConsoleInteraction>();
    return instance;
}

class SilentProgress final : public Progress
{
public:
    bool advance(qint64) override { return true; }
    void restart(const QString&, qint64) override { }
};

QString groupedCount(qint64 n)
{
    QString digits = QString::number(n < 0 ? -n : n);
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, u'.');
    return n < 0 ? u'-' + digits : digits;
}

} // namespace

QString progressText(const QString& label, qint64 done, qint64 total)
{
    if (!label.contains(QLatin1String("%1")))
        return label;
    return label.contains(QLatin1String("%2")) ? label.arg(groupedCount(done), groupedCount(total))
                                               : label.arg(groupedCount(done));
}

std::unique_ptr<Progress> Interaction::startProgress(const ProgressSpec&)
{
    return std::make_unique<SilentProgress>();
}

Interaction& interaction()
{
    return *current();
}

bool usingConsoleInteraction()
{
    return dynamic_cast<ConsoleInteraction*>(current().get()) != nullptr;
}

std::unique_ptr<Interaction> setInteraction(std::unique_ptr<Interaction> replacement)
{
    if (!replacement)
        replacement = std::make_unique<ConsoleInteraction>();
    std::swap(current(), replacement);
    return replacement;
}

void inform(const QString& text, const QString& title, Icon icon)
{
    interaction().show({ text, title, icon, Buttons::Ok, Answer::Ok });
}

void warn(const QString& text, const QString& title)
{
    inform(text, title, Icon::Exclamation);
}

bool askYesNo(const QString& text, const QString& title, Answer defaultAnswer)
{
    return interaction().show({ text, title, Icon::Question, Buttons::YesNo, defaultAnswer }) == Answer::Yes;
}

} // namespace knjige
