#pragma once

#include "session/Failure.h"

#include <QDate>
#include <QString>

namespace knjige::generate
{

// The seven ways of filling the DB income and expense book (109), by the index of
// their item in the browser's generation menu.
enum Vrsta {
    DgpRacuni = 0, // daily takings: outgoing invoices of kind 'DGP'
    UplateIzlaznih = 1, // payments of outgoing invoices
    UlazniRacuni = 2, // incoming invoices of one supplier
    UplateUlaznih = 3, // payments of incoming invoices, one supplier excluded
    MatOtpremnice = 4, // internal dispatch notes of the wholesale warehouse
    PosOtpremnice = 5, // internal dispatch notes of the retail shops
    PosPovrat = 6, // the same, written with negated amounts
};
constexpr int BrojVrsta = 7;

// What a person reads for one kind: the dialog's captions and the run's messages.
struct OpisVrste {
    QString naslov; // dialog caption (also the menu item's text)
    QString oznakaServera; // above the server and database fields
    QString uputa; // the date-range prompt
    QString oznakaDobavljaca; // kinds 2, 3
    QString oznakaMjesta; // kinds 4 to 6: warehouse or shop
    QString oznakaPrimatelja; // kinds 4 to 6: who receives
    QString kljucServera; // settings keys under "Arbosa", "Settings"
    QString kljucBaze;
    QString readError; // the source rows could not be read
    QString nemaPodataka; // the source has no rows for the filter
    QString upitBroja; // follows "Postoje " + count
};

// Valid for 0 to BrojVrsta - 1 only.
const OpisVrste& opisVrste(int vrsta);
bool valjanaVrsta(int vrsta);
bool imaOrgJedinicu(int vrsta); // 0 to 3
bool hasSupplier(int vrsta); // 2, 3
bool hasShop(int vrsta); // 4 to 6: place and receiver

// One run as the dialog collects it. The texts are as typed; provjeri() tells whether
// they can be used.
struct Parametri {
    int vrsta = DgpRacuni;
    QDate od;
    QDate doDatuma;
    qint16 brojPoduzeca = 0;
    qint16 godina = 0;
    QString orgJed;
    QString supplier;
    QString shop; // empty: every warehouse or shop the operator has a right to
    QString prima;
    QString operater; // the system user name, at most 10 characters
    QString izvor; // connection string of the source database
};

// What the OK button's checks make of a run, without showing anything: the first
// check that fails, in their order, is its refusal; a run for every warehouse or shop
// the operator has a right to is asked about first (default No). Touches no database.
struct Check {
    QString refusal; // empty: every check holds
    QString question; // empty: nothing to ask
};
Check provjeri(const Parametri& p);

// The texts of a run; they expect parameters that passed provjeri().
QString izvorniUpit(const Parametri& p);
QString uvjetPrava(int vrsta, const QString& operater);
QString pitanjePotvrde(const Parametri& p);
QString zadnjiBrojUpit(qint16 brojPoduzeca, qint16 godina);

// The entry kind (Vrsta) a source row becomes. Incoming invoices (2) are expenses in
// kind, 11 "Rashod - U stvarima": the one supplier whose invoices are taken is the one
// settled by compensation, not in money. Payments of incoming invoices (3) are money
// expenses: 9 "Rashod - U gotovini" when the payment's document is a cash desk slip
// (its number begins with "BL"), otherwise 10 "Rashod - Žiro račun", a payment through
// the bank. `brojDokumenta` is read for kind 3 only.
int vrstaStavke(int vrsta, const QString& brojDokumenta = {});

struct Rezultat {
    int zapisano = 0; // entries written to the book
    bool izvorOtvoren = false; // the source connection was made
    Notice poruka; // how the run ended: a failure, "nothing to generate" or the success
};

// Runs one generation: the confirmation, the book's last number, the source rows on
// a connection of their own, the count question, then one new entry per source row
// on the session's database, numbered on from the book's last entry. Before writing
// it asks whether to write again the documents the book already holds from an
// earlier run (default No: they are left out) and whether to leave out the entries
// whose year is not the working year (default Yes); entries left out take no number.
// The questions go through the seam as the run reaches them; the message the run ends
// with (a failure, an empty source, the success) is returned in `poruka` for the
// caller to tell. Every failure and every "No" to the first two questions ends the
// run; entries already written stay.
Rezultat generiraj(const Parametri& p);

} // namespace knjige::generate
