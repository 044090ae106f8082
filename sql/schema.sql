-- The book tables of one company database, and the two host tables the books read
-- (partners and company configuration). SQL Server; the embedded database builds the
-- same tables from this script through the dialect adapter.
--
-- Every book row is keyed by company (BrojPoduzeca), book year (GodinaKnj) and
-- ordinal number (RBroj); the trade books also by sales point (BrojProd). The key is
-- indexed but not unique: a book may hold two rows with one number until it is
-- renumbered. Amounts are money; texts are as wide as the editors let them be.
-- Batches are separated by GO lines.

CREATE TABLE dbo.KnjPrihRashFBiH (
    BrojPoduzeca smallint NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Isprava nvarchar(20) NULL,
    Opis nvarchar(100) NULL,
    Vrsta smallint NULL,
    Iznos money NULL DEFAULT (0),
    IznosPDV money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KnjPrihRashFBiH_RBroj ON dbo.KnjPrihRashFBiH (BrojPoduzeca, GodinaKnj, RBroj)
GO

CREATE TABLE dbo.KnjPrihRashDB (
    BrojPoduzeca smallint NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Isprava nvarchar(20) NULL,
    Opis nvarchar(100) NULL,
    Vrsta smallint NULL,
    Iznos money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KnjPrihRashDB_RBroj ON dbo.KnjPrihRashDB (BrojPoduzeca, GodinaKnj, RBroj)
GO

CREATE TABLE dbo.KnjPrihodaRS (
    BrojPoduzeca smallint NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Opis nvarchar(100) NULL,
    Vrsta smallint NULL,
    Iznos money NULL DEFAULT (0),
    IznosPDV money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KnjPrihodaRS_RBroj ON dbo.KnjPrihodaRS (BrojPoduzeca, GodinaKnj, RBroj)
GO

CREATE TABLE dbo.KnjRashodaRS (
    BrojPoduzeca smallint NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Opis nvarchar(100) NULL,
    Vrsta smallint NULL,
    Iznos money NULL DEFAULT (0),
    IznosPDV money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KnjRashodaRS_RBroj ON dbo.KnjRashodaRS (BrojPoduzeca, GodinaKnj, RBroj)
GO

-- Turnover books of both entities (98, 106).
CREATE TABLE dbo.KnjPrometaFBiH (
    BrojPoduzeca smallint NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Opis nvarchar(100) NULL,
    Isprava nvarchar(20) NULL,
    IznosGot money NULL DEFAULT (0),
    IznosCek money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KnjPrometaFBiH_RBroj ON dbo.KnjPrometaFBiH (BrojPoduzeca, GodinaKnj, RBroj)
GO

-- Receivables and liabilities of both entities (97, 102). RBrojKPR links a row to the
-- entry of the income and expense book with that number (0: none).
CREATE TABLE dbo.KnjEvidPotrIObvFBiH (
    BrojPoduzeca smallint NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    SifKomit int NULL,
    Vrsta smallint NULL,
    Opis nvarchar(100) NULL,
    Isprava nvarchar(20) NULL,
    Iznos money NULL DEFAULT (0),
    RBrojKPR int NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KnjEvidPotrIObvFBiH_RBroj ON dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca, GodinaKnj, RBroj)
GO
CREATE INDEX IX_KnjEvidPotrIObvFBiH_RBrojKPR ON dbo.KnjEvidPotrIObvFBiH (BrojPoduzeca, GodinaKnj, RBrojKPR)
GO

-- Long-term asset lists of both entities (101, 105). A row inserted without RBroj takes
-- the next number of its company and year. The opening state of a new year inserts
-- its rows without numbers all at once: they continue after the highest number already
-- in the new year, in the order of the numbers of the assets they were carried from
-- (each new row is matched to an asset of the year before with its name, values and
-- life, an asset used once; alike rows match alike assets, and which of them takes
-- which number cannot be told apart). Rows that match nothing come last.
CREATE TABLE dbo.KnjPopListaDugImovFBiH (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    RBroj int NULL,
    Naziv nvarchar(100) NULL,
    Datum datetime NULL,
    Isprava nvarchar(20) NULL,
    NabVrijednost money NULL DEFAULT (0),
    KnjigVrijednost money NULL DEFAULT (0),
    VijekTr smallint NULL
)
GO
CREATE INDEX IX_KnjPopListaDugImovFBiH_RBroj ON dbo.KnjPopListaDugImovFBiH (BrojPoduzeca, GodinaKnj, RBroj)
GO
CREATE TRIGGER dbo.trgKnjPopListaDugImovFBiH_RBroj ON dbo.KnjPopListaDugImovFBiH AFTER INSERT AS
BEGIN
    SET NOCOUNT ON;
    IF NOT EXISTS (SELECT 1 FROM inserted I WHERE I.RBroj IS NULL)
        RETURN;
    DECLARE @Iskoristeni TABLE (BrojPoduzeca smallint NOT NULL, GodinaKnj smallint NOT NULL, RBroj int NOT NULL);
    DECLARE @Poduzece smallint, @Godina smallint, @Naziv nvarchar(100), @Datum datetime, @Isprava nvarchar(20),
            @Nabavna money, @Knjigovodstvena money, @Vijek smallint, @Izvor int, @Zadnji int;
    WHILE EXISTS (SELECT 1 FROM dbo.KnjPopListaDugImovFBiH K WHERE K.RBroj IS NULL)
    BEGIN
        SELECT TOP (1) @Poduzece = K.BrojPoduzeca, @Godina = K.GodinaKnj, @Naziv = K.Naziv, @Datum = K.Datum,
               @Isprava = K.Isprava, @Nabavna = K.NabVrijednost, @Knjigovodstvena = K.KnjigVrijednost,
               @Vijek = K.VijekTr, @Izvor = Z.RBroj
        FROM dbo.KnjPopListaDugImovFBiH K
        OUTER APPLY (
            SELECT MIN(S.RBroj) AS RBroj FROM dbo.KnjPopListaDugImovFBiH S
            WHERE S.BrojPoduzeca = K.BrojPoduzeca AND S.GodinaKnj = K.GodinaKnj - 1 AND S.RBroj IS NOT NULL
              AND K.Isprava LIKE N'Po_.stanje iz ' + CAST(K.GodinaKnj - 1 AS nvarchar(6))
              AND S.Naziv = K.Naziv AND S.NabVrijednost = K.NabVrijednost AND S.VijekTr = K.VijekTr
              AND S.KnjigVrijednost > 0
              AND ROUND(S.KnjigVrijednost - 100 / NULLIF(S.VijekTr, 0) * S.NabVrijednost / 100, 2) = K.KnjigVrijednost
              AND NOT EXISTS (SELECT 1 FROM @Iskoristeni U WHERE U.BrojPoduzeca = S.BrojPoduzeca
                              AND U.GodinaKnj = S.GodinaKnj AND U.RBroj = S.RBroj)
        ) Z
        WHERE K.RBroj IS NULL
        ORDER BY K.BrojPoduzeca, K.GodinaKnj, CASE WHEN Z.RBroj IS NULL THEN 1 ELSE 0 END, Z.RBroj;
        IF @Izvor IS NOT NULL
            INSERT INTO @Iskoristeni (BrojPoduzeca, GodinaKnj, RBroj) VALUES (@Poduzece, @Godina - 1, @Izvor);
        SELECT @Zadnji = ISNULL(MAX(K.RBroj), 0) FROM dbo.KnjPopListaDugImovFBiH K
            WHERE K.BrojPoduzeca = @Poduzece AND K.GodinaKnj = @Godina;
        UPDATE TOP (1) dbo.KnjPopListaDugImovFBiH SET RBroj = @Zadnji + 1
            WHERE RBroj IS NULL AND BrojPoduzeca = @Poduzece AND GodinaKnj = @Godina
              AND (Naziv = @Naziv OR (Naziv IS NULL AND @Naziv IS NULL))
              AND (Datum = @Datum OR (Datum IS NULL AND @Datum IS NULL))
              AND (Isprava = @Isprava OR (Isprava IS NULL AND @Isprava IS NULL))
              AND (NabVrijednost = @Nabavna OR (NabVrijednost IS NULL AND @Nabavna IS NULL))
              AND (KnjigVrijednost = @Knjigovodstvena OR (KnjigVrijednost IS NULL AND @Knjigovodstvena IS NULL))
              AND (VijekTr = @Vijek OR (VijekTr IS NULL AND @Vijek IS NULL));
    END
END
GO

-- Trade books, numbered per company, year and sales point (BrojProd, a partner code).
CREATE TABLE dbo.TrgKnjUsluga (
    BrojPoduzeca smallint NOT NULL,
    BrojProd int NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Opis nvarchar(100) NULL,
    Iznos money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_TrgKnjUsluga_RBroj ON dbo.TrgKnjUsluga (BrojPoduzeca, GodinaKnj, BrojProd, RBroj)
GO

CREATE TABLE dbo.TrgKnjKomisiona (
    BrojPoduzeca smallint NOT NULL,
    BrojProd int NOT NULL,
    RBroj int NOT NULL,
    Datum datetime NULL,
    GodinaKnj smallint NOT NULL,
    Opis nvarchar(100) NULL,
    Zaduzenje money NULL DEFAULT (0),
    Razduzenje money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_TrgKnjKomisiona_RBroj ON dbo.TrgKnjKomisiona (BrojPoduzeca, GodinaKnj, BrojProd, RBroj)
GO

-- Host tables, read by the books: business partners and sales points, and the
-- company's configuration row (report headers).
CREATE TABLE dbo.Komitent (
    SifKomit int NOT NULL PRIMARY KEY,
    ImeKomit1 nvarchar(100) NULL,
    ImeKomit2 nvarchar(100) NULL,
    Adresa nvarchar(100) NULL,
    Mjesto nvarchar(50) NULL,
    PostBroj nvarchar(10) NULL,
    IdBroj nvarchar(13) NULL,
    PDVBroj nvarchar(12) NULL,
    Telefon nvarchar(30) NULL
)
GO

CREATE TABLE dbo.CONFIG (
    BrojPoduzeca smallint NOT NULL PRIMARY KEY,
    NazivFirme nvarchar(100) NULL,
    Adresa nvarchar(100) NULL,
    Mjesto nvarchar(50) NULL,
    PostBroj nvarchar(10) NULL,
    IdBroj nvarchar(13) NULL,
    PDVBroj nvarchar(12) NULL,
    Telefon nvarchar(30) NULL,
    ZiroRacun nvarchar(50) NULL,
    Djelatnost nvarchar(100) NULL,
    Vlasnik nvarchar(100) NULL,
    Napomena ntext NULL
)
GO

-- The change journal: one record per change the component makes to a book, chained
-- per company and year by SHA-256 hashes (Hash covers the record's fields and the
-- previous record's Hash). Vrijeme is the server's time as text, hashed as stored.
CREATE TABLE dbo.KnjDnevnik (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    Redni int NOT NULL,
    TipKnjige smallint NOT NULL,
    BrojProd int NOT NULL,
    Vrijeme nvarchar(23) NOT NULL,
    Operater nvarchar(50) NULL,
    Radnja nvarchar(30) NOT NULL,
    RBroj int NULL,
    Prije nvarchar(max) NULL,
    Poslije nvarchar(max) NULL,
    Hash char(64) NOT NULL
)
GO
CREATE UNIQUE INDEX IX_KnjDnevnik_Redni ON dbo.KnjDnevnik (BrojPoduzeca, GodinaKnj, Redni)
GO

-- Closed periods: no entry of the book dated on or before ZakljucanoDo changes.
CREATE TABLE dbo.KnjZakljucano (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    TipKnjige smallint NOT NULL,
    ZakljucanoDo datetime NOT NULL
)
GO
CREATE UNIQUE INDEX IX_KnjZakljucano ON dbo.KnjZakljucano (BrojPoduzeca, GodinaKnj, TipKnjige)
GO
