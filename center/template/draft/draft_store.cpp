#include "center/template/draft/draft_store.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string_view>
#include <system_error>

#include "automation/error.h"
#include "entry/host_context.h"
#include "entry/names.h"
#include "platform/ado/file_care.h"
#include "platform/ado/passwords.h"
#include "platform/system/file_names.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "platform/system/path_in.h"
#include "platform/system/running.h"
#include "platform/system/surroundings.h"
#include "platform/system/whole_path.h"
#include "text/fnv.h"

namespace vicenter::center {

namespace fs = std::filesystem;
using automation::Error;

namespace {

constexpr const char* kTail = ".draft";

// The windows of this process that are there.
std::set<std::string>& LiveWindows() {
    static std::set<std::string> windows;
    return windows;
}

// Where drafts of an account set lie, and how their names begin.
struct Place {
    fs::path folder;
    std::string head;
};

// Names of users and templates come from ids; nothing else gets into a file's name.
std::string Plain(const std::string& text) {
    std::string plain;
    for (const char c : text)
        plain += (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ? c : '_';
    return plain;
}

// The file itself, whatever link leads to it.
fs::path FileBehind(const std::string& source) {
    std::error_code failed;
    fs::path file = system::FileBehindLinks(system::PathFromUtf8(source), failed);
    if (failed) throw fs::filesystem_error("", failed);
    return file;
}

// A number of a text, the same in hosts of 32 bit and of 64, which find each other's drafts.
std::string NumberOf(std::string_view text) {
    text::Fnv number;
    number.Add(text);
    return std::to_string(number.Value());
}

// Beside the account set's file first, the user's data folder second. An account set is known by its file, a
// server's by its connect string.
std::vector<Place> Places() {
    std::vector<Place> places;
    try {
        const std::string connect = entry::ConnectStringOfHost();
        std::string set = ado::WithoutPassword(connect);
        if (const auto named = ado::FileOf(connect); named && !named->empty()) {
            const fs::path file = FileBehind(*named);
            places.push_back({file.parent_path(), system::PathToUtf8(file.filename())});
            set = system::PathToUtf8(file);
        }
        const fs::path data = system::PathFromUtf8(system::Surroundings::Current().folders->UserData());
        places.push_back({data / "drafts", NumberOf(set)});
    } catch (const Error&) {
        // A host without a property string has no account set to draft for.
    } catch (const std::exception&) {
        // Nor has one whose folders cannot be named.
    }
    return places;
}

std::string ReadWhole(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// What follows the account set and the user in a draft's name: the template, "-", the window. Another account
// set's name may begin with this one's.
bool IsTemplateAndWindow(std::string_view rest) {
    return rest.find('-') != std::string_view::npos && rest.find('-') == rest.rfind('-');
}

// Read by nobody before it is whole. A draft that a power cut takes is no loss of what was stored.
bool WriteWhole(const std::string& path, const std::string& text) {
    try {
        system::FileReplacement file(path);
        {
            std::ofstream out(system::PathFromUtf8(file.Path()), std::ios::binary | std::ios::trunc);
            out << text;
            out.close();
            if (!out) return false;
        }
        file.PutInPlace(system::Durable::No);
        return true;
    } catch (const Error&) {
        return false;
    }
}

bool IsLive(const Draft& draft) {
    const std::int32_t own = system::Surroundings::Current().processes->CurrentProcessId();
    if (draft.process == std::to_string(own)) return LiveWindows().contains(draft.window);
    const auto process = static_cast<std::int32_t>(std::atoi(draft.process.c_str()));
    const std::string mark = system::ProcessMark(process);
    return !mark.empty() && mark == draft.mark;
}

}  // namespace

DraftStore::~DraftStore() {
    Close();
}

void DraftStore::Open(const std::string& userId) {
    Close();
    userId_ = userId;
    window_ = Plain(entry::NewGuidText());
    if (!window_.empty()) LiveWindows().insert(window_);
}

void DraftStore::Close() {
    LiveWindows().erase(window_);
    userId_.clear();
    window_.clear();
    file_.clear();
}

bool DraftStore::Write(Draft draft) {
    if (userId_.empty() || window_.empty() || draft.userId != userId_) return false;
    const std::int32_t own = system::Surroundings::Current().processes->CurrentProcessId();
    draft.written = system::Surroundings::Current().clock->Now().ToText();
    draft.process = std::to_string(own);
    draft.mark = system::ProcessMark(own);
    draft.window = window_;
    const std::string text = EncodeDraft(draft);
    const std::string name = "-" + Plain(userId_) + "-" + Plain(draft.templateId) + "-" + window_ + kTail;
    for (const Place& place : Places()) {
        std::error_code ignored;
        fs::create_directories(place.folder, ignored);
        std::string written = system::PathToUtf8(system::PathIn(place.folder, place.head + name));
        if (!WriteWhole(written, text)) continue;
        if (written != file_) Remove();
        file_ = std::move(written);
        return true;
    }
    return false;
}

void DraftStore::Remove() {
    if (!file_.empty()) Discard(file_);
    file_.clear();
}

bool DraftStore::IsLost() const {
    std::error_code ignored;
    return !file_.empty() && !fs::exists(system::PathFromUtf8(file_), ignored);
}

void DraftStore::Release() {
    file_.clear();
}

std::vector<FoundDraft> DraftStore::LeftBehind() const {
    std::vector<FoundDraft> found;
    if (userId_.empty()) return found;
    for (const Place& place : Places()) {
        const std::string head = place.head + "-" + Plain(userId_) + "-";
        for (const std::string& name : system::NamesIn(system::PathToUtf8(place.folder))) {
            if (!name.starts_with(head) || !name.ends_with(kTail)) continue;
            if (!IsTemplateAndWindow(std::string_view(name).substr(head.size()))) continue;
            const fs::path path = system::PathIn(place.folder, name);
            std::string file = system::PathToUtf8(path);
            std::optional<Draft> draft = DecodeDraft(ReadWhole(path));
            if (!draft || draft->userId != userId_) continue;
            // What this window has released is its own to offer once more.
            if (draft->window == window_ ? file == file_ : IsLive(*draft)) continue;
            found.push_back({std::move(file), std::move(*draft)});
        }
    }
    std::sort(found.begin(), found.end(), [](const FoundDraft& a, const FoundDraft& b) {
        return a.draft.written != b.draft.written ? a.draft.written > b.draft.written : a.file < b.file;
    });
    return found;
}

void DraftStore::Discard(const std::string& file) {
    std::error_code ignored;
    fs::remove(system::PathFromUtf8(file), ignored);
}

}  // namespace vicenter::center
