#include "tds_server/tokens.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/system/utf8.h"

namespace vicenter::tds_server {

using automation::DateTime;
using automation::Decimal;
using tsql::engine::TypeKind;

namespace {

namespace token {
constexpr unsigned kColumns = 0x81;
constexpr unsigned kReturnStatus = 0x79;
constexpr unsigned kError = 0xAA;
constexpr unsigned kInformation = 0xAB;
constexpr unsigned kReturnValue = 0xAC;
constexpr unsigned kLoginAcknowledged = 0xAD;
constexpr unsigned kRow = 0xD1;
constexpr unsigned kRowWithNulls = 0xD2;
constexpr unsigned kChanged = 0xE3;
}  // namespace token

namespace wire {
constexpr unsigned kText = 0x23;
constexpr unsigned kGuid = 0x24;
constexpr unsigned kIntN = 0x26;
constexpr unsigned kDate = 0x28;
constexpr unsigned kTime = 0x29;
constexpr unsigned kDateTime2 = 0x2A;
constexpr unsigned kNText = 0x63;
constexpr unsigned kBitN = 0x68;
constexpr unsigned kDecimalN = 0x6A;
constexpr unsigned kFloatN = 0x6D;
constexpr unsigned kMoneyN = 0x6E;
constexpr unsigned kDateTimeN = 0x6F;
constexpr unsigned kVarBinary = 0xA5;
constexpr unsigned kVarChar = 0xA7;
constexpr unsigned kBinary = 0xAD;
constexpr unsigned kChar = 0xAF;
constexpr unsigned kNVarChar = 0xE7;
constexpr unsigned kNChar = 0xEF;
}  // namespace wire

constexpr unsigned kMax = 0xFFFF;
constexpr unsigned kNullable = 0x01;
constexpr unsigned kUpdatable = 0x08;
constexpr std::int64_t kMillisecondsPerDay = 86'400'000;
constexpr std::int64_t kDaysTo1900 = 2;          // from the day that a DateTime counts from
constexpr std::int64_t kDaysFromYear1 = 693593;  // to that day
// The engine keeps milliseconds whatever the column says; the wire has room for all it may say.
constexpr unsigned kFractionDigits = 7;
constexpr unsigned kTimeLength = 5;
constexpr const char* kServerName = "localhost";

// Bytes of a decimal's magnitude with its sign.
unsigned DecimalLength(int precision) {
    if (precision <= 9) return 5;
    if (precision <= 19) return 9;
    return precision <= 28 ? 13 : 17;
}

std::int64_t DaysOf(const DateTime& date) {
    std::int64_t days = date.Milliseconds() / kMillisecondsPerDay;
    if (date.Milliseconds() % kMillisecondsPerDay < 0) --days;
    return days;
}

std::int64_t MillisecondsOf(const DateTime& date) {
    return date.Milliseconds() - DaysOf(date) * kMillisecondsPerDay;
}

void PutBytes(std::string& to, std::uint64_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i)
        to += static_cast<char>(value >> (8 * i));
}

void PutTime(std::string& to, const DateTime& time) {
    PutBytes(to, static_cast<std::uint64_t>(MillisecondsOf(time)) * 10'000, kTimeLength);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return c - 'a' + 10;
}

// Of "00112233-4455-6677-8899-AABBCCDDEEFF" the first three groups stand with their last byte first.
std::string GuidBytes(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at + 1 < text.size();) {
        if (text[at] == '-') {
            ++at;
            continue;
        }
        plain += static_cast<char>(HexDigit(text[at]) << 4 | HexDigit(text[at + 1]));
        at += 2;
    }
    plain.resize(16);
    std::reverse(plain.begin(), plain.begin() + 4);
    std::reverse(plain.begin() + 4, plain.begin() + 6);
    std::reverse(plain.begin() + 6, plain.begin() + 8);
    return plain;
}

bool IsPartlyLengthPrefixed(const SqlType& type) {
    return type.IsMax() && (type.IsText() || type.IsBinary());
}

}  // namespace

tsql::Diagnostic Information(std::int32_t number, std::string text) {
    tsql::Diagnostic information;
    information.number = number;
    information.severity = 0;
    information.state = 2;
    information.text = std::move(text);
    return information;
}

tsql::Diagnostic Refusal(std::int32_t number, std::int32_t severity, std::string text) {
    tsql::Diagnostic error;
    error.number = number;
    error.severity = severity;
    error.text = std::move(text);
    return error;
}

void PutByte(std::string& to, unsigned value) {
    to += static_cast<char>(value);
}
void Put16(std::string& to, unsigned value) {
    PutBytes(to, value, 2);
}
void Put32(std::string& to, std::uint32_t value) {
    PutBytes(to, value, 4);
}
void Put64(std::string& to, std::uint64_t value) {
    PutBytes(to, value, 8);
}

std::string Utf16Bytes(std::string_view text) {
    const std::u16string wide = system::ToUtf16(text);
    std::string bytes;
    bytes.reserve(wide.size() * 2);
    for (const char16_t unit : wide)
        Put16(bytes, unit);
    return bytes;
}

void PutShortText(std::string& to, std::string_view text) {
    const std::string bytes = Utf16Bytes(text);
    PutByte(to, static_cast<unsigned>(bytes.size() / 2));
    to += bytes;
}

void PutText(std::string& to, std::string_view text) {
    const std::string bytes = Utf16Bytes(text);
    Put16(to, static_cast<unsigned>(bytes.size() / 2));
    to += bytes;
}

Collation Collation::ChinesePrc() {
    return {"Chinese_PRC_CI_AS", std::string("\x04\x08\xD0\x00\x00", 5), 936};
}

Collation Collation::Latin1() {
    return {"Latin1_General_CI_AS", std::string("\x09\x04\xD0\x00\x00", 5), 1252};
}

Collation Collation::ChineseUtf8() {
    return {"Chinese_PRC_CI_AS_UTF8", std::string("\x04\x08\xD0\x24\x00", 5), system::CodePage::kUtf8};
}

void TokenWriter::LoginAcknowledged(std::string& to, std::uint32_t version) const {
    std::string body;
    PutByte(body, 1);
    for (int shift = 24; shift >= 0; shift -= 8)
        PutByte(body, version >> shift);
    PutShortText(body, "Microsoft SQL Server");
    body.append("\x0F\x00\x10\x00", 4);  // version 15.0
    PutByte(to, token::kLoginAcknowledged);
    Put16(to, static_cast<unsigned>(body.size()));
    to += body;
}

void TokenWriter::Changed(std::string& to, EnvChange what, std::string_view now,
                          std::string_view before) const {
    std::string body;
    PutByte(body, static_cast<unsigned>(what));
    PutShortText(body, now);
    PutShortText(body, before);
    PutByte(to, token::kChanged);
    Put16(to, static_cast<unsigned>(body.size()));
    to += body;
}

void TokenWriter::ChangedBytes(std::string& to, EnvChange what, std::string_view now,
                               std::string_view before) const {
    std::string body;
    PutByte(body, static_cast<unsigned>(what));
    PutByte(body, static_cast<unsigned>(now.size()));
    body.append(now);
    PutByte(body, static_cast<unsigned>(before.size()));
    body.append(before);
    PutByte(to, token::kChanged);
    Put16(to, static_cast<unsigned>(body.size()));
    to += body;
}

void TokenWriter::Said(std::string& to, const tsql::Diagnostic& diagnostic) const {
    constexpr std::int32_t kFirstErrorSeverity = 11;
    std::string body;
    Put32(body, static_cast<std::uint32_t>(diagnostic.number));
    PutByte(body, static_cast<unsigned>(diagnostic.state));
    PutByte(body, static_cast<unsigned>(diagnostic.severity));
    PutText(body, diagnostic.text);
    PutShortText(body, kServerName);
    PutShortText(body, diagnostic.procedure);
    Put32(body, static_cast<std::uint32_t>(diagnostic.line));
    PutByte(to, diagnostic.severity < kFirstErrorSeverity ? token::kInformation : token::kError);
    Put16(to, static_cast<unsigned>(body.size()));
    to += body;
}

void TokenWriter::Type(std::string& to, const SqlType& type) const {
    const auto length = static_cast<unsigned>(type.length);
    const auto put = [&](unsigned code, unsigned bytes) {
        PutByte(to, code);
        PutByte(to, bytes);
    };
    const auto putLong = [&](unsigned code, unsigned bytes) {
        PutByte(to, code);
        Put16(to, type.IsMax() ? kMax : bytes);
    };
    switch (type.kind) {
        case TypeKind::kBit:
            return put(wire::kBitN, 1);
        case TypeKind::kTinyInt:
            return put(wire::kIntN, 1);
        case TypeKind::kSmallInt:
            return put(wire::kIntN, 2);
        case TypeKind::kBigInt:
            return put(wire::kIntN, 8);
        case TypeKind::kSmallMoney:
            return put(wire::kMoneyN, 4);
        case TypeKind::kMoney:
            return put(wire::kMoneyN, 8);
        case TypeKind::kDecimal:
            put(wire::kDecimalN, DecimalLength(type.precision));
            PutByte(to, static_cast<unsigned>(type.precision));
            PutByte(to, static_cast<unsigned>(type.scale));
            return;
        case TypeKind::kReal:
            return put(wire::kFloatN, 4);
        case TypeKind::kFloat:
            return put(wire::kFloatN, 8);
        case TypeKind::kDate:
            return PutByte(to, wire::kDate);
        case TypeKind::kTime:
            return put(wire::kTime, kFractionDigits);
        case TypeKind::kDateTime2:
            return put(wire::kDateTime2, kFractionDigits);
        case TypeKind::kSmallDateTime:
            return put(wire::kDateTimeN, 4);
        case TypeKind::kDateTime:
            return put(wire::kDateTimeN, 8);
        case TypeKind::kUniqueIdentifier:
            return put(wire::kGuid, 16);
        case TypeKind::kBinary:
            return putLong(wire::kBinary, length);
        case TypeKind::kVarBinary:
            return putLong(wire::kVarBinary, length);
        case TypeKind::kChar:
            putLong(wire::kChar, length);
            break;
        case TypeKind::kVarChar:
            putLong(wire::kVarChar, length);
            break;
        case TypeKind::kNChar:
            putLong(wire::kNChar, length * 2);
            break;
        case TypeKind::kNVarChar:
            putLong(wire::kNVarChar, length * 2);
            break;
        case TypeKind::kText:
        case TypeKind::kNText:
            PutByte(to, type.kind == TypeKind::kText ? wire::kText : wire::kNText);
            Put32(to, 0x7FFFFFFF);
            break;
        default:
            // NULL alone is an integer.
            return put(wire::kIntN, 4);
    }
    to += collation_.bytes;
}

void TokenWriter::Columns(std::string& to, const std::vector<std::string>& names,
                          const std::vector<SqlType>& types) const {
    PutByte(to, token::kColumns);
    Put16(to, static_cast<unsigned>(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        Put32(to, 0);
        Put16(to, kNullable | kUpdatable);
        Type(to, types[i]);
        if (types[i].kind == TypeKind::kText || types[i].kind == TypeKind::kNText) PutByte(to, 0);
        PutShortText(to, names[i]);
    }
}

void TokenWriter::Columns(std::string& to, const std::vector<RawColumn>& columns) const {
    PutByte(to, token::kColumns);
    Put16(to, static_cast<unsigned>(columns.size()));
    for (const RawColumn& column : columns) {
        Put32(to, 0);
        Put16(to, kNullable | kUpdatable);
        to += column.type;
        PutShortText(to, column.name);
    }
}

void TokenWriter::PutChars(std::string& to, const SqlType& type, std::string bytes) const {
    if (IsPartlyLengthPrefixed(type)) {
        // In pieces, as long values come.
        constexpr std::size_t kPiece = 1000;
        Put64(to, bytes.size());
        for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
            const std::string_view piece = std::string_view(bytes).substr(at, kPiece);
            Put32(to, static_cast<std::uint32_t>(piece.size()));
            to.append(piece);
        }
        Put32(to, 0);
        return;
    }
    const std::size_t most = static_cast<std::size_t>(type.length) * (type.IsUnicode() ? 2 : 1);
    if (bytes.size() > most) bytes.resize(most);
    Put16(to, static_cast<unsigned>(bytes.size()));
    to += bytes;
}

void TokenWriter::Put(std::string& to, const SqlType& type, const Value& value) const {
    const bool null = value.IsNull();
    switch (type.kind) {
        case TypeKind::kText:
        case TypeKind::kNText: {
            if (null) return PutByte(to, 0);
            const std::string bytes =
                type.kind == TypeKind::kText ? page_.Encode(value.Text()) : Utf16Bytes(value.Text());
            PutByte(to, 16);
            to.append(16 + 8, 'p');  // where it is kept, and since when
            Put32(to, static_cast<std::uint32_t>(bytes.size()));
            to += bytes;
            return;
        }
        case TypeKind::kChar:
        case TypeKind::kVarChar:
        case TypeKind::kNChar:
        case TypeKind::kNVarChar:
        case TypeKind::kBinary:
        case TypeKind::kVarBinary:
            if (null && IsPartlyLengthPrefixed(type)) return Put64(to, ~std::uint64_t{0});
            if (null) return Put16(to, kMax);
            if (type.IsBinary()) return PutChars(to, type, value.Blob());
            return PutChars(to, type,
                            type.IsUnicode() ? Utf16Bytes(value.Text()) : page_.Encode(value.Text()));
        default:
            break;
    }
    if (null) return PutByte(to, 0);
    switch (type.kind) {
        case TypeKind::kBit:
        case TypeKind::kTinyInt:
            PutByte(to, 1);
            return PutByte(to, static_cast<unsigned>(value.Int()));
        case TypeKind::kSmallInt:
            PutByte(to, 2);
            return PutBytes(to, static_cast<std::uint64_t>(value.Int()), 2);
        case TypeKind::kBigInt:
            PutByte(to, 8);
            return Put64(to, static_cast<std::uint64_t>(value.Int()));
        case TypeKind::kSmallMoney:
        case TypeKind::kMoney: {
            const Decimal amount = value.Exact().Rescaled(4);
            // Two's complement, in which the smallest money has no counterpart.
            auto units = static_cast<std::uint64_t>(amount.Magnitude());
            if (amount.IsNegative()) units = 0 - units;
            if (type.kind == TypeKind::kSmallMoney) {
                PutByte(to, 4);
                return Put32(to, static_cast<std::uint32_t>(units));
            }
            PutByte(to, 8);
            Put32(to, static_cast<std::uint32_t>(units >> 32));
            return Put32(to, static_cast<std::uint32_t>(units));
        }
        case TypeKind::kDecimal: {
            const Decimal number = value.Exact().Rescaled(type.scale);
            const unsigned length = DecimalLength(type.precision);
            PutByte(to, length);
            PutByte(to, number.IsNegative() ? 0 : 1);
            automation::UInt128 magnitude = number.Magnitude();
            for (unsigned i = 1; i < length; ++i) {
                PutByte(to, static_cast<unsigned>(magnitude & 0xFF));
                magnitude >>= 8;
            }
            return;
        }
        case TypeKind::kReal:
            PutByte(to, 4);
            return Put32(to, std::bit_cast<std::uint32_t>(static_cast<float>(value.Real())));
        case TypeKind::kFloat:
            PutByte(to, 8);
            return Put64(to, std::bit_cast<std::uint64_t>(value.Real()));
        case TypeKind::kDate:
            PutByte(to, 3);
            return PutBytes(to, static_cast<std::uint64_t>(DaysOf(value.Date()) + kDaysFromYear1), 3);
        case TypeKind::kTime:
            PutByte(to, kTimeLength);
            return PutTime(to, value.Date());
        case TypeKind::kDateTime2:
            PutByte(to, kTimeLength + 3);
            PutTime(to, value.Date());
            return PutBytes(to, static_cast<std::uint64_t>(DaysOf(value.Date()) + kDaysFromYear1), 3);
        case TypeKind::kSmallDateTime:
            PutByte(to, 4);
            Put16(to, static_cast<unsigned>(DaysOf(value.Date()) - kDaysTo1900));
            return Put16(to, static_cast<unsigned>(MillisecondsOf(value.Date()) / 60'000));
        case TypeKind::kDateTime:
            PutByte(to, 8);
            Put32(to, static_cast<std::uint32_t>(DaysOf(value.Date()) - kDaysTo1900));
            return Put32(to, static_cast<std::uint32_t>((MillisecondsOf(value.Date()) * 3 + 5) / 10));
        case TypeKind::kUniqueIdentifier:
            PutByte(to, 16);
            to += GuidBytes(value.Text());
            return;
        default:
            PutByte(to, 4);
            return Put32(to, static_cast<std::uint32_t>(value.Int()));
    }
}

void TokenWriter::Row(std::string& to, const std::vector<SqlType>& types,
                      std::span<const Value> values) const {
    const auto nulls = static_cast<std::size_t>(
        std::count_if(values.begin(), values.end(), [](const Value& value) { return value.IsNull(); }));
    const std::size_t bitmap = (values.size() + 7) / 8;
    if (nulls <= bitmap) {
        PutByte(to, token::kRow);
        for (std::size_t i = 0; i < values.size(); ++i)
            Put(to, types[i], values[i]);
        return;
    }
    PutByte(to, token::kRowWithNulls);
    std::string bits(bitmap, '\0');
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i].IsNull()) bits[i / 8] = static_cast<char>(bits[i / 8] | 1 << (i % 8));
    }
    to += bits;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!values[i].IsNull()) Put(to, types[i], values[i]);
    }
}

void TokenWriter::RawRow(std::string& to, std::span<const std::string> values) {
    PutByte(to, token::kRow);
    for (const std::string& value : values)
        to += value;
}

void TokenWriter::Done(std::string& to, std::uint8_t token, std::uint16_t status, std::uint16_t command,
                       std::uint64_t rows) {
    PutByte(to, token);
    Put16(to, status);
    Put16(to, command);
    Put64(to, rows);
}

void TokenWriter::ReturnStatus(std::string& to, std::int32_t status) {
    PutByte(to, token::kReturnStatus);
    Put32(to, static_cast<std::uint32_t>(status));
}

void TokenWriter::ReturnValue(std::string& to, unsigned ordinal, std::string_view name, const SqlType& type,
                              const Value& value) const {
    PutByte(to, token::kReturnValue);
    Put16(to, ordinal);
    PutShortText(to, name);
    PutByte(to, 1);
    Put32(to, 0);
    Put16(to, kNullable);
    Type(to, type);
    Put(to, type, value);
}

}  // namespace vicenter::tds_server
