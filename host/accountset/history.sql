-- What voucher templates held before a command wrote to them. Only account sets whose administrator asked for it
-- have these tables: without them nothing is kept. Runs as it stands on SQL Server and on the embedded account set.

-- One row for each version. FCommand: 1 saved, 2 imported over, 3 generated over, 4 renamed, 5 deleted, 6 restored
-- over, or brought back after its deletion, 7 codes replaced (those of one replacement have one
-- FKeptAt); FKeptBy gave that command, FKeptAt is when. FName and FOwnerID are the version's own.
create table t_VchTpHistory (
    FHistoryID int identity(1,1) not null constraint PK_t_VchTpHistory primary key,
    FID int not null,
    FName nvarchar(255) not null,
    FOwnerID int not null,
    FCommand int not null,
    FKeptBy int not null,
    FKeptAt datetime not null,
    FLines int not null
)
GO

create index IX_t_VchTpHistory_Template on t_VchTpHistory (FID, FHistoryID)
GO

create table t_VchTpHistoryEntry (
    FHistoryID int not null,
    FEntryID int not null,
    FNo int not null,
    FExp nvarchar(255) null,
    FDC int null,
    FAccountID int null,
    FAccountNumber nvarchar(80) null,
    FAcctountName nvarchar(160) null,
    FSettleID int null,
    FSettleName nvarchar(80) null,
    FSettleNumber nvarchar(100) null,
    FCurrencyID int null,
    FCurrencyName nvarchar(30) null,
    FRate decimal(28, 10) null,
    FAmountFor decimal(28, 4) null,
    FAmount decimal(28, 4) null,
    FQty decimal(28, 4) null,
    FPrice decimal(28, 10) null,
    FUnitID int null,
    FUnitName nvarchar(80) null,
    FRemark nvarchar(80) null,
    FFileCount int null,
    FItemsInfo nvarchar(255) null,
    constraint PK_t_VchTpHistoryEntry primary key (FHistoryID, FEntryID)
)
GO

create table t_VchTpHistoryControl (
    FHistoryID int not null,
    FNo int not null,
    FUseFrequency int not null,
    FKey nvarchar(255) null,
    FFileCount int null,
    constraint PK_t_VchTpHistoryControl primary key (FHistoryID, FNo)
)
GO

-- How long versions are kept: FDays, and of every template at least FVersions. At most one row; without it the
-- component's own rule holds.
create table t_VchTpHistoryRule (
    FDays int not null,
    FVersions int not null
)
GO
