#pragma once

#include "editors/EditorRules.h"
#include "journal/Journal.h"
#include "session/db/Database.h"
#include "session/db/ResultSet.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <functional>

class QGridLayout;
class QVBoxLayout;

namespace knjige::editors
{

class MoneyBox;

// The loaded list of the browser and the row the editor was opened on; the row is -1
// when the editor was not opened on a row.
struct StavkaRef {
    const db::ResultSet* rs = nullptr;
    int row = -1;
};

// The record editor framework: one modal dialog per book kind that creates, changes,
// confirms the deletion of, or collects search values for one entry.
//
// Contract with the browser: set the mode (setTipRada), the book kind, sRedniBroj and
// for a new entry the proposed ubRBroj and dpDatum; call Prikaži, which returns when
// the dialog closes; then read IzišaoSaPrekidom (and, in search mode, the controls).
// Each save writes exactly one row through Database::writeRow; a failed check or a
// failed write keeps the dialog open with everything the operator typed.
class RecordEditor : public QDialog
{
    Q_OBJECT
public:
    ~RecordEditor() override;

    int TipRada() const { return m_tipRada; }
    // Sets the mode and the captions of the dialog and of cmdSpremi.
    void setTipRada(int mode);
    int TipSifarnika() const { return m_tip; }
    void setTipSifarnika(int bookKind);
    // The names under which the browser hands the book kind to the other editors.
    void setPTip(int bookKind) { setTipSifarnika(bookKind); }
    void setITipSifarnika(int bookKind) { setTipSifarnika(bookKind); }

    // The ordinal number the entry is read by; in change mode also the number it had
    // before the operator changed it.
    qint32 sRedniBroj = 0;
    StavkaRef rsStavke;

    // True from creation until a confirm action completes.
    bool IzišaoSaPrekidom() const { return m_izisaoSaPrekidom; }

    // Enables or disables every input control, then enables cmdSpremi and cmdPrekid.
    void SetEdit(bool enabled);
    // Copies the entry that was read into the controls (nothing when none was read).
    void NapuniPodatke();
    // Prepares the dialog for its mode, reads the entry and shows the dialog modally
    // through the interaction seam. The argument is the host's display mode; the
    // editor is always modal.
    void Prikaži(int modal = 1);
    // Runs once the dialog is prepared for its mode, just before it is shown: the
    // browser puts the filter in force back into a filter form here.
    std::function<void(RecordEditor&)> prijePrikaza;

    // Fills the fields of a new entry from a row of the browser's list (the "same
    // entry" copy); the ordinal number is left to the caller.
    virtual void PreuzmiStavku(const db::ResultSet& rs, int row) = 0;
    // The shop of the trade books; other editors have none and ignore it.
    virtual void setShop(qint32) { }

    // The controls every editor has.
    MoneyBox* ubRBroj = nullptr;
    QDateEdit* dpDatum = nullptr;
    QLabel* lblDatumDo = nullptr;
    QDateEdit* dpDatumDo = nullptr;
    QCheckBox* chkPoDatumima = nullptr;
    QPushButton* cmdSpremi = nullptr;
    QPushButton* cmdPrekid = nullptr;

    // The ordinal number the saved entry has in the table, for the browser to return
    // to; 0 when it is not known.
    virtual qint32 spremljeniRBroj() const;

    // A control by its objectName; nullptr when this editor has none.
    QWidget* control(const QString& name) const;
    // The statement of the last read, and the entry as read (empty for a new entry).
    QString readSql() const;
    const db::ResultSet& procitanaStavka() const { return m_stavka; }

protected:
    explicit RecordEditor(int bookKind, QWidget* parent = nullptr);

    // Layout helpers for the subclasses, called in screen order; the tab order follows.
    QLabel* addRow(const QString& caption, QWidget* field, QWidget* trailing = nullptr);
    QLineEdit* addTextRow(const QString& caption, const QString& name, const QString& column, int minWidth = 0);
    MoneyBox* addMoneyRow(const QString& caption, const QString& name, bool wholeNumbers = false);
    QComboBox* addComboRow(const QString& caption, const QString& name, const QStringList& items);
    void addNumberRow();
    void addDateRow();
    // Lays out the buttons and sets the tab order; the last step of a constructor.
    void finishLayout();
    QVBoxLayout* outerLayout() const { return m_outer; }
    void moveToTabEnd(QWidget* widget);
    // Puts a row's lookup button into the tab chain at its place on screen (after the
    // field of the row last added). Enter and the arrows pass over it.
    void addLookupButton(QPushButton* button);
    // Leaving one of these boxes with a negative amount warns, under "Napomena", with
    // the editor's own text; the amount is kept.
    void warnWhenNegative(std::initializer_list<MoneyBox*> boxes,
        const QString& text = QStringLiteral("Unesena vrijednost je negativna, pažljivo !"));
    // The caption label of a row's field.
    QLabel* labelFor(const QWidget* field) const;

    // The parts each editor fills in.
    virtual QString readStatement() const;
    virtual void fill(const db::ResultSet& rs) = 0;
    virtual editors::Findings checks() = 0;
    // The columns written in modes 1 and 2, in the order the system writes them.
    virtual db::RowChange::Values rowValues() const = 0;
    // Before a deletion: false stops it (the message already shown).
    virtual bool mayDelete() { return true; }
    // After a successful write, in its transaction; a text in m_writeError undoes both.
    virtual void afterWrite() { }
    QString m_writeError;
    // Loading for the mode, before the entry is read.
    virtual void prepare() { }
    // Adds the empty search entry to the editor's kind list, when it has one.
    virtual QComboBox* kindList() const { return nullptr; }

    // Reads a column of the entry into a control, NULL as empty.
    static QString textOf(const db::ResultSet& rs, const QString& column);
    static Money moneyOf(const db::ResultSet& rs, const QString& column);
    static qint64 integerOf(const db::ResultSet& rs, const QString& column);
    static QDate dateOf(const db::ResultSet& rs, const QString& column);
    // The same from a row of the browser's list; a missing column gives nothing.
    static QVariant cell(const db::ResultSet& rs, int row, const QString& column);

    // Shows a finding and moves the focus to its control; true when it refuses.
    bool report(const editors::Finding& finding);
    bool runChecks(const editors::Findings& findings);

    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    int m_tip = 0;
    bool m_vrstaLoaded = false;

private:
    void potvrdi();
    bool zapisi(QString* failure);
    journal::Scope journalScope(const db::RowChange& change) const;
    void procitaj();
    void onDateChanged();
    void setSearchDates();
    bool handleKey(QWidget* control, QKeyEvent* event);
    bool listKey(QComboBox* list, QKeyEvent* event);
    void moveFocus(bool next);
    bool numbersReadable();
    bool proposedNumber(const db::RowChange& change) const;
    bool saveUnderFreeNumber(const db::RowChange& change);

    int m_tipRada = 0;
    QString m_notice; // shown after a committed save
    bool m_izisaoSaPrekidom = true;
    bool m_quietDates = false;
    bool m_procitan = false;
    db::ResultSet m_stavka;
    QVBoxLayout* m_outer = nullptr;
    QGridLayout* m_grid = nullptr;
    int m_rows = 0;
    QList<QWidget*> m_tabChain;
    QList<QWidget*> m_lookupButtons;
    QString m_typedCode; // digits typed into a kind list in quick succession
    QElapsedTimer m_typedAt;
};

} // namespace knjige::editors
