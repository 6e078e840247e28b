#pragma once

// What clients send, read into plain values. A request that is not of its form throws LineClosed, as the
// server would hang up.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/code_page.h"
#include "tsql/types/sql_type.h"
#include "tsql/types/value.h"

namespace vicenter::tds_server {

struct LoginRequest {
    std::uint32_t version = 0;
    std::uint32_t packetSize = 0;
    std::string user;
    std::string password;
    std::string application;
    std::string server;
    std::string database;
};

LoginRequest ReadLogin(std::string_view data);

// A text as UTF-8.
std::string ReadBatch(std::string_view data);

struct RpcParameter {
    std::string name;
    bool output = false;
    tsql::engine::SqlType type;
    tsql::engine::Value value;
};

struct RpcRequest {
    std::string name;  // in lower case; sp_… also where the client gave a number
    std::vector<RpcParameter> parameters;
};

// One message may hold several calls.
std::vector<RpcRequest> ReadCalls(std::string_view data, const system::CodePage& page);

enum class TransactionAction : std::uint8_t { kBegin = 5, kCommit = 7, kRollback = 8, kSave = 9 };

struct TransactionRequest {
    TransactionAction action{};
    bool beginsAgain = false;  // another one follows at once
};

TransactionRequest ReadTransaction(std::string_view data);

}  // namespace vicenter::tds_server
