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

// The totals panel's sums of the two income and expense books, as their forms number
// the columns.
const QString kPanelSumsFBiH
    = QStringLiteral("sum(case when P.Vrsta=11 then P.Iznos else 0 end) as P11,"
                     "sum(case when P.Vrsta=12 then P.Iznos else 0 end) as P12,"
                     "sum(case when P.Vrsta=13 then P.Iznos else 0 end) as P13,"
                     "sum(case when P.Vrsta>=11 and P.Vrsta<=13 then P.IznosPDV else 0 end) as P14,"
                     "sum(case when P.Vrsta>=11 and P.Vrsta<=13 then P.Iznos-P.IznosPDV else 0 end) as P15,"
                     "sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P16,"
                     "sum(case when P.Vrsta=17 then P.Iznos else 0 end) as P17,"
                     "sum(case when P.Vrsta=18 then P.Iznos else 0 end) as P18,"
                     "sum(case when P.Vrsta=19 then P.Iznos else 0 end) as P19,"
                     "sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.IznosPDV else 0 end) as P20,"
                     "sum(case when P.Vrsta>=16 and P.Vrsta<=19 then P.Iznos-P.IznosPDV else 0 end) as P21 "
                     "FROM dbo.KnjPrihRashFBiH P where P.Datum>='");
// Column 17 of the DB form: kinds 9 to 15 less kind 16.
const QString kPanelSumsDB = QStringLiteral("sum(case when P.Vrsta=5 then P.Iznos else 0 end) as P5,"
                                            "sum(case when P.Vrsta=6 then P.Iznos else 0 end) as P6,"
                                            "sum(case when P.Vrsta=7 then P.Iznos else 0 end) as P7,"
                                            "sum(case when P.Vrsta>=5 and P.Vrsta<=7 then P.Iznos else 0 end) as P8,"
                                            "sum(case when P.Vrsta=9 then P.Iznos else 0 end) as P9,"
                                            "sum(case when P.Vrsta=10 then P.Iznos else 0 end) as P10,"
                                            "sum(case when P.Vrsta=11 then P.Iznos else 0 end) as P11,"
                                            "sum(case when P.Vrsta=12 then P.Iznos else 0 end) as P12,"
                                            "sum(case when P.Vrsta=13 then P.Iznos else 0 end) as P13,"
                                            "sum(case when P.Vrsta=14 then P.Iznos else 0 end) as P14,"
                                            "sum(case when P.Vrsta=15 then P.Iznos else 0 end) as P15,"
                                            "sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P16,"
                                            "sum(case when P.Vrsta>=9 and P.Vrsta<=15 then P.Iznos else 0 end)"
                                            "-sum(case when P.Vrsta=16 then P.Iznos else 0 end) as P17 "
                                            "FROM dbo.KnjPrihRashDB P where P.Datum>='");
const QString kKomisionaSums
    = QStringLiteral("ISNULL(SUM(K.Zaduzenje),0) As Zaduzenje,ISNULL(SUM(K.Razduzenje),0) As Razduzenje FROM "
                     "dbo.TrgKnjKomisiona K where K.Datum>='");

const QString kByDate = QStringLiteral(" order by Datum");
const QString kByDateAndKind = QStringLiteral(" order by Datum,Vrsta");

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

    // The editors' lists word the kinds in their own way (the DB list's padding, "do 2%
    // primanja"), which the people who keep the books know.
    const QStringList editorFBiH
        = { QStringLiteral("11 - Prihod - Gotovina"), QStringLiteral("12 - Prihod - Bankovni račun"),
              QStringLiteral("13 - Prihod - Stvari i usluge"), QStringLiteral("16 - Rashod - Nabavka robe/materijala"),
              QStringLiteral("17 - Rashod - Bruto plaće zaposlenika"),
              QStringLiteral("18 - Rashod - Doprinosi zaposlenika"), QStringLiteral("19 - Rashod - Ostali rashodi") };
    const QStringList editorDB = { QStringLiteral(" 5 - Prihod - Gotovina"), QStringLiteral(" 6 - Prihod - Žiro račun"),
        QStringLiteral(" 7 - Prihod - U stvarima"), QStringLiteral(" 9 - Rashod - U gotovini"),
        QStringLiteral("10 - Rashod - Žiro račun"), QStringLiteral("11 - Rashod - U stvarima"),
        QStringLiteral("12 - Rashod - Amortizacija"), QStringLiteral("13 - Rashod - Plaćena akciza"),
        QStringLiteral("14 - Rashod - Plaćen PPP"), QStringLiteral("15 - Rashod - Plaćen PPU"),
        QStringLiteral("16 - Rashod - Rashodi PPDOH") };
    const QStringList editorEvid
        = { QStringLiteral("11 - Izdati racuni"), QStringLiteral("12 - Uplate za izdate racune"),
              QStringLiteral("21 - Primljeni racuni"), QStringLiteral("22 - Uplate za primljene racune") };
    const QStringList editorPrihodaRS
        = { QStringLiteral("4 - Prihod - Proizvoda i materijala"), QStringLiteral("5 - Prihod - Robe"),
              QStringLiteral("6 - Prihod - Usluga"), QStringLiteral("7 - Prihod - Naplaćeni prihod od financiranja"),
              QStringLiteral("8 - Prihod - Vanredni prihodi") };
    const QStringList editorRashodaRS = { QStringLiteral("4 - Rashod - Materijalni troškovi"),
        QStringLiteral("5 - Rashod - Nematerijalni troškovi"), QStringLiteral("6 - Rashod - Bruto primanja zaposlenih"),
        QStringLiteral("7 - Rashod - Sponzorstva i donacije do 2% primanja"),
        QStringLiteral("8 - Rashod - Troškovi financiranja"), QStringLiteral("9 - Rashod - Ostali vanredni rashodi"),
        QStringLiteral("10 - Rashod - Amortizacija"), QStringLiteral("13 - Rashod - Rashodi koji se ne priznaju") };

    const QVector<TotalsColumn> prihRashTotals = { { 8, true }, { 9, false }, { 10, false }, { 11, false } };
    const QVector<TotalsColumn> evidTotals = { { 8, true }, { 9, true }, { 10, true }, { 11, true } };
    const QVector<TotalsColumn> prihodaRashodaTotals = { { 5, true }, { 6, false } };
    // The rate column StopaAm is summed too: a sum of percentages the design keeps.
    const QVector<TotalsColumn> assetTotals = { { 5, true }, { 6, false }, { 8, false }, { 9, false }, { 10, false } };

    const QString prPeriod = QStringLiteral("Pr.od ");
    const QString turnoverPeriod = QStringLiteral("Promet od ");
    const TotalsPanelLayout panelFBiH
        = { { QStringLiteral("11. Gotovina"), QStringLiteral("12. Bank.račun"), QStringLiteral("13. U stvarima"),
                QStringLiteral("14. PDV prihodi"), QStringLiteral("15. Ukupni prihodi"),
                QStringLiteral("16. Nab.robe/mat."), QStringLiteral("17. Bruto plaće"),
                QStringLiteral("18. Plaćeni doprinosi"), QStringLiteral("19. Ostali rashodi"),
                QStringLiteral("20. PDV u rashodima"), QStringLiteral("21. Ukupni rashodi") },
              prPeriod, kPanelSumsFBiH, kPanelSumsFBiH, QStringLiteral("P") };
    const TotalsPanelLayout panelDB
        = { { QStringLiteral(" 5.P.Gotovina"), QStringLiteral(" 6.P.Žiro račun"), QStringLiteral(" 7.P.U stvarima"),
                QStringLiteral(" 8.Uk.prihodi"), QStringLiteral(" 9.R.u gotovini"), QStringLiteral("10.R.Žiro račun"),
                QStringLiteral("11.R.U stvarima"), QStringLiteral("12.R.Amortizacija"), QStringLiteral("13.R.Akciza"),
                QStringLiteral("14.R.PPP"), QStringLiteral("15.R.PPU"), QStringLiteral("16.R.PPDOH"),
                QStringLiteral("17.Ukupni rashodi") },
              prPeriod, kPanelSumsDB, kPanelSumsDB, QStringLiteral("P") };
    const TotalsPanelLayout panelPrometa = { { QStringLiteral("11. Gotovina"), QStringLiteral("12. Čekovi") },
        turnoverPeriod,
        QStringLiteral(" SUM(K.IznosGot) As Gotovina,SUM(K.IznosCek) AS Cek FROM KnjPrometaFBiH K where K.Datum>='"),
        QStringLiteral("SUM(K.IznosGot) AS gotovina,SUM(K.IznosCek) As Cek FROM KnjPrometaFBiH K where K.Datum>='"),
        QStringLiteral("K"), 1 };
    const TotalsPanelLayout panelUsluga = { { QStringLiteral("Iznos") }, turnoverPeriod,
        QStringLiteral(" SUM(K.Iznos) As Iznos FROM dbo.TrgKnjUsluga K where K.Datum>='"),
        QStringLiteral("SUM(K.Iznos) AS Iznos FROM dbo.TrgKnjUsluga K where K.Datum>='"), QStringLiteral("K"), 1 };
    const TotalsPanelLayout panelKomisiona = { { QStringLiteral("Zaduženje"), QStringLiteral("Razduženje") },
        turnoverPeriod, kKomisionaSums, kKomisionaSums, QStringLiteral("K"), 2 };

    const QString evidBlank = QStringLiteral("INSERT INTO dbo.KnjEvidPotrIObvFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,"
                                             "SIFKOMIT,VRSTA,OPIS,ISPRAVA,IZNOS,RBROJKPR) VALUES(");
    const QString prometaBlank = QStringLiteral("INSERT INTO dbo.KnjPrometaFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,"
                                                "OPIS,ISPRAVA,IZNOSGOT,IZNOSCEK) VALUES(");
    const QString prihRashCaption = QStringLiteral(" stavke knjige prihoda i rashoda");
    const QString evidCaption = QStringLiteral(" stavke knjige evidencije Potraživanja i obveza");
    const QString assetCaption = QStringLiteral(" stavke popisne liste dugotrajne imovine");
    const QString assetTable = QStringLiteral("dbo.KnjPopListaDugImovFBiH");
    const QString evidTable = QStringLiteral("dbo.KnjEvidPotrIObvFBiH");
    const QString prometaTable = QStringLiteral("dbo.KnjPrometaFBiH");

    return {
        { .code = 96,
            .className = QStringLiteral("clsKnjPrihRashFBiH"),
            .caption = QStringLiteral("Knjiga prihoda i rashoda za FBiH"),
            .table = QStringLiteral("dbo.KnjPrihRashFBiH"),
            .editor = QStringLiteral("frmKnjPRashFBiHPregled"),
            .selectSql = kSelect96,
            .entryKinds = prihRashFBiH,
            .family = BookFamily::IncomeExpense,
            .lastNumberOrZero = true,
            .totals = prihRashTotals,
            .panel = panelFBiH,
            .menus = { .recapitulation = true },
            .blankEntryHead = QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,"
                                             "ISPRAVA,OPIS,VRSTA) VALUES("),
            .blankEntryTail = QStringLiteral(",'','',11)"),
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::PrihRashFBiH,
            .form = QStringLiteral("Obrazac KPR-1041"),
            .editorKinds = editorFBiH,
            .kindPositions = { 15, 11, 13 },
            .entryCaption = prihRashCaption },
        { .code = 97,
            .className = QStringLiteral("clsKnjEvidPotObvFBiH"),
            .caption = QStringLiteral("Knjiga Evidencija potraživanja i obveza za FBiH"),
            .table = evidTable,
            .editor = QStringLiteral("frmKnjEvidPotObvFBiH"),
            .selectSql = kSelect97,
            .entryKinds = evidPotObv,
            .family = BookFamily::Receivables,
            .totals = evidTotals,
            .blankEntryHead = evidBlank,
            .blankEntryTail = QStringLiteral(",0,0,'','',0,0)"),
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::EvidPotObv,
            .form = QStringLiteral("Obrazac EPO-1044"),
            .editorKinds = editorEvid,
            .entryCaption = evidCaption },
        { .code = 98,
            .className = QStringLiteral("clsKnjPrometaFBiH"),
            .caption = QStringLiteral("Knjiga prometa za FBiH"),
            .table = prometaTable,
            .editor = QStringLiteral("frmKnjPrometa"),
            .selectSql = kSelect98,
            .family = BookFamily::Turnover,
            .lastNumberOrZero = true,
            .totals = { { 6, true }, { 7, true } },
            .panel = panelPrometa,
            .blankEntryHead = prometaBlank,
            .blankEntryTail = QStringLiteral(",'','',0,0 )"),
            .dateOrder = kByDate,
            .report = ReportLayoutId::Prometa,
            .form = QStringLiteral("Obrazac KP-1042"),
            .entryCaption = QStringLiteral(" stavke knjige prometa") },
        { .code = 99,
            .className = QStringLiteral("clsKnjPrihodaRS"),
            .caption = QStringLiteral("Knjiga prihoda za RS"),
            .table = QStringLiteral("dbo.KnjPrihodaRS"),
            .editor = QStringLiteral("frmKnjPrihodaRashodaRS"),
            .selectSql = kSelect99,
            .entryKinds = prihodaRS,
            .family = BookFamily::IncomeOrExpense,
            .totals = prihodaRashodaTotals,
            .blankEntryHead
            = QStringLiteral("INSERT INTO dbo.KnjPrihodaRS (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,VRSTA) VALUES("),
            .blankEntryTail = QStringLiteral(",'',11)"),
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::PrihodaRashodaRS,
            .editorKinds = editorPrihodaRS,
            .entryCaption = QStringLiteral(" stavke knjige prihoda") },
        { .code = 100,
            .className = QStringLiteral("clsKnjRashodaRS"),
            .caption = QStringLiteral("Knjiga rashoda za RS"),
            .table = QStringLiteral("dbo.KnjRashodaRS"),
            .editor = QStringLiteral("frmKnjPrihodaRashodaRS"),
            .selectSql = kSelect100,
            .entryKinds = rashodaRS,
            .family = BookFamily::IncomeOrExpense,
            .totals = prihodaRashodaTotals,
            .blankEntryHead
            = QStringLiteral("INSERT INTO dbo.KnjRashodaRS (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,OPIS,VRSTA) VALUES("),
            .blankEntryTail = QStringLiteral(",'',11)"),
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::PrihodaRashodaRS,
            .editorKinds = editorRashodaRS,
            .entryCaption = QStringLiteral(" stavke knjige prihoda") },
        // The asset lists take no part in renumbering or insertion at a position.
        { .code = 101,
            .className = QStringLiteral("clsPopListaDImovineRS"),
            .caption = QStringLiteral("Knjiga popisna lista dugotrajne imovine za RS"),
            .table = assetTable,
            .editor = QStringLiteral("frmPopListaDImovineFBiH"),
            .selectSql = kSelect101,
            .family = BookFamily::AssetList,
            .totals = assetTotals,
            .menus = { .openingState = true },
            .renumbers = false,
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::PopisnaLista,
            .entryCaption = assetCaption },
        { .code = 102,
            .className = QStringLiteral("clsKnjEvidPotObvRS"),
            .caption = QStringLiteral("Knjiga evidencija potraživanja i obveza za RS"),
            .table = evidTable,
            .editor = QStringLiteral("frmKnjEvidPotObvFBiH"),
            .selectSql = kSelect102,
            .entryKinds = evidPotObv,
            .family = BookFamily::Receivables,
            .totals = evidTotals,
            .blankEntryHead = evidBlank,
            .blankEntryTail = QStringLiteral(",0,0,'','',0,0)"),
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::EvidPotObv,
            .editorKinds = editorEvid,
            .entryCaption = evidCaption },
        { .code = 105,
            .className = QStringLiteral("clsPopListaDImovineFBiH"),
            .caption = QStringLiteral("Knjiga Popisna lista dugotrajne imovine za FBiH"),
            .table = assetTable,
            .editor = QStringLiteral("frmPopListaDImovineFBiH"),
            .selectSql = kSelect105,
            .family = BookFamily::AssetList,
            .totals = assetTotals,
            .menus = { .openingState = true },
            .renumbers = false,
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::PopisnaLista,
            .form = QStringLiteral("Obrazac PLDI-1043"),
            .entryCaption = assetCaption },
        { .code = 106,
            .className = QStringLiteral("clsKnjPrometaRS"),
            .caption = QStringLiteral("Knjiga prometa za RS"),
            .table = prometaTable,
            .editor = QStringLiteral("frmKnjPrometa"),
            .selectSql = kSelect106,
            .family = BookFamily::Turnover,
            .totals = { { 7, true }, { 8, true } },
            .blankEntryHead = prometaBlank,
            .blankEntryTail = QStringLiteral(",'','',0,0 )"),
            .dateOrder = kByDate,
            .report = ReportLayoutId::Prometa,
            .entryCaption = QStringLiteral(" stavke knjige prometa") },
        { .code = 109,
            .className = QStringLiteral("clsKnjPrihRashDB"),
            .caption = QStringLiteral("Knjiga prihoda i rashoda za DB"),
            .table = QStringLiteral("dbo.KnjPrihRashDB"),
            .editor = QStringLiteral("frmKnjPRashFBiHPregled"),
            .selectSql = kSelect109,
            .entryKinds = prihRashDB,
            .family = BookFamily::IncomeExpense,
            .lastNumberOrZero = true,
            .totals = prihRashTotals,
            .panel = panelDB,
            .menus = { .generation = true, .deleteShownAtLevel2 = true },
            .blankEntryHead
            = QStringLiteral("INSERT INTO dbo.KnjPrihRashDB (BROJPODUZECA,RBROJ,DATUM,GODINAKNJ,ISPRAVA,"
                             "OPIS,VRSTA) VALUES("),
            .blankEntryTail = QStringLiteral(",'','',11)"),
            .dateOrder = kByDateAndKind,
            .report = ReportLayoutId::PrihRashDB,
            .editorKinds = editorDB,
            .kindPositions = { 9, 5, 6 },
            .entryCaption = prihRashCaption },
        { .code = 125,
            .className = QStringLiteral("clsTrgKnjUsluga"),
            .caption = QStringLiteral("Trgovačka knjiga usluga"),
            .table = QStringLiteral("dbo.TrgKnjUsluga"),
            .editor = QStringLiteral("frmKnjUsluga"),
            .selectSql = kSelect125,
            .family = BookFamily::Trade,
            .lastNumberOrZero = true,
            .totals = { { 5, true } },
            .panel = panelUsluga,
            .blankEntryHead
            = QStringLiteral("INSERT INTO dbo.TrgKnjUsluga (BROJPODUZECA,BrojProd,RBROJ,DATUM,GODINAKNJ,"
                             "OPIS,IZNOS) VALUES("),
            .blankEntryTail = QStringLiteral(",'',0)"),
            .dateOrder = kByDate,
            .report = ReportLayoutId::TrgUsluga,
            .entryCaption = QStringLiteral(" stavke trg.knjige usluga") },
        { .code = 126,
            .className = QStringLiteral("clsTrgKnjKomisiona"),
            .caption = QStringLiteral("Trgovačka knjiga komisione robe"),
            .table = QStringLiteral("dbo.TrgKnjKomisiona"),
            .editor = QStringLiteral("frmKnjKomisiona"),
            .selectSql = kSelect126,
            .family = BookFamily::Trade,
            .lastNumberOrZero = true,
            .totals = { { 5, true }, { 6, true } },
            .panel = panelKomisiona,
            .blankEntryHead = QStringLiteral("INSERT INTO dbo.TrgKnjKomisiona (BROJPODUZECA,BrojProd,RBROJ,DATUM,"
                                             "GODINAKNJ,OPIS,Zaduzenje,Razduzenje) VALUES("),
            .blankEntryTail = QStringLiteral(",'',0,0)"),
            .dateOrder = kByDate,
            .report = ReportLayoutId::TrgKomisiona,
            .entryCaption = QStringLiteral(" stavke trg.knjige komisione robe") },
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

namespace
{
bool inFamily(int code, BookFamily family)
{
    const BookKind* b = findBook(code);
    return b && b->family == family;
}
} // namespace

bool isTradeBook(int code)
{
    return inFamily(code, BookFamily::Trade);
}
bool isAssetList(int code)
{
    return inFamily(code, BookFamily::AssetList);
}
bool isIncomeExpense(int code)
{
    return inFamily(code, BookFamily::IncomeExpense);
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
