#include "platform/ado/account_set/account_set_copies.h"

#include <filesystem>
#include <system_error>

#include "automation/error.h"
#include "automation/object.h"
#include "platform/ado/account_set/account_set_collation.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "tsql/base/diagnostic.h"
#include "tsql/run/care.h"

namespace vicenter::ado {

using automation::Error;
namespace engine = tsql::engine;
namespace fs = std::filesystem;
namespace number = automation::error_number;

namespace {

constexpr std::size_t kFindingsTold = 3;

engine::CareOptions Options() {
    engine::CareOptions options;
    options.collation = &AccountSetCollation();
    return options;
}

bool Exists(const std::string& file) {
    std::error_code ignored;
    return fs::exists(system::PathFromUtf8(file), ignored);
}

void MustExist(const std::string& file) {
    std::error_code ignored;
    if (!fs::is_regular_file(system::PathFromUtf8(file), ignored))
        throw Error(number::kFileNotFound, "账套文件不存在：" + file);
}

void MustDiffer(const std::string& a, const std::string& b) {
    std::error_code ignored;
    if (fs::equivalent(system::PathFromUtf8(a), system::PathFromUtf8(b), ignored))
        throw Error(number::kFileAlreadyExists, "两个文件是同一个文件：" + a);
}

// Why a backup must not be written there; empty when it may.
std::string WhyNotBackupTarget(const std::string& to) {
    if (!Exists(to)) return system::WhyNoPlaceForDatabase(to);
    // Asked first: a file that this process has open is refused there without being opened once more.
    std::string refusal = system::WhyNotWritable(to, {"备份文件", {system::kDatabaseHead}, {}});
    if (!refusal.empty()) return refusal;
    if (!engine::IsSealed(to, Options())) return "目标是账套或其他数据库文件，不是备份，不能覆盖：" + to;
    // That look has cleared what a process that was killed over the backup had left; what still stands there
    // is held by somebody.
    for (const char* tail : {"-wal", "-shm"}) {
        if (Exists(to + tail)) return "目标文件正在使用，不能覆盖：" + to;
    }
    return {};
}

[[noreturn]] void Tell(const std::string& what, const std::string& file, const tsql::SqlError& error) {
    throw Error(number::kPermissionDenied, what + file + "\r\n" + error.Text());
}

}  // namespace

std::optional<std::string> AccountSetFile(const std::string& connectString) {
    const ConnectString settings(connectString);
    if (!automation::SameName(settings.Value("Provider"), kAccountSetProvider)) return std::nullopt;
    return settings.Value("Data Source");
}

void BackUpAccountSet(const std::string& file, const std::string& to) {
    MustExist(file);
    MustDiffer(file, to);
    if (const std::string refusal = WhyNotBackupTarget(to); !refusal.empty())
        throw Error(number::kPermissionDenied, refusal);
    system::FileReplacement copy(to);
    try {
        engine::CopyAccountSet(file, copy.Path(), Options());
    } catch (const tsql::SqlError& error) {
        Tell("账套备份失败：", file, error);
    }
    copy.PutInPlace();
}

void RestoreAccountSet(const std::string& from, const std::string& file) {
    MustExist(from);
    MustDiffer(from, file);
    if (!Exists(file)) {
        if (const std::string refusal = system::WhyNoPlaceForDatabase(file); !refusal.empty())
            throw Error(number::kPermissionDenied, refusal);
    }
    system::FileReplacement copy(file);
    try {
        engine::CopyAccountSet(from, copy.Path(), Options());
    } catch (const tsql::SqlError& error) {
        Tell("账套恢复失败：", from, error);
    }
    const std::vector<std::string> damage = engine::FindDamage(copy.Path(), Options());
    if (!damage.empty()) {
        std::string text = "备份文件已损坏或被改动，没有恢复：" + from;
        for (std::size_t i = 0; i < damage.size() && i < kFindingsTold; ++i)
            text += "\r\n" + damage[i];
        throw Error(number::kPermissionDenied, text);
    }
    try {
        if (Exists(file)) {
            engine::CopyOverAccountSet(copy.Path(), file, Options());
            return;
        }
        engine::UnsealAccountSet(copy.Path(), Options());
    } catch (const tsql::SqlError& error) {
        Tell("账套恢复失败，原内容没有改变：", file, error);
    }
    copy.PutInPlaceAsNew();
}

std::vector<std::string> FindAccountSetDamage(const std::string& file) {
    MustExist(file);
    return engine::FindDamage(file, Options());
}

}  // namespace vicenter::ado
