// Typing into the account cell of the real window, key by key, on an account set of 20,000 accounts: each key
// goes in as a key event and is over when the narrowed list below the cell has been painted.
//
// The first key of a cell is timed for a list that was read while the user rested on the cell, and for one
// that has to be read because the account set has changed a moment ago; so is that reading itself. Every key
// checks what the list shows. Offscreen. Usage: name_list_window_bench [rounds]

#include <QApplication>
#include <QKeyEvent>
#include <QListView>
#include <QTest>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "automation/class_registry.h"
#include "bench/account_set_bench.h"
#include "host/account_set.h"
#include "host/components/components.h"
#include "platform/system/collation.h"
#include "store/component_classes.h"
#include "ui/run/application.h"
#include "ui/window/vicenter_window.h"

namespace {

using namespace vicenter;
using bench::Require;

// Processor time of this process: the machine may have other work.
double ProcessorMilliseconds(const std::function<void()>& body) {
    const std::clock_t start = std::clock();
    body();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

constexpr int kAccounts = 20000;

std::string AccountNumber(int i) {
    char number[32];
    std::snprintf(number, sizeof number, "%d.%02d.%03d", 7001 + i / 2000, i / 100 % 20, i % 100);
    return number;
}

// Accounts beside those of the demo ledger.
void AddAccounts(const std::string& connectString) {
    static const char* const kKinds[] = {"银行存款", "应收账款", "库存商品", "应付账款", "管理费用"};
    static const char* const kFirms[] = {"杭州雅集茶庄", "上海云栖礼品", "南京清和百货", "北京长安文化",
                                         "广州南方贸易", "深圳前海电子", "成都天府食品"};
    std::string batch;
    for (int i = 0; i < kAccounts; ++i) {
        const std::string name = std::string(kKinds[i % 5]) + "-" + kFirms[i % 7] + std::to_string(i);
        batch += "insert into t_Account(FAccountID,FNumber,FName) values(" + std::to_string(100000 + i) +
                 ",'" + AccountNumber(i) + "',N'" + name + "')\r\n";
    }
    ado::OpenConnection(connectString)->Execute(batch);
}

class Typist {
  public:
    explicit Typist(ui::VICenterWindow& window) : window_(window) {}

    void Enter(int row, int column) {
        window_.Presenter().Cells().MoveActiveCell({row, column});
        window_.Grid().setFocus();
        QApplication::processEvents();
    }
    double Key(char key) {
        return ProcessorMilliseconds([&] {
            QTest::keyClick(QApplication::focusWidget(), key);
            QApplication::processEvents();
        });
    }
    void Escape() {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QApplication::processEvents();
    }
    int Shown() const {
        const auto* list = window_.findChild<QWidget*>("nameList")->findChild<QListView*>();
        return list->isVisible() ? list->model()->rowCount() : 0;
    }

  private:
    ui::VICenterWindow& window_;
};

void Print(const char* what, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    std::printf("%-56s %8.2f ms (%.2f to %.2f)\n", what, times[times.size() / 2], times.front(),
                times.back());
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ui::SetUpApplication(application);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
    const bench::TemporaryAccountSet set;
    host::RegisterProviders();
    host::CreateAccountSetFile(set.Path(), {true, 0});
    const std::string connectString = host::FileConnectString(set.Path());
    AddAccounts(connectString);
    store::RegisterComponentClasses();
    const host::HostSessionRef session = host::RegisterHostComponents({connectString, 1});

    auto* window = new ui::VICenterWindow;
    window->Open();
    Require(QTest::qWaitForWindowActive(window), "the window is active");
    QApplication::processEvents();
    Typist typist(*window);

    // The user looks at the window for as long as pinyin takes to load, then goes to the cell.
    Require(QTest::qWaitFor([] { return system::PinyinLoading::IsOver(); }), "pinyin is loaded");
    typist.Enter(1, center::column::kAccountNumber);
    std::printf("%d accounts; a key until the list is painted, processor time, %d rounds\n", kAccounts,
                rounds);
    const auto pause = [&] { window->Presenter().Names().Prepare(); };
    const std::string word = "7003.";
    std::vector<std::vector<double>> keys(word.size());
    std::vector<double> again;
    std::vector<double> unprepared;
    pause();
    for (int round = 0; round < rounds; ++round) {
        typist.Enter(1 + round % 2, center::column::kAccountNumber);
        for (std::size_t i = 0; i < word.size(); ++i)
            keys[i].push_back(typist.Key(word[i]));
        Require(typist.Shown() == 200, "200 accounts begin with 7003.");
        typist.Escape();
        // Somebody changes something in the account set: the lists are read again.
        session->Execute("update t_VoucherExp set FExplanation = FExplanation where FNumber = '1'");
        typist.Enter(2 - round % 2, center::column::kAccountNumber);
        unprepared.push_back(typist.Key('7'));
        typist.Escape();
        session->Execute("update t_VoucherExp set FExplanation = FExplanation where FNumber = '1'");
        again.push_back(ProcessorMilliseconds(pause));
    }
    Print("lists read again while the user rests", again);
    Print("first key, the account set has changed a moment ago", unprepared);
    Print("first key of a cell", keys[0]);
    for (std::size_t i = 1; i < word.size(); ++i)
        Print((std::string("key ") + std::to_string(i + 1)).c_str(), keys[i]);
    window->close();
    return 0;
}
