#include "front/com/public_classes.h"

#include <algorithm>

namespace vicenter::front {

namespace {

const PublicClass kClasses[] = {
    {"VelaVICenter.aplication",
     L"Voucher Template Center",
     {0xCB676E64, 0x08A3, 0x419D, {0xA5, 0x49, 0x61, 0x1B, 0x88, 0xF6, 0x3F, 0xD6}}},
    {"VelaVICenter.clsVIData",
     L"Voucher Template Center data",
     {0xE057ECA1, 0xF300, 0x496A, {0xAF, 0x3A, 0xBD, 0xD2, 0x8D, 0x0F, 0xDF, 0x35}}},
    {"VelaVICenter.VbsJson",
     L"Voucher Template Center JSON",
     {0xDAF99C00, 0xB329, 0x41C3, {0xB7, 0xF8, 0x6C, 0x02, 0x79, 0x1E, 0x0D, 0x6C}}},
    {"VelaVICenter.StringBuilder",
     L"Voucher Template Center string builder",
     {0x956C88A9, 0xD994, 0x4FCF, {0xA8, 0xB3, 0x4A, 0x6D, 0xB0, 0x95, 0x53, 0x60}}},
};

}  // namespace

std::span<const PublicClass> PublicClasses() {
    return kClasses;
}

const PublicClass* FindPublicClass(REFCLSID id) {
    const auto* found = std::find_if(std::begin(kClasses), std::end(kClasses),
                                     [&](const PublicClass& one) { return IsEqualCLSID(one.id, id); });
    return found == std::end(kClasses) ? nullptr : found;
}

}  // namespace vicenter::front
