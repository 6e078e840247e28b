// Generated from the member tables by tests/front/type_library_test.cpp.
//
// For hosts in C++ that are bound early: the classes of the COM server, the interface that each is asked for
// (IDispatch under a name of its own) and the numbers of its members, which never change.
#pragma once

// clang-format off
#include <windows.h>
#include <oaidl.h>

namespace VelaVICenter {

struct aplication {
    static constexpr CLSID kClass = {0xCB676E64, 0x08A3, 0x419D, {0xA5, 0x49, 0x61, 0x1B, 0x88, 0xF6, 0x3F, 0xD6}};
    static constexpr IID kInterface = {0x9867BA6C, 0x8315, 0x4A8B, {0xAE, 0x17, 0xB4, 0xED, 0x69, 0xD4, 0x1C, 0x32}};
    enum Member : DISPID {
        ShowVICenter = 1,
    };
};

struct clsVIData {
    static constexpr CLSID kClass = {0xE057ECA1, 0xF300, 0x496A, {0xAF, 0x3A, 0xBD, 0xD2, 0x8D, 0x0F, 0xDF, 0x35}};
    static constexpr IID kInterface = {0x2C1010B2, 0xF19E, 0x4383, {0xB1, 0x1E, 0x07, 0x15, 0x83, 0x18, 0xFD, 0xB9}};
    enum Member : DISPID {
        mTransMode = 2,
        IsExecuteSql = 3,
        GetRs = 4,
        GetUserCloudInfo = 5,
        GetVchTemplateByUserID = 6,
        GetVchTpProfileByUserID = 7,
        GetVchEntryCount = 8,
        CheckVchTemplateIsExist = 9,
        DeleteVchTemplateInfo = 10,
        InsertVchTemplateInfo = 11,
        GetVchTemplateEntryInfo = 12,
        GetItemInfoByNumber = 13,
        MergeItemsInfo = 14,
        GetItems = 15,
        GetItemClassIDs = 16,
        CheckErrorCell = 17,
    };
};

struct VbsJson {
    static constexpr CLSID kClass = {0xDAF99C00, 0xB329, 0x41C3, {0xB7, 0xF8, 0x6C, 0x02, 0x79, 0x1E, 0x0D, 0x6C}};
    static constexpr IID kInterface = {0x002A486B, 0xE05E, 0x4582, {0x93, 0x69, 0xD1, 0x1F, 0x49, 0x44, 0x5D, 0x69}};
    enum Member : DISPID {
        Encode = 18,
        Decode = 19,
    };
};

struct StringBuilder {
    static constexpr CLSID kClass = {0x956C88A9, 0xD994, 0x4FCF, {0xA8, 0xB3, 0x4A, 0x6D, 0xB0, 0x95, 0x53, 0x60}};
    static constexpr IID kInterface = {0xE946C532, 0x8754, 0x499C, {0xA3, 0x5B, 0x10, 0x92, 0x7A, 0x78, 0x49, 0x18}};
    enum Member : DISPID {
        ChunkSize = 20,
        Append = 21,
        AppendLine = 22,
        Insert = 23,
        Remove = 24,
        Find = 25,
        ToString = 0,
        Clear = 27,
        TrimToSize = 28,
    };
};

struct Host {
    static constexpr CLSID kClass = {0xFA5C40F4, 0x4231, 0x4F78, {0x9B, 0xA2, 0x53, 0xC7, 0xCC, 0x5C, 0x59, 0x0D}};
    static constexpr IID kInterface = {0x656D0DE9, 0xB0D6, 0x42AD, {0xAB, 0xE4, 0x21, 0x7B, 0xF0, 0xF6, 0x45, 0xED}};
    enum Member : DISPID {
        Register = 29,
        Unregister = 30,
        SetFramework = 31,
        ProcessEvents = 32,
        RunWindows = 33,
        CloseWindows = 34,
        OpenWindows = 35,
    };
};

}  // namespace VelaVICenter
