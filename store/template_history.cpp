#include "store/template_history.h"

#include <utility>

#include "automation/quietly.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/engine_text.h"
#include "store/statements.h"
#include "store/template_batches.h"
#include "store/template_columns.h"

namespace vicenter::store {

using automation::Error;
using entry::kCrLf;

namespace {

constexpr const char* kIfKept = "if object_id('t_VchTpHistory') is not null";

// ",FNo,FExp,…": every column of a line behind its number in the template.
const std::string& LineFields() {
    static const std::string fields = [] {
        std::string text;
        for (const ColumnSpec& spec : Columns())
            text.append(",").append(spec.field);
        return text;
    }();
    return fields;
}

void AppendLine(std::string& batch, std::string_view text) {
    batch.append(text).append(kCrLf);
}

// Where rows are locked, nobody else writes to them before the unit ends.
constexpr const char* kLocked = " with (updlock, holdlock)";

// Answers the template as AskTemplate and AskTemplateWithLines do, FHistoryID is the version's id beside it:
// null where nothing is kept.
std::string KeepBatch(const SeenTemplate& seen, HistoryCommand command, const std::string& userId,
                      const std::string& time) {
    const std::string ofTemplate = " where FID = " + seen.id;
    std::string batch;
    AppendLine(batch, "declare @kept int");
    AppendLine(batch,
               std::string(kIfKept) + " and exists(select 1 from t_VchTemplate" + kLocked + ofTemplate + ")");
    AppendLine(batch, "begin");
    AppendLine(batch,
               "insert into t_VchTpHistory(FID,FName,FOwnerID,FCommand,FKeptBy,FKeptAt,FLines) select "
               "FID,FName,FUserID," +
                   std::to_string(static_cast<std::int32_t>(command)) + "," + userId + "," + time +
                   ",(select count(*) from t_VchTemplateEntry" + ofTemplate + ") from t_VchTemplate" +
                   ofTemplate);
    AppendLine(batch, "select @kept = scope_identity()");
    AppendLine(batch, "insert into t_VchTpHistoryEntry(FHistoryID,FEntryID" + LineFields() +
                          ") select @kept,FEntryID" + LineFields() + " from t_VchTemplateEntry" + ofTemplate);
    AppendLine(batch,
               "insert into t_VchTpHistoryControl(FHistoryID,FNo,FUseFrequency,FKey,FFileCount) select "
               "@kept,FNo,FUseFrequency,FKey,FFileCount from t_VchTpControl" +
                   ofTemplate);
    AppendLine(batch, "end");
    const std::string what = "select a.FUserID,a.FName as FTemplateName,@kept as FHistoryID";
    const std::string from = std::string(" from t_VchTemplate a") + kLocked;
    const std::string which = " where a.FID = " + seen.id;
    if (seen.lines) {
        AppendLine(batch, what + ",b.*" + from + " left join t_VchTemplateEntry b" + kLocked +
                              " on a.FID = b.FID" + which + " order by b.FNo,b.FEntryID");
    } else {
        AppendLine(batch, what + from + which);
    }
    return batch;
}

// A condition on two columns that holds where they hold the same: for the collation, which takes a text in
// capitals or in wide letters for the same, or unit by unit.
std::string Same(const std::string& field, bool byUnits) {
    const std::string now = byUnits ? "cast(a." + field + " as varbinary(510))" : "a." + field;
    const std::string then = byUnits ? "cast(h." + field + " as varbinary(510))" : "h." + field;
    return "(" + now + " = " + then + " or a." + field + " is null and h." + field + " is null)";
}

// A table of templates and what a version holds of it.
struct KeptTable {
    std::string table;
    std::string historyTable;
    std::string key;           // of a template's rows
    std::string alike;         // for the collation
    std::string alikeByUnits;  // those that hold texts, once they are that

    KeptTable(std::string ofTemplates, std::string ofVersions, std::string keyField)
        : table(std::move(ofTemplates)), historyTable(std::move(ofVersions)), key(std::move(keyField)) {}
    void AddField(const std::string& field, bool isText) {
        alike.append(alike.empty() ? "" : " and ").append(Same(field, false));
        if (isText) alikeByUnits.append(alikeByUnits.empty() ? "" : " and ").append(Same(field, true));
    }
};

const KeptTable& KeptLines() {
    static const KeptTable lines = [] {
        KeptTable made("t_VchTemplateEntry", "t_VchTpHistoryEntry", "FEntryID");
        for (const ColumnSpec& spec : Columns())
            made.AddField(std::string(spec.field), spec.kind == CellKind::Text);
        return made;
    }();
    return lines;
}

const KeptTable& KeptControlRows() {
    static const KeptTable rows = [] {
        KeptTable made("t_VchTpControl", "t_VchTpHistoryControl", "FNo");
        made.AddField("FUseFrequency", false);
        made.AddField("FKey", true);
        made.AddField("FFileCount", false);
        return made;
    }();
    return rows;
}

// Conditions: not as many rows as the version holds, or rows that it holds otherwise.
std::string CountsOtherwise(const KeptTable& kept, const std::string& templateId,
                            const std::string& versionId) {
    return "(select count(*) from " + kept.table + " where FID = " + templateId +
           ") <> (select count(*) from " + kept.historyTable + " where FHistoryID = " + versionId + ")";
}

std::string HoldsOtherwise(const KeptTable& kept, const std::string& alike, const std::string& templateId,
                           const std::string& versionId) {
    return "exists(select 1 from " + kept.table + " a left join " + kept.historyTable +
           " h on h.FHistoryID = " + versionId + " and h." + kept.key + " = a." + kept.key +
           " where a.FID = " + templateId + " and case when " + alike + " then 0 else 1 end = 1)";
}

// What the rule lets go. Versions are looked through only when one of them is old enough.
void AppendElseClearing(std::string& batch, const std::string& templateId) {
    const HistoryRule usual;
    AppendLine(batch, "else");
    AppendLine(batch, "begin");
    AppendLine(batch, "declare @days int, @least int, @before datetime");
    AppendLine(batch, "select @days = " + std::to_string(usual.days) +
                          ", @least = " + std::to_string(usual.versions));
    AppendLine(batch, "select @days = FDays, @least = FVersions from t_VchTpHistoryRule");
    AppendLine(batch, "set @before = dateadd(day, -@days, GetDate())");
    const std::string ofTemplate = "FID = " + templateId;
    const std::string old = "select FHistoryID from t_VchTpHistory where " + ofTemplate +
                            " and FKeptAt < @before and FHistoryID not in (select top (@least) FHistoryID "
                            "from t_VchTpHistory where " +
                            ofTemplate + " order by FHistoryID desc)";
    AppendLine(batch,
               "if exists(select 1 from t_VchTpHistory where " + ofTemplate + " and FKeptAt < @before)");
    AppendLine(batch, "begin");
    for (const char* table : {"t_VchTpHistoryEntry", "t_VchTpHistoryControl", "t_VchTpHistory"})
        AppendLine(batch, std::string("delete from ") + table + " where FHistoryID in (" + old + ")");
    AppendLine(batch, "end");
    AppendLine(batch, "end");
}

// Answers a row when the lines may be what the version holds. Short, so that the account set knows it again
// from one save to the next: most commands change something, and are done with it.
std::string ChangedLinesBatch(const std::string& templateId, const std::string& versionId, bool clears) {
    std::string batch;
    AppendLine(batch, "if not (" + CountsOtherwise(KeptLines(), templateId, versionId));
    AppendLine(batch, "or " + HoldsOtherwise(KeptLines(), KeptLines().alike, templateId, versionId) + ")");
    AppendLine(batch, "select 1 as FAlike");
    if (clears) AppendElseClearing(batch, templateId);
    return batch;
}

// Lets the version go unless anything differs: name, owner, control rows, units of texts.
std::string GiveUpBatch(const std::string& templateId, const std::string& versionId, bool clears) {
    const KeptTable& lines = KeptLines();
    const KeptTable& rows = KeptControlRows();
    std::string batch;
    AppendLine(batch,
               "if exists(select 1 from t_VchTemplate a inner join t_VchTpHistory h on h.FID = a.FID where "
               "h.FHistoryID = " +
                   versionId + " and " + Same("FName", true) + " and h.FOwnerID = a.FUserID)");
    AppendLine(batch, "and not (" + CountsOtherwise(rows, templateId, versionId));
    AppendLine(batch, "or " + HoldsOtherwise(rows, rows.alike, templateId, versionId));
    AppendLine(batch, "or " + HoldsOtherwise(rows, rows.alikeByUnits, templateId, versionId));
    AppendLine(batch, "or " + HoldsOtherwise(lines, lines.alikeByUnits, templateId, versionId) + ")");
    AppendLine(batch, "begin");
    for (const char* table : {"t_VchTpHistoryEntry", "t_VchTpHistoryControl", "t_VchTpHistory"})
        AppendLine(batch, std::string("delete from ") + table + " where FHistoryID = " + versionId);
    AppendLine(batch, "end");
    if (clears) AppendElseClearing(batch, templateId);
    return batch;
}

// The statements behind it run only while the version is there whole: others may let it go meanwhile.
void BeginRestoring(std::string& batch, const std::string& versionId) {
    const std::string ofVersion = " where FHistoryID = " + versionId;
    AppendLine(batch, "if isnull((select FLines from t_VchTpHistory" + ofVersion +
                          "),-1) <> (select count(*) from t_VchTpHistoryEntry" + ofVersion + ")");
    AppendLine(batch, "raiserror('历史版本已不存在，没有恢复！',16,1)");
    AppendLine(batch, "else");
    AppendLine(batch, "begin");
}

// An id that no template has had of which versions are kept: those that come along do not fall among
// another's.
void BeginUnusedTemplate(std::string& batch, const std::string& name, const std::string& ownerId) {
    AppendLine(batch, "declare @MaxFID int");
    AppendLine(batch,
               "select @MaxFID = Max(FID)+1 from (select FID from t_VchTemplate union all select FID from "
               "t_VchTpHistory) a");
    AppendTemplateRow(batch, name, ownerId);
}

// Where the version is the last one of a deleted template, all that was kept of that template goes over to
// the new one, and the deletion is none any more. Earlier and later templates of the id keep theirs. One
// statement, so that it stays whole without a unit as well.
void AppendMovingOfDeleted(std::string& batch, const std::string& versionId, const std::string& userId) {
    const auto number = [](HistoryCommand command) {
        return std::to_string(static_cast<std::int32_t>(command));
    };
    const std::string isDeletion = "FCommand = " + number(HistoryCommand::Delete);
    const auto change = [&](const std::string& field, const std::string& value) {
        return field + " = case when h.FHistoryID = " + versionId + " then " + value + " else h." + field +
               " end";
    };
    AppendLine(batch, "update h set FID = @MaxFID, " + change("FCommand", number(HistoryCommand::Restore)) +
                          ", " + change("FKeptBy", userId) + ", " + change("FKeptAt", "GetDate()") +
                          " from t_VchTpHistory h inner join t_VchTpHistory d on d.FID = h.FID where "
                          "d.FHistoryID = " +
                          versionId + " and d." + isDeletion + " and h.FHistoryID <= " + versionId +
                          " and not exists(select 1 from t_VchTpHistory e where e.FID = h.FID and e." +
                          isDeletion + " and e.FHistoryID >= h.FHistoryID and e.FHistoryID < " + versionId +
                          ")");
}

// The question alone.
FoundTemplate LookAt(const SeenTemplate& seen) {
    return seen.lines ? LookAgain(seen) : Compare(seen, AskTemplate(seen.id));
}

HistoryVersion VersionOf(const ado::RecordsetRef& rows) {
    const auto text = [&](const char* field) { return rows->Value(field).ToTextOrEmpty(); };
    HistoryVersion version;
    version.id = text("FHistoryID");
    version.templateId = text("FID");
    version.name = text("FName");
    version.ownerId = rows->Value("FOwnerID").ToInt32();
    version.command = static_cast<HistoryCommand>(rows->Value("FCommand").ToInt32());
    version.keptBy = rows->Value("FKeptBy").ToInt32();
    version.keptAt = text("FKeptAt").substr(0, 19);  // to the second
    version.lines = rows->Value("FLines").ToInt32();
    return version;
}

// An answer without the columns of a version comes from an account set that keeps none.
History Read(const std::string& question) {
    History history;
    const ado::RecordsetRef rows = GetRecordset(
        std::string(kIfKept) + kCrLf +
        "select h.FHistoryID,h.FID,h.FName,h.FOwnerID,h.FCommand,h.FKeptBy,h.FKeptAt,h.FLines from "
        "t_VchTpHistory h where " +
        question + " order by h.FHistoryID desc");
    if (rows == nullptr) return history;
    history.state = rows->ColumnCount() == 0 ? History::State::Off : History::State::Kept;
    for (; history.state == History::State::Kept && !rows->AtEnd(); rows->MoveNext())
        history.versions.push_back(VersionOf(rows));
    return history;
}

}  // namespace

std::string CommandText(HistoryCommand command) {
    switch (command) {
        case HistoryCommand::Save:
            return "保存";
        case HistoryCommand::Import:
            return "引入";
        case HistoryCommand::Generate:
            return "生成";
        case HistoryCommand::Rename:
            return "改名";
        case HistoryCommand::Delete:
            return "删除";
        case HistoryCommand::Restore:
            return "恢复";
        case HistoryCommand::Replace:
            return "替换";
    }
    return {};
}

// A version that is about to be brought back is not to be let go.
KeptVersions::KeptVersions(const std::vector<SeenTemplate>& seen, HistoryCommand command)
    : seen_(seen), clears_(command != HistoryCommand::Restore) {
    clsVIData::ForgetFailure();
    unit_.emplace();
    if (!unit_->HasBegun() || !KeepAll(command)) {
        const bool promised = command == HistoryCommand::Restore || command == HistoryCommand::Replace;
        const bool stopped = StoppableCommand::IsStopped();
        if (promised || stopped || clsVIData::LastFailureWasLock()) obstacle_ = Obstacle::NotKept;
        if (unit_->IsOne()) kept_.clear();
        const bool begun = unit_->HasBegun();
        unit_.reset();
        why_ = clsVIData::LastFailure();
        if (!stopped) entry::WriteOperationLog(entry::LogKind::Failed, "凭证模板-历史版本未能保留");
        found_.clear();
        if (begun && MayWrite()) unit_.emplace();
        if (MayWrite()) LookAtAll();
    }
    if (MayWrite() || !unit_) return;
    // Nobody else waits for it while the user reads why.
    if (unit_->IsOne()) kept_.clear();
    unit_.reset();
    Settle();
}

bool KeptVersions::KeepAll(HistoryCommand command) {
    for (const SeenTemplate& seen : seen_) {
        if (!Keep(seen, command)) return false;
        if (!MayWrite()) break;
    }
    return true;
}

bool KeptVersions::Keep(const SeenTemplate& seen, HistoryCommand command) {
    const std::string time =
        kept_.empty() ? "GetDate()"
                      : "(select FKeptAt from t_VchTpHistory where FHistoryID = " + kept_.front().id + ")";
    const ado::RecordsetRef kept = GetRecordset(KeepBatch(seen, command, entry::CurrentUserId(), time));
    if (kept == nullptr) return false;
    std::optional<TemplateRow> row = RowOf(kept);
    // Some hosts give a batch's first result alone, which is none where a version is kept.
    if (!row) {
        Take(LookAt(seen));
        return true;
    }
    if (seen.lines) row->lines = kept;
    try {
        if (row->exists && !kept->Value("FHistoryID").IsNull())
            kept_.push_back({seen.id, kept->Value("FHistoryID").ToText()});
    } catch (const Error&) {
        // An answer to another question: nobody keeps anything there.
    }
    Take(Compare(seen, row));
    return true;
}

void KeptVersions::LookAtAll() {
    for (const SeenTemplate& seen : seen_) {
        if (!Take(LookAt(seen))) return;
    }
}

bool KeptVersions::Take(FoundTemplate found) {
    const bool asSeen = found.fate == TemplateFate::AsSeen;
    if (!asSeen) obstacle_ = Obstacle::NotAsSeen;
    found_.push_back(std::move(found));
    return asSeen;
}

std::string KeptVersions::WhyNot(const std::string& undone) const {
    switch (obstacle_) {
        case Obstacle::NotAsSeen:
            return WhyNotWritten(seen_[found_.size() - 1], found_.back(), undone);
        case Obstacle::NotKept: {
            const std::string text = "现有分录未能保留为历史版本，" + undone + "，账套保持原样！";
            return why_.empty() ? text : text + kCrLf + kCrLf + EngineTextInChinese(why_);
        }
        case Obstacle::None:
            break;
    }
    return {};
}

KeptVersions::~KeptVersions() {
    // In a unit that is not kept there are none.
    if (unit_ && unit_->IsOne()) return;
    // Nobody may know what became of a command whose line was cut: what it has replaced stays.
    Settle();
}

// A version that is what stands there tells nobody anything, and pushes none out that does.
void KeptVersions::Settle() {
    for (const Version& version : std::exchange(kept_, {})) {
        // If not, it stays, the same as what is there: no harm but in the list.
        automation::Quietly([&] {
            const ado::RecordsetRef alike =
                GetRecordset(ChangedLinesBatch(version.templateId, version.id, clears_));
            if (alike == nullptr || alike->ColumnCount() == 0 || alike->AtEnd()) return;
            GetRecordset(GiveUpBatch(version.templateId, version.id, clears_));
        });
    }
}

bool KeptVersions::Commit() {
    if (!MayWrite()) return false;
    Settle();
    const bool committed = !unit_ || unit_->Commit();
    return committed;
}

bool KeptVersions::CommitOrShow() {
    if (Commit()) return true;
    clsVIData::ShowFailure();
    return false;
}

bool KeptVersions::RunAndCommit(const std::string& sql) {
    return MayWrite() && RunSql(sql) && CommitOrShow();
}

History ReadHistory(const std::string& templateId) {
    History history = Read("h.FID = " + templateId);
    for (auto version = history.versions.begin(); version != history.versions.end(); ++version) {
        if (version->command != HistoryCommand::Delete) continue;
        history.versions.erase(version, history.versions.end());
        break;
    }
    return history;
}

History ReadDeleted(const std::string& userId) {
    return Read("h.FCommand = " + std::to_string(static_cast<std::int32_t>(HistoryCommand::Delete)) +
                " and h.FOwnerID = " + userId);
}

History ReadLastReplacement(const std::string& userId) {
    const auto replaced = [&](const std::string& table) {
        return table + "FCommand = " + std::to_string(static_cast<std::int32_t>(HistoryCommand::Replace)) +
               " and " + table + "FKeptBy = " + userId;
    };
    return Read(replaced("h.") + " and h.FKeptAt = (select top 1 FKeptAt from t_VchTpHistory where " +
                replaced("") + " order by FHistoryID desc)");
}

ado::RecordsetRef ReadVersionLines(const std::string& versionId) {
    return GetRecordset("select * from t_VchTpHistoryEntry where FHistoryID = " + versionId +
                        " order by FNo,FEntryID ");
}

std::optional<HistoryRule> ReadHistoryRule() {
    const ado::RecordsetRef rows =
        GetRecordset(std::string(kIfKept) + kCrLf + "select FDays,FVersions from t_VchTpHistoryRule");
    if (rows == nullptr || rows->ColumnCount() == 0) return std::nullopt;
    if (rows->AtEnd()) return HistoryRule{};
    return HistoryRule{rows->Value("FDays").ToInt32(), rows->Value("FVersions").ToInt32()};
}

bool SaveHistoryRule(const HistoryRule& rule) {
    return RunSql(std::string("delete from t_VchTpHistoryRule") + kCrLf +
                  "insert into t_VchTpHistoryRule(FDays,FVersions) values(" + std::to_string(rule.days) +
                  "," + std::to_string(rule.versions) + ")");
}

std::string RestoreOverBatch(const std::string& versionId, const std::string& templateId) {
    const std::string ofTemplate = " where FID = " + templateId;
    const std::string ofVersion = " where FHistoryID = " + versionId;
    std::string batch;
    BeginRestoring(batch, versionId);
    AppendLine(batch, "delete from t_VchTemplateEntry" + ofTemplate);
    AppendLine(batch, "insert into t_VchTemplateEntry(FID,FEntryID" + LineFields() + ") select " +
                          templateId + ",FEntryID" + LineFields() + " from t_VchTpHistoryEntry" + ofVersion);
    AppendLine(batch, "delete from t_VchTpControl" + ofTemplate +
                          " and FNo not in (select FNo from t_VchTpHistoryControl" + ofVersion + ")");
    AppendLine(batch,
               "update c set FKey = h.FKey, FFileCount = h.FFileCount from t_VchTpControl c inner join "
               "t_VchTpHistoryControl h on h.FNo = c.FNo where c.FID = " +
                   templateId + " and h.FHistoryID = " + versionId);
    AppendLine(batch, "insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) select " +
                          templateId + ",FNo,FUseFrequency,FKey,FFileCount,0 from t_VchTpHistoryControl" +
                          ofVersion + " and FNo not in (select FNo from t_VchTpControl" + ofTemplate + ")");
    AppendLine(batch, MarkUsable(templateId));
    AppendLine(batch, "end");
    return batch;
}

std::string RestoreAsNewBatch(const std::string& versionId, const std::string& name,
                              const std::string& ownerId) {
    const std::string ofVersion = " where FHistoryID = " + versionId;
    std::string batch;
    BeginRestoring(batch, versionId);
    BeginUnusedTemplate(batch, name, ownerId);
    AppendLine(batch, "insert into t_VchTemplateEntry(FID,FEntryID" + LineFields() +
                          ") select @MaxFID,FEntryID" + LineFields() + " from t_VchTpHistoryEntry" +
                          ofVersion);
    AppendLine(batch,
               "insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) select "
               "@MaxFID,FNo,FUseFrequency,FKey,FFileCount,0 from t_VchTpHistoryControl" +
                   ofVersion);
    AppendMovingOfDeleted(batch, versionId, ownerId);
    AppendLine(batch, MarkUsable("@MaxFID"));
    AppendLine(batch, "end");
    return batch;
}

}  // namespace vicenter::store
