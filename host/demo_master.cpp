#include "host/demo_master.h"

#include <charconv>

#include "automation/error.h"
#include "host/data_table.h"

namespace vicenter::host {

using automation::Error;

namespace {

constexpr int kFirstAccountId = 1000;
constexpr int kFirstItemId = 2000;

// Classes that have a column of their own in t_ItemDetail, in its order, and the tables of their items.
struct ItemClassTable {
    int classId;
    std::string_view table;
};
constexpr ItemClassTable kItemClasses[] = {
    {1, "t_Customer"}, {2, "t_Department"}, {3, "t_Employee"}, {8, "t_Supplier"}, {3001, "t_Item_3001"}};

int ToInt(std::string_view text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

template <class T>
const T* FindByName(const std::vector<T>& list, std::string_view name) {
    for (const T& entry : list) {
        if (entry.name == name) return &entry;
    }
    return nullptr;
}

std::string Number(std::int64_t value) {
    return std::to_string(value);
}

[[noreturn]] void ThrowBadTable(std::string_view what, std::string_view value) {
    throw Error(automation::error_number::kElementNotFound,
                "Demo ledger: unknown " + std::string(what) + " " + std::string(value));
}

}  // namespace

int DemoItemDetails::IdOf(const Combination& combination) {
    if (combination.empty()) return 0;
    const auto [place, isNew] = ids_.try_emplace(combination, static_cast<int>(ids_.size()) + 1);
    if (isNew) ordered_.push_back(&place->first);
    return place->second;
}

void DemoItemDetails::WriteNew(SqlWriter& writer) {
    for (; written_ < ordered_.size(); ++written_) {
        const Combination& combination = *ordered_[written_];
        const std::string id = Number(static_cast<std::int64_t>(written_) + 1);
        std::string row = "insert into t_ItemDetail(FDetailID,FDetailCount,F1,F2,F3,F8,F3001) values(" + id +
                          "," + Number(static_cast<std::int64_t>(combination.size()));
        for (const ItemClassTable& itemClass : kItemClasses) {
            int item = 0;
            for (const auto& [classId, itemId] : combination) {
                if (classId == itemClass.classId) item = itemId;
            }
            row += "," + Number(item);
        }
        writer.Add(row + ")");
        for (const auto& [classId, itemId] : combination) {
            writer.Add("insert into t_ItemDetailV(FDetailID,FItemClassID,FItemID) values(" + id + "," +
                       Number(classId) + "," + Number(itemId) + ")");
        }
    }
}

DemoMaster DemoMaster::Read() {
    DemoMaster master;
    master.ReadOthers();
    master.ReadAccounts();
    return master;
}

void DemoMaster::ReadOthers() {
    for (const DataRecord& record : ReadDataTable("demo/items.tsv")) {
        DemoItem item;
        item.id = kFirstItemId + static_cast<int>(items_.size());
        item.classId = ToInt(DataField(record, 0));
        item.number = DataField(record, 1);
        item.name = DataField(record, 2);
        item.department = DataField(record, 3);
        itemIndex_.emplace(item.number, items_.size());
        items_.push_back(std::move(item));
    }
    for (const DataRecord& record : ReadDataTable("demo/units.tsv")) {
        DemoUnit unit;
        unit.id = static_cast<int>(units_.size()) + 1;
        unit.groupId = ToInt(DataField(record, 0));
        unit.groupName = DataField(record, 1);
        unit.number = DataField(record, 2);
        unit.name = DataField(record, 3);
        unit.coefficient = DataField(record, 4);
        unit.standard = units_.empty() || units_.back().groupId != unit.groupId;
        units_.push_back(std::move(unit));
    }
    currencies_.push_back({kBookCurrencyId, "RMB", "人民币", "1"});
    for (const DataRecord& record : ReadDataTable("demo/currencies.tsv")) {
        currencies_.push_back({ToInt(DataField(record, 0)), std::string(DataField(record, 1)),
                               std::string(DataField(record, 2)), std::string(DataField(record, 3))});
    }
    for (const DataRecord& record : ReadDataTable("demo/settles.tsv")) {
        settles_.push_back({static_cast<int>(settles_.size()) + 1, std::string(DataField(record, 0)),
                            std::string(DataField(record, 1))});
    }
}

void DemoMaster::ReadAccounts() {
    for (const DataRecord& record : ReadDataTable("demo/accounts.tsv")) {
        DemoAccount account;
        account.id = kFirstAccountId + static_cast<int>(accounts_.size());
        account.number = DataField(record, 0);
        account.name = DataField(record, 1);
        account.fullName = account.name;
        account.debit = DataField(record, 2) == "借";
        if (const std::string_view currency = DataField(record, 3); currency == "*") {
            account.currencyId = 0;
        } else if (!currency.empty()) {
            for (const DemoCurrency& known : currencies_) {
                if (known.number == currency) account.currencyId = known.id;
            }
            if (account.currencyId == kBookCurrencyId) ThrowBadTable("currency", currency);
        }
        account.bank = DataField(record, 4) == "bank";
        account.cash = DataField(record, 4) == "cash";
        for (const DemoUnit& unit : units_) {
            if (unit.number != DataField(record, 5)) continue;
            account.unitId = unit.id;
            account.unitGroupId = unit.groupId;
        }
        DemoItemDetails::Combination classes;
        for (const std::string_view itemClass : SplitText(DataField(record, 6), ',')) {
            account.itemClasses.push_back(ToInt(itemClass));
            classes.emplace_back(ToInt(itemClass), -1);
        }
        account.detailId = details_.IdOf(classes);
        // A group account stands before its sub-accounts; the number up to the last point is the parent's.
        if (const std::size_t point = account.number.rfind('.'); point != std::string::npos) {
            const auto parent = accountIndex_.find(std::string_view(account.number).substr(0, point));
            if (parent == accountIndex_.end()) ThrowBadTable("parent of account", account.number);
            DemoAccount& group = accounts_[parent->second];
            group.detail = false;
            account.parentId = group.id;
            account.level = group.level + 1;
            account.fullName = group.fullName + "_" + account.name;
        }
        accountIndex_.emplace(account.number, accounts_.size());
        accounts_.push_back(std::move(account));
    }
}

const DemoAccount* DemoMaster::FindAccount(std::string_view number) const {
    const auto found = accountIndex_.find(number);
    return found == accountIndex_.end() ? nullptr : &accounts_[found->second];
}

const DemoSettle* DemoMaster::FindSettle(std::string_view name) const {
    return FindByName(settles_, name);
}

const DemoCurrency* DemoMaster::FindCurrency(std::string_view name) const {
    return FindByName(currencies_, name);
}

const DemoUnit* DemoMaster::FindUnit(std::string_view name) const {
    return FindByName(units_, name);
}

const DemoItem* DemoMaster::FindItem(std::string_view number) const {
    const auto found = itemIndex_.find(number);
    return found == itemIndex_.end() ? nullptr : &items_[found->second];
}

int DemoMaster::DetailOf(const DemoAccount& account, const std::vector<std::string_view>& itemNumbers) {
    if (itemNumbers.size() != account.itemClasses.size()) ThrowBadTable("items of account", account.number);
    DemoItemDetails::Combination combination;
    for (std::size_t i = 0; i < itemNumbers.size(); ++i) {
        const DemoItem* item = FindItem(itemNumbers[i]);
        if (item == nullptr || item->classId != account.itemClasses[i]) ThrowBadTable("item", itemNumbers[i]);
        combination.emplace_back(item->classId, item->id);
    }
    return details_.IdOf(combination);
}

void DemoMaster::Write(SqlWriter& writer) {
    WriteOthers(writer);
    WriteAccounts(writer);
    details_.WriteNew(writer);
}

void DemoMaster::WriteOthers(SqlWriter& writer) const {
    for (const DemoCurrency& currency : currencies_) {
        if (currency.id == kBookCurrencyId) continue;  // every account set starts with it
        writer.Add("insert into t_Currency(FCurrencyID,FNumber,FName,FExchangeRate,FScale) values(" +
                   Number(currency.id) + "," + SqlLiteral(currency.number) + "," + SqlLiteral(currency.name) +
                   "," + currency.rate + ",2)");
    }
    for (const DemoSettle& settle : settles_) {
        writer.Add("insert into t_Settle(FItemID,FNumber,FName) values(" + Number(settle.id) + "," +
                   SqlLiteral(settle.number) + "," + SqlLiteral(settle.name) + ")");
    }
    for (const DemoUnit& unit : units_) {
        if (unit.standard) {
            writer.Add("insert into t_UnitGroup(FUnitGroupID,FName) values(" + Number(unit.groupId) + "," +
                       SqlLiteral(unit.groupName) + ")");
        }
        writer.Add(
            "insert into t_MeasureUnit(FMeasureUnitID,FUnitGroupID,FNumber,FName,FCoefficient,FStandard) "
            "values(" +
            Number(unit.id) + "," + Number(unit.groupId) + "," + SqlLiteral(unit.number) + "," +
            SqlLiteral(unit.name) + "," + unit.coefficient + "," + (unit.standard ? "1" : "0") + ")");
    }
    for (const DemoItem& item : items_) {
        std::string_view table;
        for (const ItemClassTable& itemClass : kItemClasses) {
            if (itemClass.classId == item.classId) table = itemClass.table;
        }
        const bool hasDepartment = !item.department.empty();
        const DemoItem* department = hasDepartment ? FindItem(item.department) : nullptr;
        writer.Add("insert into " + std::string(table) + "(FItemID,FNumber,FName" +
                   (department ? ",FDepartmentID" : "") + ") values(" + Number(item.id) + "," +
                   SqlLiteral(item.number) + "," + SqlLiteral(item.name) +
                   (department ? "," + Number(department->id) : "") + ")");
    }
    int explanationId = 0;
    for (const DataRecord& record : ReadDataTable("demo/explanations.tsv")) {
        const std::string_view number = DataField(record, 3);
        const DemoAccount* account = number.empty() ? nullptr : FindAccount(number);
        if (!number.empty() && account == nullptr) ThrowBadTable("account", number);
        writer.Add(
            "insert into t_VoucherExp(FExplanationID,FNumber,FGroupName,FExplanation,FAccountID) values(" +
            Number(++explanationId) + "," + SqlLiteral(DataField(record, 0)) + "," +
            SqlLiteral(DataField(record, 1)) + "," + SqlLiteral(DataField(record, 2)) + "," +
            Number(account ? account->id : 0) + ")");
    }
}

void DemoMaster::WriteAccounts(SqlWriter& writer) const {
    for (const DemoAccount& account : accounts_) {
        writer.Add(
            "insert into t_Account(FAccountID,FNumber,FName,FFullName,FLevel,FDetail,FParentID,FGroupID,FDC,"
            "FCurrencyID,FIsBank,FIsCash,FQuantities,FUnitGroupID,FMeasureUnitID,FDetailID) values(" +
            Number(account.id) + "," + SqlLiteral(account.number) + "," + SqlLiteral(account.name) + "," +
            SqlLiteral(account.fullName) + "," + Number(account.level) + "," + (account.detail ? "1" : "0") +
            "," + Number(account.parentId) + "," + account.number.substr(0, 1) + "," +
            (account.debit ? "1" : "0") + "," + Number(account.currencyId) + "," +
            (account.bank ? "1" : "0") + "," + (account.cash ? "1" : "0") + "," +
            (account.unitId > 0 ? "1" : "0") + "," + Number(account.unitGroupId) + "," +
            Number(account.unitId) + "," + Number(account.detailId) + ")");
    }
}

}  // namespace vicenter::host
