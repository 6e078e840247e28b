#pragma once

// The demo ledger: a small trading firm with its chart of accounts, master data, two years of posted
// vouchers, three users and their first templates. Deterministic: the same options give the same rows,
// whatever machine and day. Sends plain T-SQL batches, so that it fills an account set of any server.

#include <cstdint>

#include "platform/ado/connection.h"

namespace vicenter::host {

struct DemoOptions {
    int vouchers = 0;  // at least so many vouchers; 0: what the firm's two years bring
};

// The connection's account set has been made by CreateAccountSet() and holds nothing else.
void PrepareDemo(ado::Connection& connection, const DemoOptions& options = {});

}  // namespace vicenter::host
