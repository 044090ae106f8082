-- The tables of the host's other modules that the DB income and expense book is
-- generated from: outgoing invoices (KIF) and their payments, incoming invoices (KUF)
-- and their payments, internal dispatch notes of the wholesale warehouse (MAT) and of
-- the retail shops (POS), and the operators' rights to warehouses and shops. SQL
-- Server; the embedded database builds the same tables from this script through the
-- dialect adapter. Only the columns the generator reads and their keys are here; the
-- modules that own the tables keep more. Batches are separated by GO lines.

-- Outgoing invoices. Vrsta is the document kind: 'DGP' the daily takings of a shop
-- (dnevni gotovinski promet), 'VP' a wholesale invoice.
CREATE TABLE Ifakture (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    Vrsta nvarchar(10) NOT NULL,
    OrgJed int NOT NULL,
    BrojIfakt int NOT NULL,
    DatumIfakt datetime NULL,
    SifKomit int NULL,
    IznosIfakt money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_Ifakture ON Ifakture (BrojPoduzeca, GodinaKnj, OrgJed, Vrsta, BrojIfakt)
GO

CREATE TABLE IFAKTUplate (
    BrojPoduzeca smallint NOT NULL,
    BrojIFAKT int NOT NULL,
    GodinaKnj smallint NOT NULL,
    OrgJed int NOT NULL,
    Vrsta nvarchar(10) NOT NULL,
    Datum datetime NULL,
    BrojDokumenta nvarchar(20) NULL,
    Iznos money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_IFAKTUplate ON IFAKTUplate (BrojPoduzeca, GodinaKnj, OrgJed, Vrsta, BrojIFAKT)
GO

-- Incoming invoices; SifKomit is the supplier.
CREATE TABLE KUF (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    Vrsta nvarchar(10) NOT NULL,
    OrgJed int NOT NULL,
    BrojKUFa int NOT NULL,
    SifKomit int NULL,
    DatFakture datetime NULL,
    IznosFakture money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KUF ON KUF (BrojPoduzeca, GodinaKnj, OrgJed, Vrsta, BrojKUFa)
GO

-- Payments of incoming invoices. BrojDokumenta names the bank statement or the cash
-- desk slip the payment was made with.
CREATE TABLE KUFUplate (
    BrojPoduzeca smallint NOT NULL,
    BrojKUFa int NOT NULL,
    GodinaKnj smallint NOT NULL,
    OrgJed int NOT NULL,
    Vrsta nvarchar(10) NOT NULL,
    Datum datetime NULL,
    BrojDokumenta nvarchar(20) NULL,
    Iznos money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_KUFUplate ON KUFUplate (BrojPoduzeca, GodinaKnj, OrgJed, Vrsta, BrojKUFa)
GO

-- Internal dispatch notes of the wholesale warehouse BrojSklad to the receiver
-- ŠifraKom (a partner code): amount without tax and the tax total.
CREATE TABLE dbo.MOtpremInt (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    BrojSklad int NOT NULL,
    BrojOtprem int NOT NULL,
    ŠifraKom int NULL,
    DatumOtprem datetime NULL,
    IznosOtprem money NULL DEFAULT (0),
    UkPorez money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_MOtpremInt ON dbo.MOtpremInt (BrojPoduzeca, GodinaKnj, BrojSklad, BrojOtprem)
GO

-- Internal dispatch notes of the retail shop BrojSklad.
CREATE TABLE dbo.RIntOtprem (
    BrojPoduzeca smallint NOT NULL,
    GodinaKnj smallint NOT NULL,
    BrojSklad int NOT NULL,
    BrojPovr int NOT NULL,
    ŠifraKom int NULL,
    DatumPovr datetime NULL,
    IznosPovr money NULL DEFAULT (0)
)
GO
CREATE INDEX IX_RIntOtprem ON dbo.RIntOtprem (BrojPoduzeca, GodinaKnj, BrojSklad, BrojPovr)
GO

-- Which warehouses (PROGRAM 'SKLADIŠTE') and shops ('MALOPROBJEKT') an operator may
-- work with; PRAVO holds the warehouse or shop number as text.
CREATE TABLE PRAVA (
    OPERATER nvarchar(10) NOT NULL,
    PROGRAM nvarchar(20) NOT NULL,
    PRAVO nvarchar(10) NOT NULL
)
GO
CREATE INDEX IX_PRAVA ON PRAVA (OPERATER, PROGRAM)
GO
