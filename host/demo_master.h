#pragma once

// The demo ledger's master data: accounts, items, units, currencies, settlement types, explanations, users.
// Read once from the tables under host/demo/; ids are given in the order of the tables. A value type after
// Read().

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/sql_writer.h"

namespace vicenter::host {

// The books' own currency.
inline constexpr int kBookCurrencyId = 1;

struct DemoAccount {
    int id = 0;
    std::string number;
    std::string name;
    std::string fullName;
    int level = 1;
    int parentId = 0;
    bool detail = true;
    bool debit = true;                 // side of its balance
    int currencyId = kBookCurrencyId;  // 0 for any
    bool bank = false;
    bool cash = false;
    int unitGroupId = 0;
    int unitId = 0;
    std::vector<int> itemClasses;
    int detailId = 0;
};

struct DemoItem {
    int id = 0;
    int classId = 0;
    std::string number;
    std::string name;
    std::string department;  // number, of employees
};

struct DemoUnit {
    int id = 0;
    int groupId = 0;
    std::string groupName;
    std::string number;
    std::string name;
    std::string coefficient;
    bool standard = false;
};

struct DemoCurrency {
    int id = 0;
    std::string number;
    std::string name;
    std::string rate;
};

struct DemoSettle {
    int id = 0;
    std::string number;
    std::string name;
};

// Combinations of items: (item class, item) in ascending class order, item -1 for "any" in an account's own.
class DemoItemDetails {
  public:
    using Combination = std::vector<std::pair<int, int>>;

    DemoItemDetails() = default;
    // Moving keeps the nodes that ordered_ points into; a copy would not.
    DemoItemDetails(DemoItemDetails&&) = default;
    DemoItemDetails& operator=(DemoItemDetails&&) = default;

    // The id of a combination, a new one when it has not been met; 0 for the empty one.
    int IdOf(const Combination& combination);
    // Writes the combinations that have come up since the last call.
    void WriteNew(SqlWriter& writer);

  private:
    std::map<Combination, int> ids_;
    std::vector<const Combination*> ordered_;
    std::size_t written_ = 0;
};

class DemoMaster {
  public:
    static DemoMaster Read();

    // Nothing (a null pointer) for an unknown number or name.
    const DemoAccount* FindAccount(std::string_view number) const;
    const DemoSettle* FindSettle(std::string_view name) const;
    const DemoCurrency* FindCurrency(std::string_view name) const;
    const DemoUnit* FindUnit(std::string_view name) const;
    const DemoItem* FindItem(std::string_view number) const;

    // The combination for items of an account given by their numbers, in the order of its classes.
    int DetailOf(const DemoAccount& account, const std::vector<std::string_view>& itemNumbers);

    const std::vector<DemoAccount>& Accounts() const { return accounts_; }
    DemoItemDetails& ItemDetails() { return details_; }

    void Write(SqlWriter& writer);

  private:
    void ReadAccounts();
    void ReadOthers();
    void WriteAccounts(SqlWriter& writer) const;
    void WriteOthers(SqlWriter& writer) const;

    std::vector<DemoAccount> accounts_;
    std::vector<DemoItem> items_;
    std::vector<DemoUnit> units_;
    std::vector<DemoCurrency> currencies_;
    std::vector<DemoSettle> settles_;
    std::map<std::string, std::size_t, std::less<>> accountIndex_;
    std::map<std::string, std::size_t, std::less<>> itemIndex_;
    DemoItemDetails details_;
};

}  // namespace vicenter::host
