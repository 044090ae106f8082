#pragma once

#include "session/db/Database.h"

#include <QString>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;

namespace knjige::host
{

// What a host hands to a book object before it calls Show.
struct BookRequest {
    QString connString;
    qint16 company = 1;
    qint16 year = 0;
    QString operatorName;
    QString level = QStringLiteral("0");
};

// Opens one book exactly as a host does: creates the public class by its
// programmatic identifier, sets ConnString, RadnaGodina, BrojPoduzeca and Pozvan
// (false: the browser lives on by itself) and calls Show. Returns the browser window
// that appeared, or null when the book was refused or the code is not a book.
QWidget* openBook(int bookCode, const BookRequest& request);

// The company's name from dbo.CONFIG, empty when the row or the table is missing.
QString companyName(db::Database& db, qint16 company);

// The host's window: the twelve books grouped by entity, the session values a host
// passes on (company, working year, operator, access level) and "Otvori".
class BookChooser final : public QWidget
{
    Q_OBJECT
public:
    explicit BookChooser(const BookRequest& defaults, QWidget* parent = nullptr);

    // The captions of the books in list order.
    QStringList captions() const;
    // Selects a book by its code; false for a code that is not listed.
    bool selectBook(int code);
    // The code of the selected book, 0 when a group heading or nothing is selected.
    int selectedBook() const;
    BookRequest request() const;

    // Opens the selected book with the values in the fields and remembers them for
    // the next start. Returns the browser window, or null.
    QWidget* Otvori();

    // The values remembered from the last opening, laid over `defaults` where the
    // caller did not give a value of its own (`given` names the fields it gave:
    // "company", "operator", "level").
    static BookRequest remembered(BookRequest defaults, const QStringList& given);

private:
    void buildList();
    QWidget* buildSessionBox();
    void showCompanyName();
    void showBookDetails();
    void remember() const;

    db::Database m_db; // the host's own connection, for the company name
    QString m_connString;
    QLabel* m_title;
    QLabel* m_database;
    QTreeWidget* m_books;
    QLabel* m_details;
    QSpinBox* m_company;
    QLabel* m_companyName;
    QSpinBox* m_year;
    QLineEdit* m_operator;
    QComboBox* m_level;
};

} // namespace knjige::host
