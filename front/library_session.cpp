#include "front/library_session.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "automation/error.h"
#include "front/ado_connection.h"
#include "front/host_registrar.h"
#include "front/include/vicenter/vicenter.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/host_connection_service.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/office/excel_server.h"
#include "store/component_classes.h"
#include "support/support_classes.h"

namespace vicenter::front {

using automation::Error;

namespace {

std::mutex& Lock() {
    static std::mutex mutex;
    return mutex;
}

// The system gives a thread's id again once it has ended; this number it never does.
std::uint64_t ThisThread() {
    static std::atomic<std::uint64_t> last{0};
    thread_local const std::uint64_t number = ++last;
    return number;
}

// Kept to the end of the process unless it is ended before: what a window or a host object does last may
// come after every static object is gone.
LibrarySession*& Current() {
    static LibrarySession* session = nullptr;
    return session;
}

}  // namespace

LibrarySession::LibrarySession()
    : thread_(ThisThread()), surroundings_(system::Surroundings::Current()), windows_(WindowLoop::Create()) {
    store::RegisterComponentClasses();
    support::RegisterSupportClasses();
    RegisterAdoClasses();
    RegisterHostRegistrar(windows_);
    // For the workbooks of import and export; a host with a spreadsheet server of its own registers that, and
    // one that is installed is taken.
    constexpr const char* kExcel = "Excel.Application";
    if (!automation::ClassRegistry::Process().IsRegistered(kExcel) && !com::InstalledClasses::Has(kExcel))
        office::RegisterExcelServer();
}

LibrarySession::~LibrarySession() = default;

LibrarySession& LibrarySession::Enter() {
    const std::lock_guard guard(Lock());
    if (Current() == nullptr) Current() = new LibrarySession();
    if (Current()->thread_ != ThisThread()) {
        throw Error(VIC_ERROR_WRONG_THREAD,
                    "The template center belongs to the thread that called it first; "
                    "call it from that thread only.",
                    "VelaVICenter");
    }
    return *Current();
}

void LibrarySession::End() {
    {
        const std::lock_guard guard(Lock());
        if (Current() == nullptr) return;
    }
    LibrarySession& session = Enter();
    if (session.calls_ != 0) {
        throw Error(automation::error_number::kInvalidProcedureCall,
                    "The template center cannot be shut down while a call is under way.", "VelaVICenter");
    }
    session.windows_->CloseAll();
    if (session.windows_->OpenWindows() != 0) {
        throw Error(automation::error_number::kInvalidProcedureCall,
                    "A template center window is still open.", "VelaVICenter");
    }
    ado::HostFramework::SetProcess(nullptr);
    ado::CloseIdleAccountSets();
    ado::CloseIdleOdbcConnections();
    const std::lock_guard guard(Lock());
    delete std::exchange(Current(), nullptr);
}

bool LibrarySession::EndIfUnused() {
    {
        const std::lock_guard guard(Lock());
        if (Current() == nullptr) return true;
        if (Current()->thread_ != ThisThread() || Current()->calls_ != 0 ||
            Current()->windows_->OpenWindows() != 0)
            return false;
    }
    End();
    return true;
}

}  // namespace vicenter::front
