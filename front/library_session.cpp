#include "front/library_session.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "automation/error.h"
#include "automation/lasting.h"
#include "front/ado_connection.h"
#include "front/host_registrar.h"
#include "front/host_things.h"
#include "front/include/vicenter/vicenter.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/com/client_calls.h"
#include "platform/office/excel_server.h"
#include "platform/system/thread_value.h"
#include "store/component_classes.h"
#include "support/support_classes.h"

namespace vicenter::front {

using automation::Error;

namespace {

// What is given back may put more there; who does so for ever is left with it.
constexpr int kMostRounds = 8;

[[noreturn]] void Refuse(const char* text) {
    throw Error(automation::error_number::kInvalidProcedureCall, text, "VelaVICenter");
}

[[noreturn]] void RefuseDuringEnd() {
    Refuse("The template center is being shut down.");
}

std::mutex& Lock() {
    static const automation::Lasting<std::mutex> mutex;
    return *mutex;
}

// The system gives a thread's id again once it has ended; this number it never does.
std::uint64_t ThisThread() {
    static std::atomic<std::uint64_t> last{0};
    thread_local const std::uint64_t number = ++last;
    return number;
}

// Ends with the thread.
struct ThreadsLife {
    std::shared_ptr<const void> mark = std::make_shared<int>();
};

// Kept to the end of the process unless it is ended before: what a window or a host object does last may
// come after every static object is gone.
LibrarySession*& Current() {
    static LibrarySession* session = nullptr;
    return session;
}

// The session is no more to be called and not yet gone.
bool& IsGoing() {
    static bool going = false;
    return going;
}

}  // namespace

// Puts the mark back when the session goes on.
class LibrarySession::Ending {
  public:
    explicit Ending(LibrarySession& session) : session_(&session) {
        if (std::exchange(session.ending_, true)) RefuseDuringEnd();
    }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    ~Ending() {
        if (session_ != nullptr) session_->ending_ = false;
    }
    // Takes the session out and ends it beyond the lock: the end of anything may call us.
    void Complete() {
        std::unique_ptr<LibrarySession> last;
        {
            const std::lock_guard guard(Lock());
            last.reset(std::exchange(Current(), nullptr));
            IsGoing() = true;
        }
        session_ = nullptr;
        last.reset();
        const std::lock_guard guard(Lock());
        IsGoing() = false;
    }

  private:
    LibrarySession* session_;
};

LibrarySession::LibrarySession()
    : surroundings_(system::Surroundings::Current()), windows_(WindowLoop::Create()) {
    Belong();
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

void LibrarySession::Belong() {
    thread_ = ThisThread();
    threadsLife_ = system::ValueOfThisThread<ThreadsLife>().mark;
    calls_ = 0;
    ending_ = false;
}

bool LibrarySession::IsElsewhere() const {
    return thread_ != ThisThread() && !threadsLife_.expired();
}

void LibrarySession::TakeOver() {
    if (thread_ == ThisThread() || IsElsewhere()) return;
    Belong();
    installed_.BeginHere();
}

LibrarySession& LibrarySession::Enter() {
    const std::lock_guard guard(Lock());
    if (IsGoing()) RefuseDuringEnd();
    if (Current() == nullptr) Current() = new LibrarySession();
    Current()->TakeOver();
    if (Current()->IsElsewhere()) {
        throw Error(VIC_ERROR_WRONG_THREAD,
                    "The template center belongs to the thread that called it first; "
                    "call it from that thread only.",
                    "VelaVICenter");
    }
    return *Current();
}

bool LibrarySession::IsUnderWay() const {
    return calls_ != 0 || com::ClientCallsUnderWay() != 0 || windows_->IsUnderWay();
}

void LibrarySession::End() {
    {
        const std::lock_guard guard(Lock());
        if (Current() == nullptr) return;
    }
    LibrarySession& session = Enter();
    Ending ending(session);
    if (session.IsUnderWay()) Refuse("The template center cannot be shut down while a call is under way.");
    session.windows_->CloseAll();
    if (session.windows_->OpenWindows() != 0) Refuse("A template center window is still open.");
    for (int round = 0; round < kMostRounds && HasThingsOfHost(); ++round)
        GiveBackThingsOfHost();
    ado::CloseIdleAccountSets();
    ado::CloseIdleOdbcConnections();
    ending.Complete();
}

bool LibrarySession::EndIfUnused() {
    {
        const std::lock_guard guard(Lock());
        if (Current() == nullptr) return !IsGoing();
        Current()->TakeOver();
        if (Current()->IsElsewhere() || Current()->IsUnderWay() || Current()->ending_ || HasThingsOfHost() ||
            Current()->windows_->OpenWindows() != 0)
            return false;
    }
    End();
    return true;
}

}  // namespace vicenter::front
