// clsVIData as hosts see it: the table of its late-bound members.

#include "store/cls_vi_data.h"

namespace vicenter::store {

using automation::Arguments;
using automation::MemberTable;
using automation::Method;
using automation::Property;

namespace {

std::string TextAt(const Arguments& arguments, std::size_t index) {
    return arguments[index].Value().ToTextOrEmpty();
}

// A recordset or dictionary as a value; no object when there is none.
template <class T>
Variant ObjectOf(std::shared_ptr<T> object) {
    return Variant(automation::ObjectRef(std::move(object)));
}

}  // namespace

const MemberTable<clsVIData>& clsVIData::Members() {
    using Self = clsVIData;
    static const MemberTable<Self> table{
        Property<Self>("mTransMode", [](Self& self, Arguments&) { return Variant(self.mTransMode()); }),
        Method<Self>("IsExecuteSql", {"strsql"},
                     [](Self& self, Arguments& a) { return Variant(self.IsExecuteSql(TextAt(a, 0))); }),
        Method<Self>("GetRs", {"strsql"},
                     [](Self& self, Arguments& a) { return ObjectOf(self.GetRs(TextAt(a, 0))); }),
        Method<Self>("GetUserCloudInfo", {},
                     [](Self& self, Arguments&) { return ObjectOf(self.GetUserCloudInfo()); }),
        Method<Self>(
            "GetVchTemplateByUserID", {"iUserID"},
            [](Self& self, Arguments& a) { return ObjectOf(self.GetVchTemplateByUserID(TextAt(a, 0))); }),
        Method<Self>(
            "GetVchTpProfileByUserID", {"iUserID"},
            [](Self& self, Arguments& a) { return Variant(self.GetVchTpProfileByUserID(TextAt(a, 0))); }),
        Method<Self>("GetVchEntryCount", {"iFID"},
                     [](Self& self, Arguments& a) { return Variant(self.GetVchEntryCount(TextAt(a, 0))); }),
        Method<Self>(
            "CheckVchTemplateIsExist", {"strName"},
            [](Self& self, Arguments& a) { return Variant(self.CheckVchTemplateIsExist(TextAt(a, 0))); }),
        Method<Self>(
            "DeleteVchTemplateInfo", {"FID"},
            [](Self& self, Arguments& a) { return Variant(self.DeleteVchTemplateInfo(TextAt(a, 0))); }),
        Method<Self>("InsertVchTemplateInfo", {"lMaxNum"},
                     [](Self& self, Arguments& a) {
                         std::int32_t number = a[0].Value().ToInt32();
                         const std::int32_t id = self.InsertVchTemplateInfo(number);
                         a[0].Assign(number);
                         return Variant(id);
                     }),
        Method<Self>(
            "GetVchTemplateEntryInfo", {"FID"},
            [](Self& self, Arguments& a) { return ObjectOf(self.GetVchTemplateEntryInfo(TextAt(a, 0))); }),
        Method<Self>("GetItemInfoByNumber", {"iType", "strValue"},
                     [](Self& self, Arguments& a) {
                         return ObjectOf(self.GetItemInfoByNumber(a[0].Value().ToInt32(), a[1].Value()));
                     }),
        Method<Self>("MergeItemsInfo", {"lDetailID"},
                     [](Self& self, Arguments& a) { return Variant(self.MergeItemsInfo(TextAt(a, 0))); }),
        Method<Self>("GetItems", {"strAcctNumber"},
                     [](Self& self, Arguments& a) { return ObjectOf(self.GetItems(a[0].Value())); }),
        Method<Self>("GetItemClassIDs", {"FDetailID"},
                     [](Self& self, Arguments& a) { return ObjectOf(self.GetItemClassIDs(TextAt(a, 0))); }),
        Method<Self>("CheckErrorCell",
                     {"iType", "strAcctNumber", "strSettleName", "strCyName", "strUnitName", "strItems"},
                     [](Self& self, Arguments& a) {
                         return Variant(self.CheckErrorCell(a[0].Value().ToInt32(), a[1].Value(),
                                                            a[2].Value(), a[3].Value(), a[4].Value(),
                                                            a[5].Value()));
                     }),
    };
    return table;
}

}  // namespace vicenter::store
