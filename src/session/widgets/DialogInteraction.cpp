#include "session/widgets/DialogInteraction.h"

#include "session/widgets/QuietFileIcons.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QProgressDialog>
#include <algorithm>
#include <climits>

namespace knjige
{
namespace
{

QMessageBox::Icon boxIcon(Icon icon)
{
    switch (icon) {
    case Icon::Information:
        return QMessageBox::Information;
    case Icon::Exclamation:
        return QMessageBox::Warning;
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton boxButton(Answer answer)
{
    switch (answer) {
    case Answer::Ok:
        return QMessageBox::Ok;
    case Answer::Yes:
        return QMessageBox::Yes;
    case Answer::No:
        return QMessageBox::No;
    case Answer::Cancel:
        return QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButtons boxButtons(Buttons buttons)
{
    switch (buttons) {
    case Buttons::Ok:
        return QMessageBox::Ok;
    case Buttons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case Buttons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Buttons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

Answer answerOf(int button)
{
    switch (button) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return Answer::Ok;
    }
}

QPointer<QWidget>& bookWindow()
{
    static QPointer<QWidget> window;
    return window;
}

// "CSV datoteka (*.csv)|*.csv" (the program's own filter form) or Qt's form.
QString qtFilter(const QString& filter)
{
    const qsizetype bar = filter.indexOf(u'|');
    return bar < 0 ? filter : filter.left(bar);
}

// A message box grows with its text until it leaves the screen; past this a text goes to
// the text viewer, which scrolls and can save it.
bool isLongText(const QString& text)
{
    return text.size() > 700 || text.count(u'\n') > 18;
}

TextViewer g_textViewer = nullptr;

// The viewer for a long message; for a question the last line, when there are several,
// stands as the question under the text.
Answer showInViewer(const Message& message)
{
    const bool ask = message.buttons == Buttons::YesNo;
    QString text = message.text;
    QString question;
    if (ask) {
        const QString trimmed = text.trimmed();
        const qsizetype lastBreak = trimmed.lastIndexOf(u'\n');
        if (lastBreak > 0) {
            question = trimmed.mid(lastBreak + 1).trimmed();
            text = trimmed.left(lastBreak).trimmed();
        }
    }
    const bool yes = g_textViewer(dialogOwner(),
        message.title.isEmpty() ? QApplication::applicationDisplayName() : message.title, text, ask, question);
    if (!ask)
        return Answer::Ok;
    return yes ? Answer::Yes : Answer::No;
}

// The buttons speak the program's language whatever translations the toolkit has.
void nameButtons(QMessageBox& box)
{
    const std::pair<QMessageBox::StandardButton, const char*> names[]
        = { { QMessageBox::Yes, "&Da" }, { QMessageBox::No, "&Ne" }, { QMessageBox::Cancel, "&Odustani" } };
    for (const auto& [button, name] : names)
        if (QAbstractButton* b = box.button(button))
            b->setText(QString::fromUtf8(name));
}

// Where stopping was not offered, neither the title bar's close button nor Escape
// stops the operation.
class ProgressWindow final : public QProgressDialog
{
public:
    ProgressWindow(bool cancellable, QWidget* parent)
        : QProgressDialog(parent)
        , m_cancellable(cancellable)
    {
    }
    void reject() override
    {
        if (m_cancellable)
            cancel();
    }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        if (m_cancellable)
            QProgressDialog::closeEvent(event);
        else
            event->ignore();
    }

private:
    bool m_cancellable;
};

// The window is brought up to date a few times a second, not on every row: each update
// lets the toolkit handle its events, which costs more than painting a row.
class WindowProgress final : public Progress
{
public:
    explicit WindowProgress(const ProgressSpec& spec)
        : m_window(new ProgressWindow(spec.cancellable, QApplication::activeWindow()))
        , m_label(spec.label)
    {
        m_window->setObjectName(QStringLiteral("frmNapredak"));
        m_window->setWindowTitle(spec.title.isEmpty() ? QApplication::applicationDisplayName() : spec.title);
        m_window->setWindowModality(Qt::ApplicationModal);
        m_window->setMinimumDuration(kShowAfterMs);
        m_window->setAutoClose(false);
        m_window->setAutoReset(false);
        m_window->setMinimumWidth(360);
        if (spec.cancellable)
            m_window->setCancelButtonText(QStringLiteral("&Odustani"));
        else
            m_window->setCancelButton(nullptr);
        restart(spec.label, spec.total);
    }
    ~WindowProgress() override { delete m_window.data(); }

    bool advance(qint64 done) override
    {
        if (!m_window)
            return true;
        if (m_window->wasCanceled())
            return false;
        if (m_sinceUpdate.isValid() && m_sinceUpdate.elapsed() < kUpdateMs && done < m_total)
            return true;
        m_sinceUpdate.start();
        m_window->setLabelText(progressText(m_label, done, m_total));
        // Shows the window once the operation looks to outlast a second, then lets the
        // toolkit repaint and take the cancel button's click.
        m_window->setValue(scaled(done));
        return !m_window || !m_window->wasCanceled();
    }

    void restart(const QString& label, qint64 total) override
    {
        m_label = label;
        m_total = std::max<qint64>(total, 0);
        m_scale = std::max<qint64>(1, m_total / INT_MAX + 1);
        if (!m_window)
            return;
        m_window->setRange(0, std::max(1, scaled(m_total)));
        m_window->setLabelText(progressText(m_label, 0, m_total));
        m_window->setValue(0);
        m_sinceUpdate.invalidate();
    }

private:
    static constexpr int kShowAfterMs = 1000;
    static constexpr qint64 kUpdateMs = 80;

    int scaled(qint64 n) const { return int(std::clamp<qint64>(n, 0, m_total) / m_scale); }

    QPointer<ProgressWindow> m_window;
    QString m_label;
    qint64 m_total = 0;
    qint64 m_scale = 1;
    QElapsedTimer m_sinceUpdate;
};

} // namespace

Answer DialogInteraction::show(const Message& message)
{
    if (g_textViewer && isLongText(message.text)
        && (message.buttons == Buttons::Ok || message.buttons == Buttons::YesNo))
        return showInViewer(message);
    QMessageBox box(boxIcon(message.icon),
        message.title.isEmpty() ? QApplication::applicationDisplayName() : message.title, message.text,
        boxButtons(message.buttons), dialogOwner());
    box.setDefaultButton(boxButton(message.buttons == Buttons::Ok ? Answer::Ok : message.defaultAnswer));
    nameButtons(box);
    const int button = box.exec();
    if (button == QMessageBox::Escape || button == 0)
        return message.buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    return answerOf(button);
}

int DialogInteraction::exec(QDialog& dialog)
{
    // A dialog of its own (no parent) still opens over the window it belongs to.
    QWidget* owner = dialog.parentWidget() ? nullptr : dialogOwner();
    if (owner && owner != &dialog && owner->isVisible()) {
        dialog.adjustSize();
        dialog.move(owner->frameGeometry().center() - dialog.rect().center());
    }
    return dialog.exec();
}

std::unique_ptr<QFileDialog> fileChooser(const FileChoice& choice, QFileDialog::AcceptMode mode)
{
    auto dialog = std::make_unique<QFileDialog>(dialogOwner(), choice.title, choice.directory, qtFilter(choice.filter));
    dialog->setAcceptMode(mode);
#ifndef Q_OS_WIN
    // A desktop's own chooser runs inside this process and sniffs the folder's files.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
#endif
    dialog->setIconProvider(&quietFileIcons());
    quietenFileModels(dialog.get());
    if (mode == QFileDialog::AcceptSave) {
        dialog->setDefaultSuffix(choice.defaultSuffix);
        // The overwrite question is the program's own, worded as its users know it.
        dialog->setOption(QFileDialog::DontConfirmOverwrite);
    } else {
        dialog->setFileMode(QFileDialog::ExistingFile);
    }
    if (!choice.fileName.isEmpty())
        dialog->selectFile(choice.fileName);
    return dialog;
}

QString DialogInteraction::chooseSaveFile(const FileChoice& choice)
{
    const auto dialog = fileChooser(choice, QFileDialog::AcceptSave);
    return dialog->exec() == QDialog::Accepted ? dialog->selectedFiles().value(0) : QString();
}

QString DialogInteraction::chooseOpenFile(const FileChoice& choice)
{
    const auto dialog = fileChooser(choice, QFileDialog::AcceptOpen);
    return dialog->exec() == QDialog::Accepted ? dialog->selectedFiles().value(0) : QString();
}

bool DialogInteraction::startProgram(const QString& program, const QStringList& arguments)
{
    return QProcess::startDetached(program, arguments);
}

QWidget* dialogOwner()
{
    if (QWidget* modal = QApplication::activeModalWidget(); modal && modal->isVisible())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    QWidget* book = bookWindow();
    return book && book->isVisible() ? book : nullptr;
}

void setBookWindow(QWidget* window)
{
    bookWindow() = window;
}

std::unique_ptr<Progress> DialogInteraction::startProgress(const ProgressSpec& spec)
{
    return std::make_unique<WindowProgress>(spec);
}

void setTextViewer(TextViewer viewer)
{
    g_textViewer = viewer;
}

void ensureDialogInteraction()
{
    if (usingConsoleInteraction())
        setInteraction(std::make_unique<DialogInteraction>());
}

} // namespace knjige
