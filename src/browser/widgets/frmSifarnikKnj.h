#pragma once

#include "browser/BookModel.h"
#include "browser/BookQuery.h"

#include <QDate>
#include <QDialog>
#include <QVariant>
#include <QVector>
#include <optional>

class QAction;
class QLineEdit;
class QMenu;
class QPushButton;
class QToolBar;
class QTreeWidget;

namespace knjige::browser
{

class BookGrid;
class BookGridModel;

// The one window in which every book is kept. The entry classes create it, set
// TipSifarnika and call Prikaži; everything the operator does with a book happens here.
//
// The command menu `mnu` has eight entries (1 new, 2 change, 3 delete, 4 filter,
// 5 refresh, 6 print, 7 close, 8 transfer); the toolbar and the grid's keys only forward
// to it, and an entry runs only while it is enabled. Commands that act on the current
// entry do nothing while a totals row is current.
class frmSifarnikKnj final : public QDialog
{
    Q_OBJECT
public:
    explicit frmSifarnikKnj(QWidget* parent = nullptr);
    ~frmSifarnikKnj() override;

    // --- Opening --------------------------------------------------------------------
    // Sets the book kind (with the query it opens with), the caption (for the codes of
    // the catalogue; any other code keeps the caption) and the options read from the
    // settings.
    void setTipSifarnika(int kod);
    int TipSifarnika() const { return m_query.bookKind; }
    // Loads the book and shows the window: mode 0 beside the host (returns at once),
    // mode 1 modal (returns when the window closes). `extra` is unused by the books.
    void Prikaži(int mode, const QVariant& extra = {});
    // Whether the last Prikaži got past the access check and showed the window.
    bool jePrikazan() const { return m_prikazan; }
    int displayMode() const { return m_nacinPrikaza; }

    // --- The rows ---------------------------------------------------------------------
    // Re-reads the rows with the current query, keeping the sort order and the current
    // entry (or going to the query's returnTo when it is set).
    void OsvjeziZapise();
    // What selects the book's rows; the filter, the panel, printing, export, the
    // renumberings and the journal all take it from here.
    const browser::BookQuery& query() const { return m_query; }
    // Puts another query in force for the next OsvjeziZapise (the book kind stays).
    void setQuery(const browser::BookQuery& query);
    // The sales point of a trade book in force; 0: none.
    qint32 BrojProd() const { return m_query.salesPoint(); }
    const db::ResultSet& rsStavke() const;
    BookModel& model();
    BookGrid& grid() { return *m_fg; }
    // The result set row of the grid's current row; -1 on a totals row or with no rows.
    int trenutniRed() const;
    // RBroj of the current entry; 0 when no entry is current.
    qint32 trenutniRBroj() const;
    bool jeRedUkupno(int modelRow) const;
    // Makes a result set row current and scrolls it into view.
    void postaviTrenutniRed(int dataRow);

    // --- Operations (each also reachable from a menu entry) -------------------------
    void NoviZapis();
    // mode 2 changes the current entry, mode 4 asks to delete it.
    void IzmjenaZapisa(int mode);
    // A new entry filled from the current one (mnuIstaStavka).
    void IstaStavka();
    // Deletes every entry the list shows (mnuBrisPrikPod).
    void BrisanjePrikazanihPodataka();
    // Asks for the filter in the book's editor (filter mode) and, when confirmed,
    // replaces the whole filter and reloads. Cancelled, the rows and the WHERE clause
    // stay, but the description and the period are back to the whole year.
    void PostaviFilter();
    // Puts a filter in force (WHERE clause, conditions, description, period, and the
    // sales point when it names one) and reloads.
    void applyFilter(const browser::FilterState& filter);
    void IspišiZapise();
    void ProvjeraNumeracije();
    void ReNumeracijaPoDatumu();
    void UbaciZapis();
    void generateOpeningState();
    // The book check's report in the text viewer (mnuProvjeraKnjige).
    void ProvjeraKnjige();
    // Closes (or, with a reason, opens) the book's period; operators of level 0 only
    // (mnuZakljucajRazdoblje).
    void lockPeriod();
    void Generiranje(int vrsta);
    void PrebaciUExcel();
    void Rekapitulacija();
    // Saves the whole grid as a workbook (cmdFG).
    void SpremiGrid();

    // --- Commands ---------------------------------------------------------------------
    // Runs command `index` (1 to 8) of `mnu` when it is enabled.
    void mnu_Click(int index);
    // The grid's keys; true when the key belongs to a command (the key is swallowed).
    bool fg_KeyDown(int key);
    // A click on the header of grid column `gridColumn` (field gridColumn - 1).
    void fg_HeaderClick(int gridColumn);

    QAction* mnu(int index) const;
    // Toolbar button `number`, one-based over the toolbar's buttons (separators count).
    QAction* toolbarButton(int number) const;
    QAction* menuItem(const QString& objectName) const;

    // Transfer mode: command 8 hands the current entry back (PreneseniRBroj) and closes.
    bool Prijenos() const { return m_prijenos; }
    void setPrijenos(bool on);
    qint32 PreneseniRBroj = 0;

    // What the filter form held when the filter in force was confirmed; the next
    // filter form opens with it.
    std::optional<browser::FilterInput> UnosFiltera;
    bool KoristiNoviPrikaz = true;

signals:
    // Emitted when a command of `mnu` is about to run.
    void naredba(int index);

protected:
    void done(int result) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void napraviIzbornike();
    void napraviAlatnuTraku();
    void napraviRaspored();
    void postaviIzbornikeKnjige();
    bool ProvjeraPristupa();
    void disableGroup(int group);
    void primijeniNivoPristupa();
    void citajPostavke();
    void primijeniPrikaz();
    void vratiPoziciju();
    void spremiPoziciju();
    void setColumnWidths();
    void osvjeziOznakuSorta();
    void OsvjeziStanje();
    int redZaOznaku() const;
    void notYetAvailable(const QString& what);
    QString postavkeAplikacija() const { return windowTitle(); }

    browser::BookQuery m_query;
    int m_nacinPrikaza = 0;
    bool m_prikazan = false;
    bool m_prijenos = false;
    bool m_sirinePostavljene = false;
    int m_velNazivaSifri = 3500;

    BookGrid* m_fg = nullptr;
    BookGridModel* m_model = nullptr;
    QToolBar* m_toolbar = nullptr;
    QLineEdit* m_txtFilter = nullptr;
    QPushButton* m_cmdFG = nullptr;
    QTreeWidget* m_lvStanje = nullptr;
    QVector<QAction*> m_mnu; // index 1..8; [0] unused
    QVector<QAction*> m_tbButtons; // index 1..10; [0] unused
    QMenu* m_mnuGen = nullptr;
};

} // namespace knjige::browser
