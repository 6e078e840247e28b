-- Sets FIsCanUsed of every control row of one template: 0 when any line of that template number has no account or
-- holds a cell that the entry grid would mark red, else 1. The conditions below are the grid's own five checks, so
-- that what is red and what is reported as unusable agree.
--
-- datalength(x) > 0 stands for "x is not empty": a plain comparison would take a text of blanks for empty.
create procedure pro_VchTpCanUsed
    @FID int
as
begin
    set nocount on

    create table #Bad (FNo int not null)

    -- Account, settlement type, currency and measure unit, in one pass over the lines.
    insert into #Bad (FNo)
    select e.FNo from t_VchTemplateEntry e
    where e.FID = @FID and (
      -- Account: must be there and be a detail account.
      not exists (select 1 from t_Account a
                  where a.FNumber = ltrim(rtrim(isnull(e.FAccountNumber, ''))) and a.FDetail = 1)
      -- Settlement type: known, and only on a bank account.
      or datalength(e.FSettleName) > 0
         and (not exists (select 1 from t_Settle s where s.FName = ltrim(rtrim(e.FSettleName)))
              or not exists (select 1 from t_Account a
                             where a.FNumber = ltrim(rtrim(e.FAccountNumber)) and a.FDetail = 1 and a.FIsBank <> 0))
      -- Currency: known; an account kept in currency 1 takes no other.
      or datalength(e.FCurrencyName) > 0
         and not exists (select 1 from t_Currency c, t_Account a
                         where c.FName = ltrim(rtrim(e.FCurrencyName))
                           and a.FNumber = ltrim(rtrim(e.FAccountNumber)) and a.FDetail = 1
                           and (a.FCurrencyID <> 1 or c.FCurrencyID = 1))
      -- Measure unit: of the account's unit group.
      or datalength(e.FUnitName) > 0
         and not exists (select 1 from t_MeasureUnit u
                         where u.FMeasureUnitID > 0 and u.FName = ltrim(rtrim(e.FUnitName))
                           and u.FUnitGroupID = (select a.FUnitGroupID from t_Account a
                                                 where a.FNumber = ltrim(rtrim(e.FAccountNumber)) and a.FDetail = 1))
    )

    -- Accounting items: one piece per item class of the account, in the order of the class ids. FRest holds the
    -- pieces that are still to be looked at, each with a separator behind it; FComma is where the first one ends.
    -- The collation takes a full-width comma for a comma, so that unicode() has the last word: 44 is the comma.
    create table #Item (
        FEntryID int not null primary key,
        FNo int not null,
        FDetailID int not null,
        FRest nvarchar(256) collate database_default not null,
        FPiece nvarchar(256) collate database_default not null,
        FComma int not null
    )

    insert into #Item (FEntryID, FNo, FDetailID, FRest, FPiece, FComma)
    select e.FEntryID, e.FNo, isnull(a.FDetailID, 0), e.FItemsInfo + ',', e.FItemsInfo, 0
    from t_VchTemplateEntry e
    left join t_Account a on a.FNumber = ltrim(rtrim(e.FAccountNumber))
    where e.FID = @FID and datalength(e.FItemsInfo) > 0

    -- A text of nothing but separators stands for no items.
    while exists (select 1 from #Item where unicode(FPiece) = 44)
        update #Item set FPiece = substring(FPiece, 2, 256) where unicode(FPiece) = 44
    delete from #Item where datalength(FPiece) = 0

    -- An account without item classes takes no items.
    insert into #Bad (FNo)
    select i.FNo from #Item i
    where not exists (select 1 from t_ItemDetailV v
                      inner join t_ItemClass c on c.FItemClassID = v.FItemClassID
                      where v.FDetailID = i.FDetailID and c.FItemClassID > 0)

    declare @ItemClassID int
    declare @TableName nvarchar(80)
    declare @sql nvarchar(1000)
    declare class_cursor cursor local for
        select distinct v.FItemClassID, c.FSQLTableName
        from #Item i
        inner join t_ItemDetailV v on v.FDetailID = i.FDetailID
        inner join t_ItemClass c on c.FItemClassID = v.FItemClassID
        where c.FItemClassID > 0
        order by v.FItemClassID
    open class_cursor
    fetch next from class_cursor into @ItemClassID, @TableName
    while @@fetch_status = 0
    begin
        -- Only the lines whose account has this class; the others' FComma stays 0.
        update #Item set FComma = charindex(',', FRest)
        where FDetailID in (select v.FDetailID from t_ItemDetailV v where v.FItemClassID = @ItemClassID)
        while exists (select 1 from #Item where FComma > 0 and unicode(substring(FRest, FComma, 1)) <> 44)
            update #Item set FComma = charindex(',', FRest, FComma + 1)
            where FComma > 0 and unicode(substring(FRest, FComma, 1)) <> 44

        -- Fewer pieces than classes.
        insert into #Bad (FNo)
        select i.FNo from #Item i
        inner join t_ItemDetailV v on v.FDetailID = i.FDetailID and v.FItemClassID = @ItemClassID
        where i.FComma = 0

        -- The next piece of every line whose account has this class.
        update #Item
        set FPiece = case when FComma > 0 then left(FRest, FComma - 1) else '' end,
            FRest = substring(FRest, FComma + 1, 256),
            FComma = 0
        where FDetailID in (select v.FDetailID from t_ItemDetailV v where v.FItemClassID = @ItemClassID)

        -- It is empty or the number of an item of the class, whose table only the class knows.
        set @sql = 'insert into #Bad (FNo) select i.FNo from #Item i'
            + ' inner join t_ItemDetailV v on v.FDetailID = i.FDetailID'
            + ' and v.FItemClassID = ' + cast(@ItemClassID as nvarchar(20))
            + ' where datalength(i.FPiece) > 0'
        if object_id(@TableName) is not null
            set @sql = @sql + ' and not exists (select 1 from ' + @TableName
                + ' t where t.FNumber = ltrim(rtrim(i.FPiece)))'
        exec (@sql)

        fetch next from class_cursor into @ItemClassID, @TableName
    end
    close class_cursor
    deallocate class_cursor

    update t_VchTpControl
    set FIsCanUsed = case when FNo in (select b.FNo from #Bad b) then 0 else 1 end
    where FID = @FID

    drop table #Item
    drop table #Bad
end
GO
