#pragma once

#include "KnjigeExport.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <memory>

namespace knjige::entry
{

// A public book class: what a host creates to open one book. The four properties are
// the object's own; writing ConnString, RadnaGodina or BrojPoduzeca also writes the
// process-wide session at once, so the last value written by any object is what every
// window uses. Reading always gives the object's own copy.
class KNJIGE_EXPORT KnjigaKlasa
{
public:
    virtual ~KnjigaKlasa() = default;

    // Opens the book's browser for the operator. `level` is the access level as a
    // one-digit text; `operatorName` goes to the rights service. With Pozvan set the
    // call returns when the browser closes; otherwise the window lives on by itself.
    void Show(QString level, const QString& operatorName);

    bool Pozvan() const { return m_pozvan; }
    void setPozvan(bool value) { m_pozvan = value; }
    QString ConnString() const { return m_connString; }
    void setConnString(const QString& value);
    qint16 RadnaGodina() const { return m_radnaGodina; }
    void setRadnaGodina(qint16 value);
    qint16 BrojPoduzeca() const { return m_brojPoduzeca; }
    void setBrojPoduzeca(qint16 value);

    qint16 kodKnjige() const { return m_kod; }
    QString className() const;

protected:
    explicit KnjigaKlasa(qint16 kod)
        : m_kod(kod)
    {
    }

private:
    qint16 m_kod;
    bool m_pozvan = false;
    QString m_connString;
    qint16 m_radnaGodina = 0;
    qint16 m_brojPoduzeca = 0;
};

#define KNJIGE_BOOK_CLASS(Name, Code)                                                                                  \
    class Name final : public KnjigaKlasa                                                                              \
    {                                                                                                                  \
    public:                                                                                                            \
        Name()                                                                                                         \
            : KnjigaKlasa(Code)                                                                                        \
        {                                                                                                              \
        }                                                                                                              \
    };

KNJIGE_BOOK_CLASS(clsKnjPrihRashFBiH, 96)
KNJIGE_BOOK_CLASS(clsKnjEvidPotObvFBiH, 97)
KNJIGE_BOOK_CLASS(clsKnjPrometaFBiH, 98)
KNJIGE_BOOK_CLASS(clsKnjPrihodaRS, 99)
KNJIGE_BOOK_CLASS(clsKnjRashodaRS, 100)
KNJIGE_BOOK_CLASS(clsPopListaDImovineRS, 101)
KNJIGE_BOOK_CLASS(clsKnjEvidPotObvRS, 102)
KNJIGE_BOOK_CLASS(clsPopListaDImovineFBiH, 105)
KNJIGE_BOOK_CLASS(clsKnjPrometaRS, 106)
KNJIGE_BOOK_CLASS(clsKnjPrihRashDB, 109)
KNJIGE_BOOK_CLASS(clsTrgKnjUsluga, 125)
KNJIGE_BOOK_CLASS(clsTrgKnjKomisiona, 126)

#undef KNJIGE_BOOK_CLASS

// Creates a book class by its programmatic identifier, "ArbosaPOSKnjige17." + the
// class name (case-insensitive, as such identifiers are). Unknown names give null.
KNJIGE_EXPORT std::unique_ptr<KnjigaKlasa> createBookObject(const QString& programmaticId);
// The identifiers of all twelve classes, in the order of their book codes.
KNJIGE_EXPORT QStringList bookObjectIds();
// The component's version as a host may show it in an about box.
KNJIGE_EXPORT QString componentVersion();

} // namespace knjige::entry
