#include "host/cli/doctor.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "automation/object.h"
#include "host/account_set.h"
#include "host/account_set_setup.h"
#include "platform/ado/connection.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/ado/passwords.h"
#include "platform/system/files.h"
#include "platform/system/program.h"
#include "platform/system/surroundings.h"
#include "store/engine_text.h"

namespace vicenter::host {

using automation::Error;
namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t kLittleSpace = 200ULL * 1024 * 1024;

// What the component creates of its host, and what is missing in the window without it.
struct HostComponent {
    const char* progId;
    bool needed;
    const char* without;
};
constexpr HostComponent kHostComponents[] = {
    {"VelaPropsMgr.ShareProps", true, "得不到账套和用户，窗口不能打开"},
    {"VelaEBSBase.SecurityInfo", true, "得不到权限，不能修改模板"},
    {"VelaEBSBase.SystemProfile", false, "根据凭证生成时没有默认的年度和期间"},
    {"VelaEBCGLView.GLData", false, "不写操作日志"},
    {"VelaEBCGLView.GLView", false, "不能查看科目、结算方式、币别、计量单位和核算项目"},
    {"VelaVchExp.ExpView", false, "不能查看摘要"},
    {"VelaGLNameListLib.GLNameList", false, "录入时没有候选列表"},
    {"VelaGLNameListLib2.GLNameList", false, "录入时没有候选列表"},
    {"VelaConnection.AppConnection", false, "单据字体按默认值 9 显示"},
    {"VelaBillDataAccess.SysInfo", false, "得不到云盘用户"},
    {"VelaBillDataAccess.SaveData", false, "不记录云盘文件"},
    {"Vela_APFC.FrameData", false, "不写使用记录"},
    {"VelaFRAPI.NXCloud", false, "没有云盘"},
};

class Doctor {
  public:
    explicit Doctor(const DoctorQuestions& questions) : questions_(questions) {}

    std::vector<DoctorFinding> Examine() {
        ExamineProgram();
        ExamineWindows();
        ExamineFolders();
        ExamineDrivers();
        ExamineAccountSet();
        ExamineHost();
        return std::move(findings_);
    }

  private:
    void Add(const char* area, DoctorState state, std::string text, std::string advice = {}) {
        findings_.push_back({area, state, std::move(text), std::move(advice)});
    }

    static bool Exists(const fs::path& path) {
        std::error_code ignored;
        return fs::exists(path, ignored);
    }

    void ExamineProgram() {
        const std::string folder = system::Surroundings::Current().folders->Component();
        Add("程序", DoctorState::Good, "vicenter " + questions_.version + "，位于 " + folder);
        const fs::path program = system::PathFromUtf8(folder);
        const bool page = Exists(program.parent_path() / "share" / "vicenter" / "docs" / "help") ||
                          Exists(program / "docs" / "help");
        if (page) {
            Add("程序", DoctorState::Good, "帮助页面已安装");
        } else {
            Add("程序", DoctorState::Note, "程序旁没有安装帮助页面",
                "用 .deb 软件包或 cmake --install 安装。");
        }
    }

    void ExamineWindows() {
        if (!questions_.hasWindows) {
            Add("窗口", DoctorState::Note, "此版本不含窗口",
                "命令行可以照常使用；要用窗口，请安装含窗口的版本。");
            return;
        }
        const bool display = system::EnvironmentVariable("DISPLAY").has_value() ||
                             system::EnvironmentVariable("WAYLAND_DISPLAY").has_value();
        if (display) {
            Add("窗口", DoctorState::Good, "有显示器");
        } else {
            Add("窗口", DoctorState::Note, "当前会话没有显示器", "请在图形桌面中打开窗口，或使用命令行。");
        }
        const std::string font = questions_.chineseFont ? questions_.chineseFont() : std::string();
        if (font.empty()) {
            Add("字体", DoctorState::Missing, "没有中文字体，汉字会显示为方框",
                "请安装软件包 fonts-noto-cjk。");
        } else {
            Add("字体", DoctorState::Good, "中文字体：" + font);
        }
    }

    void ExamineFolders() {
        const std::string folder = system::Surroundings::Current().folders->UserData();
        const fs::path path = system::PathFromUtf8(folder);
        std::error_code failed;
        if (!Exists(path)) {
            Add("数据", DoctorState::Note, "数据文件夹尚未建立：" + folder,
                "第一次打开演示账套时会自动建立。");
            return;
        }
        const fs::perms permissions = fs::status(path, failed).permissions();
        const bool writable = !failed && (permissions & fs::perms::owner_write) != fs::perms::none;
        if (!writable) {
            Add("数据", DoctorState::Missing, "数据文件夹不可写：" + folder, "请检查该文件夹的属主和权限。");
            return;
        }
        const fs::space_info space = fs::space(path, failed);
        if (!failed && space.available < kLittleSpace) {
            Add("数据", DoctorState::Note, "磁盘空间不足 200 MB：" + folder, "请清理磁盘。");
        } else {
            Add("数据", DoctorState::Good, "数据文件夹：" + folder);
        }
    }

    void ExamineDrivers() {
        const bool server = !questions_.file && !questions_.connectString.empty();
        std::string chosen;
        for (const ado::OdbcDriver& driver : ado::OdbcDrivers()) {
            if (driver.forSqlServer && driver.chosen) chosen = driver.name;
        }
        if (!chosen.empty()) {
            Add("驱动", DoctorState::Good, "SQL Server 的 ODBC 驱动程序：" + chosen);
        } else {
            Add("驱动", server ? DoctorState::Missing : DoctorState::Note, "没有 SQL Server 的 ODBC 驱动程序",
                ado::NoOdbcDriverText());
        }
    }

    std::string PlaceOfSet() const {
        return questions_.file ? *questions_.file : ado::PasswordsHidden(questions_.connectString);
    }

    void ExamineAccountSet() {
        if (questions_.connectString.empty()) return;
        if (questions_.file && !Exists(system::PathFromUtf8(*questions_.file))) {
            Add("账套", DoctorState::Note, "账套文件不存在：" + *questions_.file,
                "演示账套在第一次打开窗口时建立；其他账套请用 vicenter account-set new FILE 建立。");
            return;
        }
        try {
            const ado::ConnectionRef connection = ado::OpenConnection(questions_.connectString);
            Add("账套", DoctorState::Good, "账套可以打开：" + PlaceOfSet());
            ExamineStructure(*connection);
        } catch (const Error& error) {
            Add("账套", DoctorState::Missing,
                "账套不能打开：" + PlaceOfSet() + "：" +
                    ado::PasswordsHidden(store::EngineTextInChinese(error.Text())),
                questions_.file ? "请用 vicenter account-set verify 检查，必要时从备份恢复。"
                                : "请检查连接字符串、服务器和网络。");
        }
    }

    void ExamineStructure(ado::Connection& connection) {
        const StructureFaults faults = FindStructureFaults(connection);
        for (const std::string& fault : faults.tables)
            Add("账套", DoctorState::Missing, fault, SetupAdvice());
        for (const std::string& fault : faults.others)
            Add("账套", DoctorState::Note, fault, SetupAdvice());
        if (!faults.tables.empty()) return;
        ExamineHistory(connection);
        ExamineUser(connection);
    }

    std::string SetupAdvice() const {
        return questions_.file ? "请从备份恢复，或与管理员联系。"
                               : "请用 vicenter --connect … account-set new 补齐；加 --dry-run 只看脚本。";
    }

    void ExamineHistory(ado::Connection& connection) {
        const bool kept =
            !connection.Execute("select object_id('t_VchTpHistory') as FID")->Value("FID").IsNull();
        if (kept) {
            Add("账套", DoctorState::Good, "保留模板的历史版本");
        } else {
            Add("账套", DoctorState::Note, "没有历史版本的表，模板的旧版本不保留",
                "请用 vicenter account-set upgrade 补上。");
        }
    }

    void ExamineUser(ado::Connection& connection) {
        const std::string id = std::to_string(questions_.userId);
        const ado::RecordsetRef user = connection.Execute("select FName from t_User where FUserID = " + id);
        if (user->RecordCount() == 0) {
            Add("用户", DoctorState::Missing, "账套中没有用户 " + id, "请用 --user 指定账套中的用户编号。");
        } else {
            Add("用户", DoctorState::Good, "用户 " + id + "：" + user->Value("FName").ToText());
        }
    }

    void ExamineHost() {
        int present = 0;
        for (const HostComponent& component : kHostComponents) {
            if (automation::ClassRegistry::Process().IsRegistered(component.progId)) {
                ++present;
                continue;
            }
            Add("宿主", component.needed ? DoctorState::Missing : DoctorState::Note,
                std::string("没有宿主组件 ") + component.progId + "：" + component.without,
                "由宿主程序登记，见 docs/hosting.md。");
        }
        Add("宿主", DoctorState::Good, "宿主组件 " + std::to_string(present) + " 个已登记");
    }

    const DoctorQuestions& questions_;
    std::vector<DoctorFinding> findings_;
};

}  // namespace

std::vector<DoctorFinding> Examine(const DoctorQuestions& questions) {
    return Doctor(questions).Examine();
}

}  // namespace vicenter::host
