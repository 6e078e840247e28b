-- Tables of an account set: the ledger's, as far as voucher templates read them, the host's own, and the four
-- tables of voucher templates. Runs as it stands on SQL Server and on the embedded account set.

-- ---- users, rights, settings, logs ------------------------------------------------------------------------

create table t_User (
    FUserID int not null constraint PK_t_User primary key,
    FName nvarchar(80) not null,
    FDescription nvarchar(255) not null default ('')
)
GO

-- One row per user and function group: the bits of FAccess are the functions that the user may use.
create table t_UserRight (
    FUserID int not null,
    FGroupType int not null,
    FGroupID int not null,
    FAccess int not null,
    constraint PK_t_UserRight primary key (FUserID, FGroupType, FGroupID)
)
GO

create table t_UserSetting (
    FUserID int not null,
    FCategory nvarchar(50) not null,
    FKey nvarchar(50) not null,
    FValue nvarchar(255) null,
    constraint PK_t_UserSetting primary key (FUserID, FCategory, FKey)
)
GO

create table t_SystemProfile (
    FCategory nvarchar(50) not null,
    FKey nvarchar(50) not null,
    FValue nvarchar(255) null,
    constraint PK_t_SystemProfile primary key (FCategory, FKey)
)
GO

-- Operation log. FKind: 1 requested or opened, 2 closed, 3 succeeded, 4 failed.
create table t_Log (
    FLogID int identity(1, 1) not null constraint PK_t_Log primary key,
    FDate datetime not null,
    FUserID int not null,
    FFunctionID nvarchar(20) not null,
    FKind int not null,
    FDescription nvarchar(1000) not null
)
GO

-- Usage record of the program frame.
create table t_FrameLog (
    FLogID int identity(1, 1) not null constraint PK_t_FrameLog primary key,
    FDate datetime not null,
    FUserID int not null,
    FCode nvarchar(50) not null,
    FName nvarchar(255) not null
)
GO

create table t_UserCloud (
    FUserID int not null constraint PK_t_UserCloud primary key,
    FCloudUserID nvarchar(50) not null,
    FCloudUserName nvarchar(80) not null,
    FCloudURL nvarchar(255) not null default ('')
)
GO

-- Files on the users' cloud drives.
create table t_CloudFile (
    FFileID int not null constraint PK_t_CloudFile primary key,
    FDate datetime not null,
    FUserID int not null,
    FFolderID int not null,
    FFolderName nvarchar(255) not null,
    FName nvarchar(255) not null,
    FExt nvarchar(20) not null,
    FBillID int not null default (0),
    FRemark nvarchar(255) not null default ('')
)
GO

-- ---- master data ------------------------------------------------------------------------------------------

-- FCurrencyID 1 is the currency in which the books are kept.
create table t_Currency (
    FCurrencyID int not null constraint PK_t_Currency primary key,
    FNumber nvarchar(10) not null,
    FName nvarchar(30) not null,
    FExchangeRate decimal(28, 10) not null default (1),
    FScale int not null default (2),
    constraint UQ_t_Currency_Number unique (FNumber),
    constraint UQ_t_Currency_Name unique (FName)
)
GO

create table t_Settle (
    FItemID int not null constraint PK_t_Settle primary key,
    FNumber nvarchar(80) not null,
    FName nvarchar(80) not null,
    constraint UQ_t_Settle_Number unique (FNumber),
    constraint UQ_t_Settle_Name unique (FName)
)
GO

create table t_UnitGroup (
    FUnitGroupID int not null constraint PK_t_UnitGroup primary key,
    FName nvarchar(80) not null
)
GO

create table t_MeasureUnit (
    FMeasureUnitID int not null constraint PK_t_MeasureUnit primary key,
    FUnitGroupID int not null,
    FNumber nvarchar(30) not null,
    FName nvarchar(80) not null,
    FCoefficient decimal(28, 10) not null default (1),
    FStandard int not null default (0),
    constraint UQ_t_MeasureUnit_Number unique (FNumber)
)
GO

create index IX_t_MeasureUnit_Group on t_MeasureUnit (FUnitGroupID, FName)
GO

-- A class of accounting items; FSQLTableName is the table that holds its items (FItemID, FNumber, FName).
create table t_ItemClass (
    FItemClassID int not null constraint PK_t_ItemClass primary key,
    FNumber nvarchar(30) not null,
    FName nvarchar(80) not null,
    FSQLTableName nvarchar(80) not null
)
GO

create table t_Customer (
    FItemID int not null constraint PK_t_Customer primary key,
    FNumber nvarchar(80) not null constraint UQ_t_Customer_Number unique,
    FName nvarchar(160) not null
)
GO

create table t_Department (
    FItemID int not null constraint PK_t_Department primary key,
    FNumber nvarchar(80) not null constraint UQ_t_Department_Number unique,
    FName nvarchar(160) not null
)
GO

create table t_Employee (
    FItemID int not null constraint PK_t_Employee primary key,
    FNumber nvarchar(80) not null constraint UQ_t_Employee_Number unique,
    FName nvarchar(160) not null,
    FDepartmentID int not null default (0)
)
GO

create table t_Supplier (
    FItemID int not null constraint PK_t_Supplier primary key,
    FNumber nvarchar(80) not null constraint UQ_t_Supplier_Number unique,
    FName nvarchar(160) not null
)
GO

-- Items of a class that the firm has made itself.
create table t_Item_3001 (
    FItemID int not null constraint PK_t_Item_3001 primary key,
    FNumber nvarchar(80) not null constraint UQ_t_Item_3001_Number unique,
    FName nvarchar(160) not null
)
GO

-- One row per combination of items: the chosen item of each class, 0 where the combination has no such class and
-- -1 where any item of the class may stand (the combination of an account).
create table t_ItemDetail (
    FDetailID int not null constraint PK_t_ItemDetail primary key,
    FDetailCount int not null default (0),
    F1 int not null default (0),
    F2 int not null default (0),
    F3 int not null default (0),
    F8 int not null default (0),
    F3001 int not null default (0)
)
GO

-- The same combinations, one row per class.
create table t_ItemDetailV (
    FDetailID int not null,
    FItemClassID int not null,
    FItemID int not null,
    constraint PK_t_ItemDetailV primary key (FDetailID, FItemClassID)
)
GO

-- FDC: 1 debit balance, 0 credit balance. FCurrencyID: the one currency of the account, 0 for any.
create table t_Account (
    FAccountID int not null constraint PK_t_Account primary key,
    FNumber nvarchar(80) not null constraint UQ_t_Account_Number unique,
    FName nvarchar(160) not null,
    FFullName nvarchar(255) not null default (''),
    FLevel int not null default (1),
    FDetail int not null default (1),
    FParentID int not null default (0),
    FGroupID int not null default (0),
    FDC int not null default (1),
    FCurrencyID int not null default (1),
    FIsBank int not null default (0),
    FIsCash int not null default (0),
    FQuantities int not null default (0),
    FUnitGroupID int not null default (0),
    FMeasureUnitID int not null default (0),
    FDetailID int not null default (0)
)
GO

create table t_VoucherExp (
    FExplanationID int not null constraint PK_t_VoucherExp primary key,
    FNumber nvarchar(30) not null constraint UQ_t_VoucherExp_Number unique,
    FGroupName nvarchar(80) not null default (''),
    FExplanation nvarchar(255) not null,
    FAccountID int not null default (0)
)
GO

-- ---- vouchers ---------------------------------------------------------------------------------------------

create table t_VoucherGroup (
    FGroupID int not null constraint PK_t_VoucherGroup primary key,
    FName nvarchar(30) not null constraint UQ_t_VoucherGroup_Name unique
)
GO

-- FTranType: 0 entered by hand, anything else made by the system.
create table t_Voucher (
    FVoucherID int not null constraint PK_t_Voucher primary key,
    FDate datetime not null,
    FYear int not null,
    FPeriod int not null,
    FGroupID int not null,
    FNumber int not null,
    FExplanation nvarchar(255) not null default (''),
    FAttachments int not null default (0),
    FEntryCount int not null default (0),
    FDebitTotal decimal(28, 4) not null default (0),
    FCreditTotal decimal(28, 4) not null default (0),
    FPosted int not null default (0),
    FPreparerID int not null default (0),
    FPosterID int not null default (0),
    FTranType int not null default (0),
    constraint UQ_t_Voucher_Number unique (FYear, FPeriod, FGroupID, FNumber)
)
GO

create index IX_t_Voucher_Number on t_Voucher (FYear, FPeriod, FNumber)
GO

-- FDC: 1 debit, 0 credit.
create table t_VoucherEntry (
    FVoucherID int not null,
    FEntryID int not null,
    FExplanation nvarchar(255) not null default (''),
    FAccountID int not null,
    FDC int not null,
    FCurrencyID int not null default (1),
    FExchangeRate decimal(28, 10) not null default (1),
    FAmountFor decimal(28, 4) not null default (0),
    FAmount decimal(28, 4) not null default (0),
    FQuantity decimal(28, 4) not null default (0),
    FMeasureUnitID int not null default (0),
    FUnitPrice decimal(28, 10) not null default (0),
    FDetailID int not null default (0),
    FSettleTypeID int not null default (0),
    FSettleNo nvarchar(100) not null default (''),
    constraint PK_t_VoucherEntry primary key (FVoucherID, FEntryID)
)
GO

-- ---- voucher templates ------------------------------------------------------------------------------------

-- FID 0 is the standard template that all users share.
create table t_VchTemplate (
    FID int not null constraint PK_t_VchTemplate primary key,
    FName nvarchar(255) not null,
    FUserID int not null,
    FNXUserID nvarchar(50) null,
    FDate datetime not null
)
GO

create index IX_t_VchTemplate_Name on t_VchTemplate (FName)
GO

create index IX_t_VchTemplate_User on t_VchTemplate (FUserID, FID)
GO

-- Columns that a workbook or a voucher does not carry stay at their defaults; a missing value may also be null.
create table t_VchTemplateEntry (
    FID int not null,
    FEntryID int not null,
    FNo int not null,
    FExp nvarchar(255) null default (''),
    FDC int null default (0),
    FAccountID int null default (0),
    FAccountNumber nvarchar(80) null default (''),
    FAcctountName nvarchar(160) null default (''),
    FSettleID int null default (0),
    FSettleName nvarchar(80) null default (''),
    FSettleNumber nvarchar(100) null default (''),
    FCurrencyID int null default (0),
    FCurrencyName nvarchar(30) null default (''),
    FRate decimal(28, 10) null default (0),
    FAmountFor decimal(28, 4) null default (0),
    FAmount decimal(28, 4) null default (0),
    FQty decimal(28, 4) null default (0),
    FPrice decimal(28, 10) null default (0),
    FUnitID int null default (0),
    FUnitName nvarchar(80) null default (''),
    FRemark nvarchar(80) null default (''),
    FFileCount int null default (0),
    FItemsInfo nvarchar(255) null default (''),
    constraint PK_t_VchTemplateEntry primary key (FID, FEntryID)
)
GO

create index IX_t_VchTemplateEntry_No on t_VchTemplateEntry (FID, FNo, FEntryID)
GO

create table t_VchTpControl (
    FID int not null,
    FNo int not null,
    FUseFrequency int not null default (0),
    FKey nvarchar(255) null default (''),
    FFileCount int null default (0),
    FIsCanUsed int not null default (0),
    constraint PK_t_VchTpControl primary key (FID, FNo)
)
GO

create table t_VchTpProfile (
    FUserID int not null constraint PK_t_VchTpProfile primary key,
    FValue nvarchar(1000) null
)
GO
