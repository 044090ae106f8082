#include "editors/widgets/RecordEditor.h"

#include "books/BookKind.h"
#include "books/Schema.h"
#include "editors/widgets/MoneyBox.h"
#include "journal/PeriodLock.h"
#include "session/Clock.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/Workstation.h"
#include "session/widgets/DateTyping.h"
#include "session/widgets/SelectWholeText.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace knjige::editors
{

using namespace editors;

namespace
{

QDateEdit* makeDateEdit(QWidget* parent, const QString& name)
{
    auto* edit = new DateField(parent);
    edit->setObjectName(name);
    edit->setCalendarPopup(true);
    edit->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    edit->setDate(clock::today());
    typeDatesAsWritten(edit);
    return edit;
}

bool isInput(const QWidget* w)
{
    return qobject_cast<const QLineEdit*>(w) || qobject_cast<const QComboBox*>(w) || qobject_cast<const QCheckBox*>(w)
        || qobject_cast<const QDateEdit*>(w);
}

// An input control of the dialog itself, not the line edit inside a date picker or a
// combo box.
bool isControl(const QWidget* w)
{
    const QWidget* parent = w->parentWidget();
    return isInput(w) && !qobject_cast<const QAbstractSpinBox*>(parent) && !qobject_cast<const QComboBox*>(parent);
}

} // namespace

RecordEditor::RecordEditor(int bookKind, QWidget* parent)
    : QDialog(parent)
    , m_tip(bookKind)
{
    setModal(true);
    // Dates and amounts in the component's conventions, children included.
    setLocale(componentLocale());
    m_outer = new QVBoxLayout(this);
    m_grid = new QGridLayout;
    m_grid->setHorizontalSpacing(8);
    m_grid->setColumnStretch(2, 1);
    m_outer->addLayout(m_grid);

    ubRBroj = new MoneyBox(this, true);
    ubRBroj->setObjectName(QStringLiteral("ubRBroj"));
    ubRBroj->setMaximumWidth(110);
    dpDatum = makeDateEdit(this, QStringLiteral("dpDatum"));
    lblDatumDo = new QLabel(QStringLiteral("do:"), this);
    lblDatumDo->setObjectName(QStringLiteral("lblDatumDo"));
    dpDatumDo = makeDateEdit(this, QStringLiteral("dpDatumDo"));
    chkPoDatumima = new QCheckBox(QStringLiteral("Po datumima"), this);
    chkPoDatumima->setObjectName(QStringLiteral("chkPoDatumima"));
    for (QWidget* w :
        { static_cast<QWidget*>(lblDatumDo), static_cast<QWidget*>(dpDatumDo), static_cast<QWidget*>(chkPoDatumima) })
        w->setVisible(false);
    connect(dpDatum, &QDateEdit::dateChanged, this, &RecordEditor::onDateChanged);
    connect(dpDatumDo, &QDateEdit::dateChanged, this, &RecordEditor::onDateChanged);

    cmdSpremi = new QPushButton(QStringLiteral("Spremi"), this);
    cmdSpremi->setObjectName(QStringLiteral("cmdSpremi"));
    cmdPrekid = new QPushButton(QStringLiteral("Prekid"), this);
    cmdPrekid->setObjectName(QStringLiteral("cmdPrekid"));
    connect(cmdSpremi, &QPushButton::clicked, this, &RecordEditor::potvrdi);
    connect(cmdPrekid, &QPushButton::clicked, this, &QDialog::reject);
}

RecordEditor::~RecordEditor() = default;

// ---- layout ----

QLabel* RecordEditor::addRow(const QString& caption, QWidget* field, QWidget* trailing)
{
    auto* label = new QLabel(caption, this);
    label->setBuddy(field);
    m_grid->addWidget(label, m_rows, 0);
    if (trailing) {
        auto* line = new QHBoxLayout;
        line->addWidget(field);
        line->addWidget(trailing, 1);
        m_grid->addLayout(line, m_rows, 1, 1, 2);
    } else {
        m_grid->addWidget(
            field, m_rows, 1, 1, qobject_cast<QLineEdit*>(field) && !qobject_cast<MoneyBox*>(field) ? 2 : 1);
    }
    ++m_rows;
    m_tabChain << field;
    if (trailing && trailing->focusPolicy() != Qt::NoFocus)
        m_tabChain << trailing;
    return label;
}

QLineEdit* RecordEditor::addTextRow(const QString& caption, const QString& name, const QString& column, int minWidth)
{
    auto* edit = new QLineEdit(this);
    edit->setObjectName(name);
    const int width = books::textColumnWidth(entryTable(m_tip), column);
    if (width > 0)
        edit->setMaxLength(width);
    if (minWidth > 0)
        edit->setMinimumWidth(minWidth);
    addRow(caption, edit);
    return edit;
}

MoneyBox* RecordEditor::addMoneyRow(const QString& caption, const QString& name, bool wholeNumbers)
{
    auto* box = new MoneyBox(this, wholeNumbers);
    box->setObjectName(name);
    box->setMinimumWidth(130);
    box->setMaximumWidth(160);
    addRow(caption, box);
    return box;
}

QComboBox* RecordEditor::addComboRow(const QString& caption, const QString& name, const QStringList& items)
{
    auto* combo = new QComboBox(this);
    combo->setObjectName(name);
    combo->addItems(items);
    combo->setCurrentIndex(-1);
    addRow(caption, combo);
    return combo;
}

void RecordEditor::addNumberRow()
{
    addRow(QStringLiteral("Redni broj:"), ubRBroj);
}

void RecordEditor::addDateRow()
{
    auto* range = new QWidget(this);
    auto* line = new QHBoxLayout(range);
    line->setContentsMargins(0, 0, 0, 0);
    line->addSpacing(6);
    line->addWidget(lblDatumDo);
    line->addWidget(dpDatumDo);
    line->addWidget(chkPoDatumima);
    line->addStretch(1);
    range->setFocusPolicy(Qt::NoFocus);
    addRow(QStringLiteral("Datum:"), dpDatum, range);
    m_tabChain << dpDatumDo << chkPoDatumima;
}

void RecordEditor::finishLayout()
{
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(cmdSpremi, QDialogButtonBox::AcceptRole);
    buttons->addButton(cmdPrekid, QDialogButtonBox::RejectRole);
    // The buttons act through their own clicked handlers, never through the box.
    disconnect(buttons, nullptr, this, nullptr);
    m_outer->addSpacing(6);
    m_outer->addWidget(buttons);
    m_tabChain << cmdSpremi << cmdPrekid;
    for (int i = 1; i < m_tabChain.size(); ++i)
        setTabOrder(m_tabChain[i - 1], m_tabChain[i]);
    for (QWidget* w : findChildren<QWidget*>())
        if (isControl(w) || qobject_cast<QPushButton*>(w))
            w->installEventFilter(this);
    selectWholeTextOnFocus(this);
    setSizeGripEnabled(false);
}

void RecordEditor::addLookupButton(QPushButton* button)
{
    m_tabChain << button;
    m_lookupButtons << button;
}

void RecordEditor::warnWhenNegative(std::initializer_list<MoneyBox*> boxes, const QString& text)
{
    for (MoneyBox* box : boxes)
        connect(box, &MoneyBox::left, this, [box, text] {
            if (box->value().isNegative())
                inform(text, QStringLiteral("Napomena"), Icon::Exclamation);
        });
}

void RecordEditor::moveToTabEnd(QWidget* widget)
{
    m_tabChain.removeAll(widget);
    m_tabChain << widget;
    for (int i = 1; i < m_tabChain.size(); ++i)
        setTabOrder(m_tabChain[i - 1], m_tabChain[i]);
}

QLabel* RecordEditor::labelFor(const QWidget* field) const
{
    for (QLabel* label : findChildren<QLabel*>())
        if (label->buddy() == field)
            return label;
    return nullptr;
}

QWidget* RecordEditor::control(const QString& name) const
{
    return findChild<QWidget*>(name);
}

// ---- mode and book kind ----

void RecordEditor::setTipRada(int mode)
{
    m_tipRada = mode;
    const QString caption = modeCaption(mode, m_tip);
    if (!caption.isEmpty()) {
        setWindowTitle(caption);
        cmdSpremi->setText(confirmCaption(mode));
    }
}

void RecordEditor::setTipSifarnika(int bookKind)
{
    m_tip = bookKind;
    if (m_tipRada != 0)
        setTipRada(m_tipRada);
}

// ---- showing ----

void RecordEditor::SetEdit(bool enabled)
{
    for (QWidget* w : findChildren<QWidget*>()) {
        if (isControl(w))
            w->setEnabled(enabled);
        else if (auto* button = qobject_cast<QPushButton*>(w))
            button->setEnabled(enabled);
    }
    cmdSpremi->setEnabled(true);
    cmdPrekid->setEnabled(true);
}

void RecordEditor::setSearchDates()
{
    const auto [from, to] = searchPeriod(clock::today(), session().RadnaGodina);
    m_quietDates = true;
    dpDatumDo->setDate(to);
    dpDatum->setDate(from);
    m_quietDates = false;
}

void RecordEditor::onDateChanged()
{
    if (!m_quietDates)
        chkPoDatumima->setChecked(true);
}

void RecordEditor::Prikaži(int)
{
    prepare();
    // The filter hides the ordinal number; its caption goes with it.
    if (QLabel* label = labelFor(ubRBroj))
        label->setVisible(!ubRBroj->isHidden());
    if (m_tipRada == Pretrazivanje) {
        lblDatumDo->setVisible(true);
        dpDatumDo->setVisible(true);
        chkPoDatumima->setVisible(true);
        setSearchDates();
        if (QComboBox* list = kindList()) {
            if (list->count() == 0 || !list->itemText(list->count() - 1).isEmpty())
                list->addItem(QString());
            list->setCurrentIndex(list->count() - 1);
        }
    } else {
        procitaj();
        NapuniPodatke();
    }
    if (m_tipRada == Brisanje) {
        SetEdit(false);
        cmdSpremi->setFocus();
    }
    if (prijePrikaza)
        prijePrikaza(*this);
    interaction().exec(*this);
}

QString RecordEditor::readStatement() const
{
    const Session& s = session();
    return readEntrySql(m_tip, s.RadnaGodina, s.BrojPoduzeca, sRedniBroj);
}

QString RecordEditor::readSql() const
{
    return readStatement();
}

void RecordEditor::procitaj()
{
    db::Database& db = session().db();
    m_procitan = false;
    db::ResultSet rs;
    if (!db.open(readStatement(), rs)) {
        inform(failureText(QStringLiteral(" Čitanje tek.zapisa "), db.errorDescription()));
        return;
    }
    // Two entries may share a number: the one the browser's row shows is meant.
    const int row = matchingRow(rs, rsStavke.rs, rsStavke.row);
    m_stavka = singleRow(rs, row);
    m_procitan = row >= 0;
}

void RecordEditor::NapuniPodatke()
{
    if (m_procitan)
        fill(m_stavka);
}

// ---- reading columns ----

QString RecordEditor::textOf(const db::ResultSet& rs, const QString& column)
{
    const int c = rs.indexOf(column);
    return c < 0 || rs.isNull(0, c) ? QString() : rs.text(0, c);
}

Money RecordEditor::moneyOf(const db::ResultSet& rs, const QString& column)
{
    const int c = rs.indexOf(column);
    return c < 0 || rs.isNull(0, c) ? Money() : rs.money(0, c);
}

qint64 RecordEditor::integerOf(const db::ResultSet& rs, const QString& column)
{
    const int c = rs.indexOf(column);
    return c < 0 || rs.isNull(0, c) ? 0 : rs.integer(0, c);
}

QDate RecordEditor::dateOf(const db::ResultSet& rs, const QString& column)
{
    const int c = rs.indexOf(column);
    return c < 0 || rs.isNull(0, c) ? QDate() : rs.date(0, c);
}

QVariant RecordEditor::cell(const db::ResultSet& rs, int row, const QString& column)
{
    const int c = rs.indexOf(column);
    if (c < 0 || row < 0 || row >= rs.rowCount() || rs.isNull(row, c))
        return {};
    return rs.value(row, c);
}

// ---- confirming ----

bool RecordEditor::report(const Finding& finding)
{
    const QString title = finding.warning ? QStringLiteral("Napomena") : finding.title;
    interaction().show({ finding.text, title, finding.icon, Buttons::Ok, Answer::Ok });
    if (finding.warning)
        return false;
    if (QWidget* target = control(finding.focus))
        target->setFocus();
    return true;
}

bool RecordEditor::runChecks(const Findings& findings)
{
    for (const Finding& f : findings)
        if (report(f))
            return false;
    return true;
}

void RecordEditor::potvrdi()
{
    if (!typedDatesHold(this))
        return;
    switch (m_tipRada) {
    case Novi:
    case Izmjena:
        if (!numbersReadable() || !runChecks(checks()))
            return;
        break;
    case Pretrazivanje:
        if (!runChecks(checkSearchPeriod(dpDatum->date(), dpDatumDo->date())))
            return;
        m_izisaoSaPrekidom = false;
        accept();
        return;
    case Brisanje:
        if (!mayDelete())
            return;
        break;
    default:
        return;
    }
    // The entry, what follows from it and its journal record stand or fall together;
    // a refusal is shown after the rollback, so no lock waits on the person.
    QString failure;
    m_notice.clear();
    {
        db::Database& db = session().db();
        db::TransactionGuard tx(db);
        m_writeError.clear();
        if (zapisi(&failure)) {
            afterWrite();
            failure = m_writeError;
            if (failure.isEmpty() && !tx.commit())
                failure = db.errorDescription();
        }
    }
    if (!failure.isEmpty()) {
        warn(failure);
        return;
    }
    if (!m_notice.isEmpty())
        inform(m_notice, QStringLiteral("Napomena"), Icon::Exclamation);
    m_izisaoSaPrekidom = false;
    accept();
}

// Every number box must say exactly one number before any check runs: text left
// incomplete is refused, never read as something else. Typing cannot take a
// whole-number box out of its range or give it a fraction; a value set from elsewhere
// is refused here rather than narrowed on the way to the table.
bool RecordEditor::numbersReadable()
{
    for (MoneyBox* box : findChildren<MoneyBox*>()) {
        if (box->isHidden())
            continue;
        QString problem;
        if (!box->isReadable())
            problem = QStringLiteral("Broj \"%1\" nije moguće pročitati.\n").arg(box->text().trimmed())
                + readAmount(box->text(), box->conventions(), box->limits()).problem;
        else if (!box->problem().isEmpty())
            // A refused keystroke leaves the box saying less than was typed.
            problem
                = QStringLiteral("Dio upisa u polje nije prihvaćen (ostalo je \"%1\").\n").arg(box->text().trimmed())
                + box->problem() + QStringLiteral("\nIspravite broj u polju.");
        else if (box->value().units() % Money::Scale != 0 && box->isWholeNumber())
            problem = QStringLiteral("Ovdje se upisuje cijeli broj, bez decimala.");
        else if (!box->inRange())
            problem = QStringLiteral("Broj mora biti između ") + QString::number(box->minimum()) + QStringLiteral(" i ")
                + QString::number(box->maximum()) + QStringLiteral("!");
        if (problem.isEmpty())
            continue;
        warn(problem);
        box->setFocus();
        return false;
    }
    return true;
}

qint32 RecordEditor::spremljeniRBroj() const
{
    return ubRBroj->inRange() ? qint32(ubRBroj->integerValue()) : 0;
}

// A new entry carrying the number the browser (or the shop) proposed, unchanged by
// the operator: someone else may have taken it while the dialog was open.
bool RecordEditor::proposedNumber(const db::RowChange& change) const
{
    if (change.kind != db::RowChange::Kind::Insert || ubRBroj->typedByPerson())
        return false;
    for (const auto& value : change.values)
        if (value.first == QLatin1String("RBroj"))
            return true;
    return false;
}

bool RecordEditor::saveUnderFreeNumber(const db::RowChange& change)
{
    db::NumberSlot slot { QStringLiteral("RBroj"), { QStringLiteral("BrojPoduzeca"), QStringLiteral("GodinaKnj") } };
    if (books::isTradeBook(m_tip))
        slot.scope << QStringLiteral("BrojProd");
    const qint64 proposed = ubRBroj->integerValue();
    qint64 saved = 0;
    if (!session().db().insertUnderFreeNumber(change, slot, &saved))
        return false;
    if (saved != proposed) {
        ubRBroj->setValue(Money::fromWhole(saved));
        // Told once the save is committed: no lock waits while the person reads it.
        m_notice = QStringLiteral("Redni broj %1 je u međuvremenu dobila stavka koju je upisao drugi korisnik.\n"
                                  "Ova stavka je spremljena pod sljedećim slobodnim rednim brojem: %2.")
                       .arg(proposed)
                       .arg(saved);
    }
    return true;
}

bool RecordEditor::zapisi(QString* failure)
{
    db::RowChange change;
    change.table = entryTable(m_tip);
    if (m_tipRada == Novi) {
        change.kind = db::RowChange::Kind::Insert;
        change.values = rowValues();
    } else {
        change.kind = m_tipRada == Izmjena ? db::RowChange::Kind::Update : db::RowChange::Kind::Delete;
        if (m_tipRada == Izmjena)
            change.values = rowValues();
        // The row exactly as it was read: every column of it.
        if (m_procitan)
            for (int c = 0; c < m_stavka.fieldCount(); ++c)
                change.original.append({ m_stavka.field(c).name, m_stavka.value(0, c) });
    }
    db::Database& db = session().db();
    const journal::Scope scope = journalScope(change);
    QString error;
    QList<QDate> dates;
    for (const auto& [column, value] : change.values + change.original)
        if (column.compare(QLatin1String("Datum"), Qt::CaseInsensitive) == 0)
            dates << value.toDate();
    if (change.kind != db::RowChange::Kind::Insert && change.original.isEmpty())
        error = QStringLiteral("Stavka nije pročitana iz baze podataka.");
    else if (const QString locked = journal::periodlock::refuseDates(db, scope, dates); !locked.isEmpty()) {
        *failure = locked;
        return false;
    } else if (journal::ensureBaseline(db, scope, &error)
        && !(proposedNumber(change) ? saveUnderFreeNumber(change) : db.writeRow(change)))
        error = db.errorDescription();
    else if (error.isEmpty()) {
        // A new entry may have been saved under another free number than proposed.
        for (auto& [column, value] : change.values)
            if (column == QLatin1String("RBroj") && change.kind == db::RowChange::Kind::Insert)
                value = spremljeniRBroj();
        if (journal::appendRowChange(db, scope, change, &error))
            return true;
    }
    *failure = QStringLiteral("Desila se greška u spremanju stavke. Promjene nisu prihvaćene!") + u'\n' + error;
    return false;
}

journal::Scope RecordEditor::journalScope(const db::RowChange& change) const
{
    const Session& s = session();
    journal::Scope scope { m_tip, s.BrojPoduzeca, s.RadnaGodina, 0 };
    for (const auto& [column, value] : change.values + change.original)
        if (column.compare(QLatin1String("BrojProd"), Qt::CaseInsensitive) == 0)
            scope.brojProd = value.toInt();
    return scope;
}

// ---- keys ----

bool RecordEditor::handleKey(QWidget* control, QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        if (cmdSpremi->isEnabled())
            cmdSpremi->click();
        return true;
    }
    if (key == Qt::Key_Escape) {
        reject();
        return true;
    }
    if (!isInput(control))
        return false;
    if (auto* list = qobject_cast<QComboBox*>(control); list && listKey(list, event))
        return true;
    const bool textCheckOrCombo
        = qobject_cast<QLineEdit*>(control) || qobject_cast<QCheckBox*>(control) || qobject_cast<QComboBox*>(control);
    if (key == Qt::Key_Return || key == Qt::Key_Enter || (key == Qt::Key_Down && textCheckOrCombo)) {
        moveFocus(true);
        return true;
    }
    if (key == Qt::Key_Up) {
        moveFocus(false);
        return true;
    }
    return false;
}

// A kind list opens with Alt+Down or F4 (Down alone moves on, as in every field) and
// takes the kind's code typed, whatever blank its text begins with.
bool RecordEditor::listKey(QComboBox* list, QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_F4 || ((key == Qt::Key_Down || key == Qt::Key_Up) && (event->modifiers() & Qt::AltModifier))) {
        list->showPopup();
        return true;
    }
    const QString typed = event->text();
    if (typed.size() != 1 || !typed.front().isDigit() || typed.front().unicode() > 127)
        return false;
    if (!m_typedAt.isValid() || m_typedAt.elapsed() > QApplication::keyboardInputInterval())
        m_typedCode.clear();
    m_typedAt.start();
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->itemText(i);
    int position = vrstaTyped(texts, m_typedCode + typed);
    if (position >= 0) {
        m_typedCode += typed;
    } else {
        // A digit that continues no code starts a new one.
        m_typedCode = typed;
        position = vrstaTyped(texts, m_typedCode);
    }
    if (position >= 0)
        list->setCurrentIndex(position);
    return true;
}

void RecordEditor::moveFocus(bool next)
{
    // Bounded: the chain holds more than the lookup buttons.
    for (int step = 0; step <= m_lookupButtons.size(); ++step) {
        if (next)
            focusNextChild();
        else
            focusPreviousChild();
        if (!m_lookupButtons.contains(focusWidget()))
            return;
    }
}

bool RecordEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        auto* control = qobject_cast<QWidget*>(watched);
        if (control && control->window() == this && handleKey(control, static_cast<QKeyEvent*>(event)))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}

void RecordEditor::keyPressEvent(QKeyEvent* event)
{
    if (handleKey(this, event))
        return;
    QDialog::keyPressEvent(event);
}

} // namespace knjige::editors
