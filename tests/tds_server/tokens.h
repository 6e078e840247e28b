#pragma once

// The tokens of a reply, appended to a text of bytes: what the TDS protocol calls the token data stream,
// version 7.4. No state but the text.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/code_page.h"
#include "tsql/base/diagnostic.h"
#include "tsql/types/sql_type.h"
#include "tsql/types/value.h"

namespace vicenter::tds_server {

using tsql::engine::SqlType;
using tsql::engine::Value;

namespace done {
inline constexpr std::uint8_t kToken = 0xFD;
inline constexpr std::uint8_t kProcToken = 0xFE;
inline constexpr std::uint8_t kInProcToken = 0xFF;
inline constexpr std::uint16_t kFinal = 0x00;
inline constexpr std::uint16_t kMore = 0x01;
inline constexpr std::uint16_t kError = 0x02;
inline constexpr std::uint16_t kCount = 0x10;
inline constexpr std::uint16_t kAttention = 0x20;
}  // namespace done

enum class EnvChange : std::uint8_t {
    kDatabase = 1,
    kLanguage = 2,
    kPacketSize = 4,
    kCollation = 7,
    kBegin = 8,
    kCommit = 9,
    kRollback = 10,
};

// ---- plain values, the least significant byte first
void PutByte(std::string& to, unsigned value);
void Put16(std::string& to, unsigned value);
void Put32(std::string& to, std::uint32_t value);
void Put64(std::string& to, std::uint64_t value);
// UTF-16 with its length in characters before it, in one byte or in two.
void PutShortText(std::string& to, std::string_view text);
void PutText(std::string& to, std::string_view text);
std::string Utf16Bytes(std::string_view text);

// The collation of a server: five bytes on the wire, and the code page of its char texts.
struct Collation {
    std::string name;
    std::string bytes;
    int codePage = 0;

    static Collation ChinesePrc();  // 936
    static Collation Latin1();      // 1252
    static Collation ChineseUtf8();
};

// What a server says of its own.
tsql::Diagnostic Information(std::int32_t number, std::string text);
tsql::Diagnostic Refusal(std::int32_t number, std::int32_t severity, std::string text);

// A column whose type and values are given as bytes: for types that the engine does not have.
struct RawColumn {
    std::string name;
    std::string type;
};

class TokenWriter {
  public:
    TokenWriter(const Collation& collation, const system::CodePage& page)
        : collation_(collation), page_(page) {}

    void LoginAcknowledged(std::string& to, std::uint32_t version) const;
    // Of texts: new and old value.
    void Changed(std::string& to, EnvChange what, std::string_view now, std::string_view before) const;
    // Of bytes: the collation, a transaction.
    void ChangedBytes(std::string& to, EnvChange what, std::string_view now, std::string_view before) const;
    // An error or, below severity 11, an information.
    void Said(std::string& to, const tsql::Diagnostic& diagnostic) const;
    void Columns(std::string& to, const std::vector<std::string>& names,
                 const std::vector<SqlType>& types) const;
    void Columns(std::string& to, const std::vector<RawColumn>& columns) const;
    // Nulls are told by a bitmap when that is shorter, as the server does.
    void Row(std::string& to, const std::vector<SqlType>& types, std::span<const Value> values) const;
    static void RawRow(std::string& to, std::span<const std::string> values);
    static void Done(std::string& to, std::uint8_t token, std::uint16_t status, std::uint16_t command,
                     std::uint64_t rows);
    static void ReturnStatus(std::string& to, std::int32_t status);
    void ReturnValue(std::string& to, unsigned ordinal, std::string_view name, const SqlType& type,
                     const Value& value) const;

  private:
    void Type(std::string& to, const SqlType& type) const;
    void Put(std::string& to, const SqlType& type, const Value& value) const;
    void PutChars(std::string& to, const SqlType& type, std::string bytes) const;

    const Collation& collation_;
    const system::CodePage& page_;
};

}  // namespace vicenter::tds_server
