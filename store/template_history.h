#pragma once

// What a template held before a command wrote to it: kept in the account set by one batch of its own, in
// front of the command's and in one unit with it, and brought back from there. The tables are those of
// host/accountset/history.sql; an account set without them keeps nothing, and nothing is told about it
// but on request. No line leaves the account set while a version is kept or brought back. User-interface
// thread.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/recordset.h"
#include "store/command_unit.h"
#include "store/template_guard.h"

namespace vicenter::store {

// The command that replaced a version, by the numbers in t_VchTpHistory.FCommand.
enum class HistoryCommand : std::int32_t {
    Save = 1,
    Import = 2,
    Generate = 3,
    Rename = 4,
    Delete = 5,
    Restore = 6,
    Replace = 7  // codes, in many templates at once
};
// For users; empty for a number that is none of ours.
std::string CommandText(HistoryCommand command);

// A command's writing to templates that are there: whether they still are what the user saw, and the versions
// of them, kept before the command writes. Where the host's service can do that, both and what the command
// writes are one unit, on the disk at once; elsewhere the versions are looked at once more at the end of the
// scope. Either way a version that is still what stands there is given up: a command that changed nothing
// leaves none, whatever it wrote, and lets none of before go.
//
// One batch a template keeps its version and asks what it is; where rows can be locked it stays that to the
// end of the unit. When it is not what the user saw, nothing is kept and nothing may be written. A version
// that cannot be kept ends a command that promises it (Restore, Replace), any command where another one holds
// a lock, since it could write no more than the version, and one that the user has stopped; for the others it
// is no reason to stop: they go on without, and the operation log tells. While one is in scope nobody is
// asked anything, unless nothing may be written.
class KeptVersions {
  public:
    // The current user gives the command. What one command wrote to several templates is known by their one
    // time.
    KeptVersions(const std::vector<SeenTemplate>& seen, HistoryCommand command);
    KeptVersions(const KeptVersions&) = delete;
    KeptVersions& operator=(const KeptVersions&) = delete;
    ~KeptVersions();

    enum class Obstacle {
        None,
        NotAsSeen,  // the last of Found()
        NotKept,
    };
    Obstacle InTheWay() const { return obstacle_; }
    bool MayWrite() const { return obstacle_ == Obstacle::None; }
    // What has become of the templates, up to the first that is not what the user saw.
    const std::vector<FoundTemplate>& Found() const { return found_; }
    // Why nothing may be written, for users, with what the command did not do: "没有引入".
    std::string WhyNot(const std::string& undone) const;

    // The command has written: the versions are history, but for those of what it left as it was. False when
    // that and what was written has been undone instead, or nobody knows; clsVIData::LastFailure() says why.
    bool Commit();
    // The same; an error has been shown to the user like that of a batch.
    bool CommitOrShow();
    // The command's batch, and that; not where nothing may be written.
    bool RunAndCommit(const std::string& sql);

  private:
    struct Version {
        std::string templateId;
        std::string id;
    };
    // False: a version could not be kept.
    bool KeepAll(HistoryCommand command);
    bool Keep(const SeenTemplate& seen, HistoryCommand command);
    void LookAtAll();
    // True when it is what the user saw.
    bool Take(FoundTemplate found);
    void Settle();

    std::vector<SeenTemplate> seen_;
    bool clears_;
    Obstacle obstacle_ = Obstacle::None;
    std::string why_;  // they could not be kept
    std::vector<FoundTemplate> found_;
    std::optional<CommandUnit> unit_;
    std::vector<Version> kept_;
};

struct HistoryVersion {
    std::string id;
    std::string templateId;
    std::string name;
    std::int32_t ownerId = 0;
    HistoryCommand command = HistoryCommand::Save;
    std::int32_t keptBy = 0;
    std::string keptAt;  // "yyyy-mm-dd hh:mm:ss"
    std::int32_t lines = 0;
};

struct History {
    enum class State {
        Kept,
        Off,         // the account set has no tables for it
        Unreadable,  // it does not answer
    };
    State state = State::Unreadable;
    std::vector<HistoryVersion> versions;  // the latest first
};

// The versions of a template that is there. Ids are given again: what was kept of an earlier template of this
// id, up to its deletion, is not among them; those of a template that was brought back are.
History ReadHistory(const std::string& templateId);
// The last version of every template that the user's own commands or others have deleted, as long as it is
// kept: the user's own ones.
History ReadDeleted(const std::string& userId);

// The versions of all templates that the user's last replacement of codes wrote to.
History ReadLastReplacement(const std::string& userId);

// All columns of its lines, ordered as a template's are; no recordset on an error.
ado::RecordsetRef ReadVersionLines(const std::string& versionId);

// How long versions are kept.
struct HistoryRule {
    std::int32_t days = 90;
    std::int32_t versions = 20;  // of every template at least
};
// Nothing when the account set has no tables for it or does not answer.
std::optional<HistoryRule> ReadHistoryRule();
// False when the account set refuses, which the user has been shown.
bool SaveHistoryRule(const HistoryRule& rule);

// Puts a version's lines into the place of those of a template, which keeps its name and, for numbers that
// stay, how often they were used; then marks the usable numbers.
std::string RestoreOverBatch(const std::string& versionId, const std::string& templateId);
// Makes a template of a version, its owner's command. The last version of a deleted template brings that one
// back: all its versions become the new template's, and it is a deleted one no more.
std::string RestoreAsNewBatch(const std::string& versionId, const std::string& name,
                              const std::string& ownerId);

}  // namespace vicenter::store
