-- What every account set starts with: one user with all rights, the books' own currency, one voucher group, the
-- usual classes of accounting items and the ledger's calendar.

insert into t_User (FUserID, FName, FDescription) values (1, N'系统管理员', N'管理员')
-- Function group 4 of type 4 is the general ledger; 3145728 are the bits of voucher templates.
insert into t_UserRight (FUserID, FGroupType, FGroupID, FAccess) values (1, 4, 4, 2147483647)
GO

insert into t_Currency (FCurrencyID, FNumber, FName, FExchangeRate, FScale) values (1, 'RMB', N'人民币', 1, 2)
GO

insert into t_VoucherGroup (FGroupID, FName) values (1, N'记')
GO

insert into t_ItemClass (FItemClassID, FNumber, FName, FSQLTableName) values (1, '001', N'客户', 't_Customer')
insert into t_ItemClass (FItemClassID, FNumber, FName, FSQLTableName) values (2, '002', N'部门', 't_Department')
insert into t_ItemClass (FItemClassID, FNumber, FName, FSQLTableName) values (3, '003', N'职员', 't_Employee')
insert into t_ItemClass (FItemClassID, FNumber, FName, FSQLTableName) values (8, '008', N'供应商', 't_Supplier')
insert into t_ItemClass (FItemClassID, FNumber, FName, FSQLTableName) values (3001, '3001', N'项目', 't_Item_3001')
GO

insert into t_SystemProfile (FCategory, FKey, FValue) values ('GL', 'PeriodCount', '12')
insert into t_SystemProfile (FCategory, FKey, FValue) values ('GL', 'CurrentYear', cast(year(getdate()) as nvarchar(10)))
insert into t_SystemProfile (FCategory, FKey, FValue) values ('GL', 'CurrentPeriod', cast(month(getdate()) as nvarchar(10)))
GO
