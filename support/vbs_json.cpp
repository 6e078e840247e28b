#include "support/vbs_json.h"

#include "support/json_decoder.h"
#include "support/json_encoder.h"

namespace vicenter::support {

using automation::Arguments;
using automation::MemberTable;
using automation::Method;
using automation::Variant;

const MemberTable<VbsJson>& VbsJson::Members() {
    using Self = VbsJson;
    static const MemberTable<Self> table{
        Method<Self>("Encode", {"value"},
                     [](Self& self, Arguments& a) { return Variant(self.Encode(a[0].Value())); }),
        Method<Self>("Decode", {"text"},
                     [](Self& self, Arguments& a) {
                         const Variant& text = a[0].Value();
                         return text.IsText() ? self.Decode(text.AsText()) : self.Decode(text.ToText());
                     }),
    };
    return table;
}

std::string VbsJson::Encode(const Variant& value) {
    return JsonEncoder().Encode(value);
}

Variant VbsJson::Decode(std::string_view text) {
    return JsonDecoder(text).Decode();
}

}  // namespace vicenter::support
