#include "books/BookKind.h"

namespace knjige::books
{
namespace
{

// The browser's SELECT texts. They are sent to the server exactly as they stand,
// blanks and letter case included.
const QString kSelect96 = QStringLiteral(
    "SELECT K.RBroj,K.GodinaKnj,K.Datum,K.Isprava,K.Opis,K.Vrsta,CASE WHEN K.Vrsta=11 THEN 'Prihod - Gotovina' WHEN "
    "Vrsta=12 THEN 'Prihod - Bankovni račun' WHEN Vrsta = 13 THEN 'Prihod -Stvari i usluge' WHEN Vrsta = 16 THEN "
    "'Rashod - Nabavka robe/materijala' when Vrsta = 17 THEN 'Rashod - Bruto plaće zaposlenika' WHEN Vrsta = 18 THEN "
    "'Rashod - Doprinosi zaposlenika' WHEN Vrsta = 19 THEN 'Rashod - Ostali rashodi' END as NazivVrste,CASE WHEN "
    "K.Vrsta BETWEEN 11 AND 13 Then K.Iznos else 0 end as Prihodi,CASE WHEN K.Vrsta BETWEEN 11 AND 13 Then K.IznosPDV "
    "else 0 end as PDVPrihodi,CASE WHEN K.Vrsta BETWEEN 16 AND 19 Then K.Iznos else 0 end as Rashodi,CASE WHEN K.Vrsta "
    "BETWEEN 16 AND 19 Then K.IznosPDV else 0 end as PDVRashodi  ,'' As I FROM dbo.KnjPrihRashFBih K");
const QString kSelect97 = QStringLiteral(
    "SELECT K.RBroj,R.ImeKomit1,K.Datum,K.Isprava,K.Opis,K.Vrsta,CASE WHEN K.Vrsta = 11 THEN 'Izdati racuni' WHEN "
    "K.Vrsta = 12 THEN 'Uplate za izdate racune' WHEN K.Vrsta = 21 THEN 'Primljeni racuni' WHEN K.Vrsta = 22 THEN "
    "'Uplate za primljene racune' END AS NazivVrste,CASE WHEN K.Vrsta=11 THEN K.Iznos ELSE 0 END as IznosIR,CASE WHEN "
    "K.Vrsta=12 THEN K.Iznos ELSE 0 END as UplateIR,CASE WHEN K.Vrsta=21 THEN K.Iznos ELSE 0 END as IznosUR,CASE WHEN "
    "K.Vrsta=22 THEN K.Iznos ELSE 0 END as UplateUR,K.Iznos,K.RBrojKPR,K.SifKomit,'' AS I FROM knjEvidPotriObvFbiH K  "
    "INNER JOIN KOMITENT R  ON K.SifKomit = R.SifKomit");
const QString kSelect98 = QStringLiteral(
    "SELECT K.RBroj,K.GodinaKnj,K.Datum,K.Isprava,K.Opis,K.IznosGot,K.IznosCek,'' AS I FROM KnjPrometaFBiH K");
const QString kSelect99
    = QStringLiteral("SELECT K.RBroj,CASE WHEN K.Vrsta = 4 THEN 'Prihod - Proizvoda i materijala' WHEN K.Vrsta = 5 "
                     "THEN 'Prihod - Robe' WHEN K.Vrsta = 6 THEN 'Prihod - Usluga' WHEN K.Vrsta = 7 THEN 'Prihod - "
                     "Naplaćeni prihod od financiranja' WHEN K.Vrsta = 8 THEN 'Prihod - Vanredni prihodi' END AS "
                     "Vrsta,K.Opis,K.Datum,K.Iznos,K.IznosPDV,K.Vrsta as VrstaVrijednost FROM KnjPrihodaRS K ");
const QString kSelect100
    = QStringLiteral("SELECT K.RBroj,CASE WHEN K.Vrsta = 4 THEN 'Rashod - Materijalni troškovi' WHEN K.Vrsta = 5 THEN "
                     "'Rashod - Nematerijalni troškovi' WHEN K.Vrsta = 6 THEN 'Rashod - Bruto primanja zaposlenih' "
                     "WHEN K.Vrsta = 7 THEN 'Rashod - Sponzorstva i donacije d0 2%' WHEN K.Vrsta = 8 THEN 'Rashod - "
                     "Troškovi financiranja' WHEN K.Vrsta = 9 THEN 'Rashod - Ostali vanredni rashodi' WHEN K.Vrsta = "
                     "10 THEN 'Rashod - Amortizacija' WHEN K.Vrsta = 13 THEN 'Rashod - Rashodi koji se ne priznaju' "
                     "END AS Vrsta,K.Opis,K.Datum,K.Iznos,K.IznosPDV,K.Vrsta As VrstaVrijednost  FROM KnjRashodaRS K ");
const QString kSelect101 = QStringLiteral(
    "SELECT K.RBroj,K.Naziv,K.Datum,K.Isprava,K.NabVrijednost,K.KnjigVrijednost,K.VijekTr,cast(100.0/K.VijekTr as "
    "money) as StopaAm,CASE WHEN "
    "ROUND(K.KnjigVrijednost-100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2)>0 THEN "
    "round(100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2) ELSE K.KnjigVrijednost END as IznosAmort,CASE "
    "WHEN ROUND(K.KnjigVrijednost-100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2)>0 THEN "
    "ROUND(K.KnjigVrijednost-100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2) ELSE 0 END as "
    "NovaKnjigVrij,'' as I FROM KnjPopListaDugImovFBiH K");
const QString kSelect102 = QStringLiteral(
    "SELECT K.RBroj,R.ImeKomit1,K.Datum,K.Isprava,K.Opis,K.Vrsta,CASE WHEN K.Vrsta = 11 THEN 'Izdati racuni' WHEN "
    "K.Vrsta = 12 THEN 'Uplate za izdate racune' WHEN K.Vrsta = 21 THEN 'Primljeni racuni' WHEN K.Vrsta = 22 THEN "
    "'Uplate za primljene racune' END AS NazivVrste,CASE WHEN K.Vrsta=11 THEN K.Iznos ELSE 0 END as IznosIR,CASE WHEN "
    "K.Vrsta=12 THEN K.Iznos ELSE 0 END as UplateIR,CASE WHEN K.Vrsta=21 THEN K.Iznos ELSE 0 END as IznosUR,CASE WHEN "
    "K.Vrsta=22 THEN K.Iznos ELSE 0 END as UplateUR,K.Iznos,K.RBrojKPR,K.SifKomit, '' AS I FROM knjEvidPotriObvFbiH K "
    "INNER JOIN KOMITENT R  ON K.SifKomit = R.SifKomit");
const QString kSelect105 = QStringLiteral(
    "SELECT K.RBroj,K.Naziv,K.Datum,K.Isprava,K.NabVrijednost,K.KnjigVrijednost,K.VijekTr,cast(100.0/K.VijekTr as "
    "money) as StopaAm,CASE WHEN "
    "ROUND(K.KnjigVrijednost-100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2)>0 THEN "
    "round(100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2) ELSE K.KnjigVrijednost END as IznosAmort,CASE "
    "WHEN ROUND(K.KnjigVrijednost-100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2)>0 THEN "
    "ROUND(K.KnjigVrijednost-100.0/K.VijekTr/12*(13-MONTH(Datum))*K.NabVrijednost/100.0,2) ELSE 0 END as "
    "NovaKnjigVrij,'' as I FROM KnjPopListaDugImovFBiH K");
const QString kSelect106 = QStringLiteral("SELECT *,'' As I FROM KnjPrometaFBiH K");
const QString kSelect109 = QStringLiteral(
    "SELECT K.RBroj,K.GodinaKnj,K.Datum,K.Isprava,K.Opis,K.Vrsta,CASE WHEN K.Vrsta=5 THEN 'Prihod - Gotovina' WHEN "
    "Vrsta=6 THEN 'Prihod - Žiro račun' WHEN Vrsta = 7 THEN 'Prihod - U stvarima' WHEN Vrsta = 9 THEN 'Rashod - U "
    "gotovini' when Vrsta = 10 THEN 'Rashod - Žiro račun' WHEN Vrsta = 11 THEN 'Rashod - U stvarima' WHEN Vrsta = 12 "
    "THEN 'Rashod - Amortizacija' WHEN Vrsta = 13 THEN 'Rashod - Plaćena akciza' WHEN Vrsta = 14 THEN 'Rashod - Plaćen "
    "PPP' WHEN Vrsta = 15 THEN 'Rashod - Plaćen PPU' WHEN Vrsta = 16 THEN 'Rashod - PPDOH' END as NazivVrste,CASE WHEN "
    "K.Vrsta BETWEEN 5 AND 7 Then K.Iznos else 0 end as Prihodi,CASE WHEN K.Vrsta BETWEEN 9 AND 15 Then K.Iznos else 0 "
    "end as Rashodi,CASE WHEN K.Vrsta BETWEEN 16 AND 16 Then K.Iznos else 0 end as RashPPDOH,CASE WHEN K.Vrsta BETWEEN "
    "5 AND 7 OR K.Vrsta=16 Then K.Iznos else -K.Iznos end as Dobit ,K.Iznos,'' As I FROM dbo.KnjPrihRashDB K");
const QString kSelect125
    = QStringLiteral("SELECT K.RBroj,K.GodinaKnj,K.Datum,K.Opis,K.Iznos,K.BrojProd,Ko.ImeKomit1 as ImeProd,'' AS I "
                     "FROM dbo.TrgKnjUsluga K INNER JOIN dbo.Komitent Ko ON K.BrojProd=Ko.SifKomit");
const QString kSelect126
    = QStringLiteral("SELECT K.RBroj,K.GodinaKnj,K.Datum,K.Opis,K.Zaduzenje,K.Razduzenje,K.BrojProd,Ko.ImeKomit1 as "
                     "ImeProd,'' AS I FROM dbo.TrgKnjKomisiona K INNER JOIN dbo.Komitent Ko ON K.BrojProd=Ko.SifKomit");

QVector<BookKind> makeBooks()
{
    const QVector<EntryKind> prihRashFBiH = {
        { 11, QStringLiteral("Prihod - Gotovina") },
        { 12, QStringLiteral("Prihod - Bankovni račun") },
        { 13, QStringLiteral("Prihod -Stvari i usluge") },
        { 16, QStringLiteral("Rashod - Nabavka robe/materijala") },
        { 17, QStringLiteral("Rashod - Bruto plaće zaposlenika") },
        { 18, QStringLiteral("Rashod - Doprinosi zaposlenika") },
        { 19, QStringLiteral("Rashod - Ostali rashodi") },
    };
    const QVector<EntryKind> prihRashDB = {
        { 5, QStringLiteral("Prihod - Gotovina") },
        { 6, QStringLiteral("Prihod - Žiro račun") },
        { 7, QStringLiteral("Prihod - U stvarima") },
        { 9, QStringLiteral("Rashod - U gotovini") },
        { 10, QStringLiteral("Rashod - Žiro račun") },
        { 11, QStringLiteral("Rashod - U stvarima") },
        { 12, QStringLiteral("Rashod - Amortizacija") },
        { 13, QStringLiteral("Rashod - Plaćena akciza") },
        { 14, QStringLiteral("Rashod - Plaćen PPP") },
        { 15, QStringLiteral("Rashod - Plaćen PPU") },
        { 16, QStringLiteral("Rashod - PPDOH") },
    };
    const QVector<EntryKind> prihodaRS = {
        { 4, QStringLiteral("Prihod - Proizvoda i materijala") },
        { 5, QStringLiteral("Prihod - Robe") },
        { 6, QStringLiteral("Prihod - Usluga") },
        { 7, QStringLiteral("Prihod - Naplaćeni prihod od financiranja") },
        { 8, QStringLiteral("Prihod - Vanredni prihodi") },
    };
    const QVector<EntryKind> rashodaRS = {
        { 4, QStringLiteral("Rashod - Materijalni troškovi") },
        { 5, QStringLiteral("Rashod - Nematerijalni troškovi") },
        { 6, QStringLiteral("Rashod - Bruto primanja zaposlenih") },
        { 7, QStringLiteral("Rashod - Sponzorstva i donacije d0 2%") },
        { 8, QStringLiteral("Rashod - Troškovi financiranja") },
        { 9, QStringLiteral("Rashod - Ostali vanredni rashodi") },
        { 10, QStringLiteral("Rashod - Amortizacija") },
        { 13, QStringLiteral("Rashod - Rashodi koji se ne priznaju") },
    };
    const QVector<EntryKind> evidPotObv = {
        { 11, QStringLiteral("Izdati racuni") },
        { 12, QStringLiteral("Uplate za izdate racune") },
        { 21, QStringLiteral("Primljeni racuni") },
        { 22, QStringLiteral("Uplate za primljene racune") },
    };

    return {
        { 96, QStringLiteral("clsKnjPrihRashFBiH"), QStringLiteral("Knjiga prihoda i rashoda za FBiH"),
            QStringLiteral("dbo.KnjPrihRashFBiH"), QStringLiteral("frmKnjPRashFBiHPregled"), kSelect96, prihRashFBiH },
        { 97, QStringLiteral("clsKnjEvidPotObvFBiH"), QStringLiteral("Knjiga Evidencija potraživanja i obveza za FBiH"),
            QStringLiteral("dbo.KnjEvidPotrIObvFBiH"), QStringLiteral("frmKnjEvidPotObvFBiH"), kSelect97, evidPotObv },
        { 98, QStringLiteral("clsKnjPrometaFBiH"), QStringLiteral("Knjiga prometa za FBiH"),
            QStringLiteral("dbo.KnjPrometaFBiH"), QStringLiteral("frmKnjPrometa"), kSelect98, {} },
        { 99, QStringLiteral("clsKnjPrihodaRS"), QStringLiteral("Knjiga prihoda za RS"),
            QStringLiteral("dbo.KnjPrihodaRS"), QStringLiteral("frmKnjPrihodaRashodaRS"), kSelect99, prihodaRS },
        { 100, QStringLiteral("clsKnjRashodaRS"), QStringLiteral("Knjiga rashoda za RS"),
            QStringLiteral("dbo.KnjRashodaRS"), QStringLiteral("frmKnjPrihodaRashodaRS"), kSelect100, rashodaRS },
        { 101, QStringLiteral("clsPopListaDImovineRS"), QStringLiteral("Knjiga popisna lista dugotrajne imovine za RS"),
            QStringLiteral("dbo.KnjPopListaDugImovFBiH"), QStringLiteral("frmPopListaDImovineFBiH"), kSelect101, {} },
        { 102, QStringLiteral("clsKnjEvidPotObvRS"), QStringLiteral("Knjiga evidencija potraživanja i obveza za RS"),
            QStringLiteral("dbo.KnjEvidPotrIObvFBiH"), QStringLiteral("frmKnjEvidPotObvFBiH"), kSelect102, evidPotObv },
        { 105, QStringLiteral("clsPopListaDImovineFBiH"),
            QStringLiteral("Knjiga Popisna lista dugotrajne imovine za FBiH"),
            QStringLiteral("dbo.KnjPopListaDugImovFBiH"), QStringLiteral("frmPopListaDImovineFBiH"), kSelect105, {} },
        { 106, QStringLiteral("clsKnjPrometaRS"), QStringLiteral("Knjiga prometa za RS"),
            QStringLiteral("dbo.KnjPrometaFBiH"), QStringLiteral("frmKnjPrometa"), kSelect106, {} },
        { 109, QStringLiteral("clsKnjPrihRashDB"), QStringLiteral("Knjiga prihoda i rashoda za DB"),
            QStringLiteral("dbo.KnjPrihRashDB"), QStringLiteral("frmKnjPRashFBiHPregled"), kSelect109, prihRashDB },
        { 125, QStringLiteral("clsTrgKnjUsluga"), QStringLiteral("Trgovačka knjiga usluga"),
            QStringLiteral("dbo.TrgKnjUsluga"), QStringLiteral("frmKnjUsluga"), kSelect125, {} },
        { 126, QStringLiteral("clsTrgKnjKomisiona"), QStringLiteral("Trgovačka knjiga komisione robe"),
            QStringLiteral("dbo.TrgKnjKomisiona"), QStringLiteral("frmKnjKomisiona"), kSelect126, {} },
    };
}

} // namespace

const QVector<BookKind>& allBooks()
{
    static const QVector<BookKind> books = makeBooks();
    return books;
}

const BookKind* findBook(int code)
{
    for (const BookKind& b : allBooks())
        if (b.code == code)
            return &b;
    return nullptr;
}

const BookKind* findBookByClass(const QString& className)
{
    for (const BookKind& b : allBooks())
        if (b.className.compare(className, Qt::CaseInsensitive) == 0)
            return &b;
    return nullptr;
}

const BookKind* findBookByName(const QString& name)
{
    const QString text = name.trimmed();
    bool number = false;
    const int code = text.toInt(&number);
    if (number)
        return findBook(code);
    const QString library = programmaticId(QString());
    if (text.startsWith(library, Qt::CaseInsensitive))
        return findBookByClass(text.mid(library.size()));
    return findBookByClass(text);
}

bool isTradeBook(int code)
{
    return code == Knjiga::TrgUsluga || code == Knjiga::TrgKomisiona;
}
bool isAssetList(int code)
{
    return code == Knjiga::PopListaRS || code == Knjiga::PopListaFBiH;
}
bool isIncomeExpense(int code)
{
    return code == Knjiga::PrihRashFBiH || code == Knjiga::PrihRashDB;
}

QString entryKindText(int bookCode, int entryKind)
{
    if (const BookKind* b = findBook(bookCode))
        for (const EntryKind& k : b->entryKinds)
            if (k.code == entryKind)
                return k.text;
    return {};
}

} // namespace knjige::books
