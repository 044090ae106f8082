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

-- Long-term asset lists of both entities (101, 105). A row inserted without RBroj (the
-- opening state of a new year) takes the next number of its company and year.
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
    DECLARE @Poduzece smallint, @Godina smallint, @Zadnji int;
    WHILE EXISTS (SELECT 1 FROM inserted I WHERE I.RBroj IS NULL)
          AND EXISTS (SELECT 1 FROM dbo.KnjPopListaDugImovFBiH K WHERE K.RBroj IS NULL)
    BEGIN
        SELECT TOP (1) @Poduzece = K.BrojPoduzeca, @Godina = K.GodinaKnj
            FROM dbo.KnjPopListaDugImovFBiH K WHERE K.RBroj IS NULL;
        SELECT @Zadnji = ISNULL(MAX(K.RBroj), 0) FROM dbo.KnjPopListaDugImovFBiH K
            WHERE K.BrojPoduzeca = @Poduzece AND K.GodinaKnj = @Godina;
        UPDATE TOP (1) dbo.KnjPopListaDugImovFBiH SET RBroj = @Zadnji + 1
            WHERE RBroj IS NULL AND BrojPoduzeca = @Poduzece AND GodinaKnj = @Godina;
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
