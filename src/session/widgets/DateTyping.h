#pragma once

#include <QDateEdit>
#include <QString>

class QDateTimeEdit;
class QWidget;

namespace knjige
{

// Lets a date be typed as it is written, "15.03.2016": a date picker moves on to the
// next part by itself once a part is full, and the separator typed right after that is
// taken as already done instead of skipping a further part. Dates typed without
// separators ("15032016") work as before.
void typeDatesAsWritten(QDateTimeEdit* edit);

// The date picker of every window. It keeps exactly the date a person types, whatever
// date it showed before. Qt's picker cuts a day that the month it still shows lacks
// ("31" while it shows November becomes 30) and keeps the cut day when the month is
// typed next, so 31.03 was stored as 30.03. Here the day typed is remembered and put
// back as soon as the month and year typed let it be; a date that does not exist
// (29.02.2027) leaves the field marked in red and is refused, with the date as typed,
// when the window is confirmed (typedDateProblem); it never becomes another date.
class DateField : public QDateEdit
{
    Q_OBJECT
public:
    explicit DateField(QWidget* parent = nullptr);

    QValidator::State validate(QString& input, int& pos) const override;
    void fixup(QString& input) const override;

    // Empty when the field holds the date typed; otherwise the message that names it.
    QString typedDateProblem() const;

private:
    void restoreTypedDay(const QString& typed, QString& input) const;
    void markTyped();

    // The day typed that the picker had to cut, until the month and year let it be;
    // 0 when there is none.
    mutable int m_typedDay = 0;
    mutable int m_shownDay = 0;
    mutable QString m_validated; // the text last checked as typed
};

// Shows the first date field under `root` whose text is no date (a visible one only),
// moves the focus there and returns false; true when every date field holds its date.
bool typedDatesHold(QWidget* root);

} // namespace knjige
