#pragma once

// Values between the automation's Variant and COM's VARIANT.
//
//   our value        as VARIANT                                  a VARIANT of          is
//   Int64            VT_I4 when it fits, else VT_DECIMAL          any integer           the smallest of ours
//   Decimal          VT_DECIMAL; past its 29 digits a text        VT_CY, VT_DECIMAL     a Decimal
//   Date             VT_DATE; before the year 100 a text          VT_DATE               a Date; 6 for a
//   number
//                                                                                        that is none
//   Text             VT_BSTR, U+0000 within it too                VT_BSTR               a Text
//   Array            SAFEARRAY of VARIANT, one dimension from 0   any SAFEARRAY         an Array; of several
//                                                                                        dimensions of Arrays
//   Object           VT_DISPATCH; no object is Nothing            VT_DISPATCH, VT_UNKNOWN  an Object
// All others have their counterpart. 64-bit integers are told as VT_I4 or VT_DECIMAL because script hosts
// know no VT_I8.

#include "automation/variant.h"
#include "platform/com/com_headers.h"

namespace vicenter::com {

// A VARIANT that is cleared at the end of the scope.
class OwnVariant {
  public:
    OwnVariant() { VariantInit(&value_); }
    explicit OwnVariant(const automation::Variant& value);
    OwnVariant(const OwnVariant&) = delete;
    OwnVariant& operator=(const OwnVariant&) = delete;
    ~OwnVariant() { VariantClear(&value_); }

    VARIANT& Value() { return value_; }
    const VARIANT& Value() const { return value_; }
    // Hands the content to the caller's, which is overwritten.
    void MoveTo(VARIANT& target) {
        target = value_;
        VariantInit(&value_);
    }

  private:
    VARIANT value_;
};

// What a VARIANT holds, behind references as well. Throws 13 for what has no counterpart.
automation::Variant FromCom(const VARIANT& value);
// Writes to a variable that was passed by reference, in the type that it has.
void AssignToReference(const VARIANT& reference, const automation::Variant& value);

// Texts; a BSTR is the caller's to free.
BSTR NewText(std::string_view text);
std::string TextOf(BSTR text);

}  // namespace vicenter::com
