// The embedded account set.

#include <filesystem>
#include <random>

#include "platform/ado/account_set/account_set_provider.h"
#include "runner/lane.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

class EmbeddedLane final : public Lane {
  public:
    EmbeddedLane()
        : folder_(fs::temp_directory_path() /
                  ("vicenter_text_test_" + std::to_string(std::random_device()()))) {
        fs::create_directories(folder_);
        ado::RegisterAccountSetProvider();
    }
    ~EmbeddedLane() override { fs::remove_all(folder_); }

  private:
    ado::ConnectionRef Open(const std::string& more) override {
        return ado::OpenConnection("Provider=VelaAccountSet;Data Source=" + (folder_ / "test.vca").string() +
                                   ";Create=yes;Pooling=no;" + more);
    }

    fs::path folder_;
};

}  // namespace

std::unique_ptr<Lane> MakeLane() {
    return std::make_unique<EmbeddedLane>();
}

}  // namespace vicenter::tsql_test
