#include "tds_server/requests.h"

#include <bit>
#include <optional>

#include "automation/decimal.h"
#include "platform/system/utf8.h"
#include "tds_server/packets.h"

namespace vicenter::tds_server {

using automation::DateTime;
using automation::Decimal;
using tsql::engine::Bytes;
using tsql::engine::SqlType;
using tsql::engine::TypeKind;
using tsql::engine::Value;

namespace {

class Reader {
  public:
    explicit Reader(std::string_view data) : data_(data) {}

    bool AtEnd() const { return at_ >= data_.size(); }
    std::string_view Take(std::size_t count) {
        if (data_.size() - at_ < count) throw LineClosed();
        const std::string_view taken = data_.substr(at_, count);
        at_ += count;
        return taken;
    }
    std::uint64_t Number(unsigned bytes) {
        std::uint64_t value = 0;
        const std::string_view taken = Take(bytes);
        for (unsigned i = 0; i < bytes; ++i)
            value |= std::uint64_t{static_cast<unsigned char>(taken[i])} << (8 * i);
        return value;
    }
    std::string Text(std::size_t characters) { return Decoded(Take(characters * 2)); }
    std::string_view Rest() { return Take(data_.size() - at_); }
    // What goes ahead of a request: its length counts itself.
    void SkipHeaders() {
        const auto length = static_cast<std::size_t>(Number(4));
        if (length < 4) throw LineClosed();
        Take(length - 4);
    }

    static std::string Decoded(std::string_view bytes) {
        std::u16string wide;
        wide.reserve(bytes.size() / 2);
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            wide += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                          static_cast<unsigned char>(bytes[i + 1]) << 8);
        }
        return system::FromUtf16(wide);
    }

  private:
    std::string_view data_;
    std::size_t at_ = 0;
};

std::string LowerAscii(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

std::string WellKnownName(std::uint64_t number) {
    switch (number) {
        case 10:
            return "sp_executesql";
        case 11:
            return "sp_prepare";
        case 12:
            return "sp_execute";
        case 13:
            return "sp_prepexec";
        case 15:
            return "sp_unprepare";
        default:
            return "sp_" + std::to_string(number);
    }
}

std::int64_t Signed(std::uint64_t value, unsigned bytes) {
    const unsigned shift = 64 - 8 * bytes;
    return static_cast<std::int64_t>(value << shift) >> shift;
}

// A value of at most 8,000 bytes, or one in pieces; nothing for null.
std::optional<std::string> ReadBytes(Reader& reader, bool inPieces) {
    if (!inPieces) {
        const std::uint64_t length = reader.Number(2);
        if (length == 0xFFFF) return std::nullopt;
        return std::string(reader.Take(length));
    }
    if (reader.Number(8) == ~std::uint64_t{0}) return std::nullopt;
    std::string bytes;
    while (const std::uint64_t piece = reader.Number(4))
        bytes += reader.Take(piece);
    return bytes;
}

void ReadLongValue(Reader& reader, RpcParameter& parameter, TypeKind kind, const system::CodePage& page) {
    const std::uint64_t most = reader.Number(2);
    const bool isText = kind != TypeKind::kBinary && kind != TypeKind::kVarBinary;
    if (isText) reader.Take(5);
    parameter.type = SqlType::Of(kind, tsql::engine::kMaxLength);
    const std::optional<std::string> bytes = ReadBytes(reader, most == 0xFFFF);
    if (!bytes) return;
    if (!isText) {
        parameter.value = Value(Bytes{*bytes});
    } else {
        parameter.value = Value(parameter.type.IsUnicode() ? Reader::Decoded(*bytes) : page.Decode(*bytes));
    }
}

void ReadNumber(Reader& reader, RpcParameter& parameter, unsigned code) {
    const auto most = static_cast<unsigned>(reader.Number(1));
    int precision = 0;
    int scale = 0;
    if (code == 0x6A || code == 0x6C) {
        precision = static_cast<int>(reader.Number(1));
        scale = static_cast<int>(reader.Number(1));
    }
    const auto length = static_cast<unsigned>(reader.Number(1));
    const auto value = [&] { return Value(Signed(reader.Number(length), length)); };
    switch (code) {
        case 0x26:
            parameter.type = SqlType::Of(most == 8 ? TypeKind::kBigInt : TypeKind::kInt);
            if (length > 0) parameter.value = value();
            return;
        case 0x68:
            parameter.type = SqlType::Of(TypeKind::kBit);
            if (length > 0) parameter.value = value();
            return;
        case 0x6D:
            parameter.type = SqlType::Float();
            if (length == 8) parameter.value = Value(std::bit_cast<double>(reader.Number(8)));
            if (length == 4) {
                parameter.value = Value(
                    static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(reader.Number(4)))));
            }
            return;
        case 0x6F:
            parameter.type = SqlType::DateTime();
            if (length == 8) {
                const std::int64_t days = Signed(reader.Number(4), 4) + 2;
                const auto ticks = static_cast<std::int64_t>(reader.Number(4));
                parameter.value = Value(DateTime::FromMilliseconds(days * 86'400'000 + (ticks * 10 + 1) / 3));
            } else {
                reader.Take(length);
            }
            return;
        default: {
            parameter.type = SqlType::Decimal(precision, scale);
            if (length == 0) return;
            const bool negative = reader.Number(1) == 0;
            automation::UInt128 magnitude = 0;
            const std::string_view bytes = reader.Take(length - 1);
            for (std::size_t i = bytes.size(); i-- > 0;)
                magnitude = magnitude << 8 | static_cast<unsigned char>(bytes[i]);
            parameter.value = Value(Decimal::FromParts(negative, magnitude, scale));
            return;
        }
    }
}

RpcParameter ReadParameter(Reader& reader, const system::CodePage& page) {
    RpcParameter parameter;
    parameter.name = reader.Text(reader.Number(1));
    parameter.output = (reader.Number(1) & 1) != 0;
    const auto code = static_cast<unsigned>(reader.Number(1));
    switch (code) {
        case 0xA5:
            ReadLongValue(reader, parameter, TypeKind::kVarBinary, page);
            break;
        case 0xAD:
            ReadLongValue(reader, parameter, TypeKind::kBinary, page);
            break;
        case 0xA7:
        case 0xAF:
            ReadLongValue(reader, parameter, TypeKind::kVarChar, page);
            break;
        case 0xE7:
        case 0xEF:
            ReadLongValue(reader, parameter, TypeKind::kNVarChar, page);
            break;
        case 0x23:
        case 0x63: {
            reader.Number(4);
            reader.Take(5);
            const bool wide = code == 0x63;
            parameter.type = SqlType::Of(TypeKind::kNVarChar, tsql::engine::kMaxLength);
            const std::uint64_t length = reader.Number(4);
            if (length == 0xFFFFFFFF) break;
            const std::string_view bytes = reader.Take(length);
            parameter.value = Value(wide ? Reader::Decoded(bytes) : page.Decode(bytes));
            break;
        }
        case 0x26:
        case 0x68:
        case 0x6A:
        case 0x6C:
        case 0x6D:
        case 0x6F:
            ReadNumber(reader, parameter, code);
            break;
        case 0x38:
            parameter.type = SqlType::Int();
            parameter.value = Value(Signed(reader.Number(4), 4));
            break;
        default:
            throw LineClosed();
    }
    return parameter;
}

}  // namespace

LoginRequest ReadLogin(std::string_view data) {
    Reader reader(data);
    LoginRequest login;
    reader.Number(4);
    login.version = static_cast<std::uint32_t>(reader.Number(4));
    login.packetSize = static_cast<std::uint32_t>(reader.Number(4));
    reader.Take(24);
    const auto field = [&] {
        const auto offset = static_cast<std::size_t>(reader.Number(2));
        const auto characters = static_cast<std::size_t>(reader.Number(2));
        if (offset + characters * 2 > data.size()) throw LineClosed();
        return data.substr(offset, characters * 2);
    };
    field();  // the client's machine
    login.user = Reader::Decoded(field());
    std::string password(field());
    for (char& c : password) {
        const auto mixed = static_cast<unsigned>(static_cast<unsigned char>(c)) ^ 0xA5U;
        c = static_cast<char>(mixed >> 4 | mixed << 4);
    }
    login.password = Reader::Decoded(password);
    login.application = Reader::Decoded(field());
    login.server = Reader::Decoded(field());
    field();  // extensions
    field();  // the client library
    field();  // language
    login.database = Reader::Decoded(field());
    return login;
}

std::string ReadBatch(std::string_view data) {
    Reader reader(data);
    reader.SkipHeaders();
    return Reader::Decoded(reader.Rest());
}

std::vector<RpcRequest> ReadCalls(std::string_view data, const system::CodePage& page) {
    constexpr char kBetweenCalls = '\xFF';
    Reader reader(data);
    reader.SkipHeaders();
    std::vector<RpcRequest> calls;
    while (!reader.AtEnd()) {
        RpcRequest call;
        const std::uint64_t length = reader.Number(2);
        call.name = length == 0xFFFF ? WellKnownName(reader.Number(2)) : LowerAscii(reader.Text(length));
        reader.Number(2);  // options
        std::string_view rest = reader.Rest();
        std::size_t used = 0;
        while (used < rest.size() && rest[used] != kBetweenCalls) {
            Reader one(rest.substr(used));
            call.parameters.push_back(ReadParameter(one, page));
            used = rest.size() - one.Rest().size();
        }
        calls.push_back(std::move(call));
        reader = Reader(used < rest.size() ? rest.substr(used + 1) : std::string_view());
    }
    return calls;
}

TransactionRequest ReadTransaction(std::string_view data) {
    Reader reader(data);
    reader.SkipHeaders();
    TransactionRequest request;
    request.action = static_cast<TransactionAction>(reader.Number(2));
    if (request.action == TransactionAction::kCommit || request.action == TransactionAction::kRollback) {
        reader.Text(reader.Number(1));
        request.beginsAgain = !reader.AtEnd() && (reader.Number(1) & 1) != 0;
    }
    return request;
}

}  // namespace vicenter::tds_server
