// Workbook export and import beside the libraries that one would use directly.
//
// Each measurement runs in a process of its own, base and candidate in turn, so that peak memory is that of
// one job alone; the least processor time of the rounds and the largest memory are shown. Every job checks
// its result: the rows or the cells that it handled. Usage: office_bench [lines] [rounds]

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <expat.h>
#include <freexl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xlsxwriter.h>
#include <zip.h>

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "exchange/export_template.h"
#include "exchange/import_template.h"
#include "exchange/template_columns.h"
#include "platform/office/excel_server.h"
#include "platform/office/workbook_file.h"
#include "platform/scripting/file_system_object.h"
#include "tests/fakes/fake_account_set.h"

namespace {

using namespace vicenter;

// A grid's texts, made beforehand as the grid holds them.
class Window : public exchange::ExchangeTarget {
  public:
    explicit Window(std::int32_t lines) : lines_(lines) {
        for (std::int32_t line = 1; line <= lines; ++line) {
            const std::string number = std::to_string(line);
            const std::string values[] = {std::to_string(line % 200 + 1),
                                          "提取备用金 " + std::to_string(line % 5000),
                                          line % 2 ? "借" : "贷",
                                          "1001." + std::to_string(line % 300),
                                          "库存现金科目" + std::to_string(line % 300),
                                          std::to_string(line % 4),
                                          line % 3 ? "支票" : "",
                                          number,
                                          "01.0" + std::to_string(line % 40),
                                          "人民币",
                                          "7." + std::to_string(line % 1000),
                                          std::to_string(line) + ".25",
                                          "公斤",
                                          std::to_string(line % 90),
                                          "3.5",
                                          std::to_string(line % 100000) + "." + std::to_string(line % 100),
                                          "备注" + number};
            for (const std::string& value : values)
                texts_.push_back(value);
        }
        for (std::size_t i = 0; i < exchange::kWorkbookColumnCount; ++i) {
            places_.resize(22);
            places_[static_cast<std::size_t>(exchange::kColumns[i].gridColumn)] = i;
        }
    }
    std::string CurrentTemplateId() const override { return "1"; }
    std::string TemplateName() const override { return "bench"; }
    std::int32_t EntryLineCount() const override { return lines_; }
    std::string EntryText(std::int32_t column, std::int32_t row) const override {
        return Text(row, places_[static_cast<std::size_t>(column)]);
    }
    const std::string& Text(std::int32_t row, std::size_t column) const {
        return texts_[static_cast<std::size_t>(row - 1) * exchange::kWorkbookColumnCount + column];
    }
    void ShowProgress(const std::string&) override {}
    void SetProgressLabel(const std::string&) override {}
    bool ReportRows(std::int64_t, std::int64_t) override { return true; }
    void HideProgress() override {}
    void RebuildTreeAndSelect(std::int32_t) override {}

  private:
    std::int32_t lines_;
    std::vector<std::string> texts_;
    std::vector<std::size_t> places_;
};

void Check(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "wrong result: %s\n", what);
    std::_Exit(3);
}

void PrepareProcess() {
    office::RegisterExcelServer();
    scripting::RegisterScripting();
    entry::PresetPropsString("UserID=1;");
    entry::SetCurrentUserId("1");
}

// --- exporting

void ExportByComponent(Window& window, const std::string& file) {
    Check(exchange::WriteTemplateWorkbook(window, file, false).written, "export");
}

void ExportByLibxlsxwriter(const Window& window, const std::string& file) {
    lxw_workbook* workbook = workbook_new(file.c_str());
    lxw_worksheet* sheet = workbook_add_worksheet(workbook, exchange::kSheetName);
    const auto format = [&](bool text, bool head) {
        lxw_format* result = workbook_add_format(workbook);
        format_set_font_size(result, 10);
        format_set_border(result, LXW_BORDER_THIN);
        if (text) format_set_num_format(result, "@");
        if (head) format_set_bg_color(result, 0x99CCFF);
        return result;
    };
    lxw_format* plain = format(false, false);
    lxw_format* text = format(true, false);
    lxw_format* head = format(false, true);
    for (std::size_t c = 0; c < exchange::kWorkbookColumnCount; ++c) {
        worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(c),
                               std::string(exchange::kColumns[c].header).c_str(), head);
    }
    for (std::int32_t row = 1; row <= window.EntryLineCount(); ++row) {
        for (std::size_t c = 0; c < exchange::kWorkbookColumnCount; ++c) {
            const std::string& value = window.Text(row, c);
            const auto type = exchange::kColumns[c].type;
            const auto r = static_cast<lxw_row_t>(row);
            const auto column = static_cast<lxw_col_t>(c);
            if (type == exchange::CellType::Number || type == exchange::CellType::WholeNumber) {
                double number = 0;
                std::from_chars(value.data(), value.data() + value.size(), number);
                if (number == 0) {
                    worksheet_write_blank(sheet, r, column, plain);
                } else {
                    worksheet_write_number(sheet, r, column, number, plain);
                }
            } else if (value.empty()) {
                worksheet_write_blank(sheet, r, column, plain);
            } else {
                worksheet_write_string(sheet, r, column, value.c_str(), c == 3 ? text : plain);
            }
        }
    }
    Check(workbook_close(workbook) == LXW_NO_ERROR, "libxlsxwriter");
}

// --- reading

void ReadByComponent(const std::string& file, std::int32_t lines) {
    const auto workbook = office::ReadWorkbook(file);
    Check(workbook->Sheets()[0]->Rows().size() == static_cast<std::size_t>(lines) + 1, "rows read");
}

// A table of texts by libzip and expat, as one would write it in an afternoon.
struct TableReader {
    std::vector<std::string> shared;
    std::vector<std::vector<std::string>> rows;
    std::string text;
    bool collecting = false;
    bool sharedCell = false;

    static void Start(void* self, const XML_Char* name, const XML_Char** attributes) {
        auto& reader = *static_cast<TableReader*>(self);
        if (std::strcmp(name, "row") == 0) {
            reader.rows.emplace_back();
        } else if (std::strcmp(name, "c") == 0) {
            reader.sharedCell = false;
            for (; *attributes != nullptr; attributes += 2) {
                if (std::strcmp(attributes[0], "t") == 0)
                    reader.sharedCell = std::strcmp(attributes[1], "s") == 0;
            }
            reader.rows.back().emplace_back();
        } else if (std::strcmp(name, "v") == 0 || std::strcmp(name, "t") == 0) {
            reader.text.clear();
            reader.collecting = true;
        }
    }
    static void End(void* self, const XML_Char* name) {
        auto& reader = *static_cast<TableReader*>(self);
        if (std::strcmp(name, "v") == 0) {
            reader.rows.back().back() = reader.sharedCell
                                            ? reader.shared[std::strtoul(reader.text.c_str(), nullptr, 10)]
                                            : reader.text;
        } else if (std::strcmp(name, "si") == 0) {
            reader.shared.push_back(reader.text);
        }
        reader.collecting = false;
    }
    static void Text(void* self, const XML_Char* data, int length) {
        auto& reader = *static_cast<TableReader*>(self);
        if (reader.collecting) reader.text.append(data, static_cast<std::size_t>(length));
    }
    void Parse(zip_t* archive, const char* name) {
        zip_file_t* part = zip_fopen(archive, name, 0);
        XML_Parser parser = XML_ParserCreate("UTF-8");
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, Start, End);
        XML_SetCharacterDataHandler(parser, Text);
        std::vector<char> buffer(128u << 10);
        for (zip_int64_t count = 1; count > 0;) {
            count = zip_fread(part, buffer.data(), buffer.size());
            XML_Parse(parser, buffer.data(), static_cast<int>(count), count == 0);
        }
        XML_ParserFree(parser);
        zip_fclose(part);
    }
};

void ReadByExpat(const std::string& file, std::int32_t lines) {
    int error = 0;
    zip_t* archive = zip_open(file.c_str(), ZIP_RDONLY, &error);
    TableReader reader;
    reader.Parse(archive, "xl/sharedStrings.xml");
    reader.Parse(archive, "xl/worksheets/sheet1.xml");
    zip_discard(archive);
    Check(reader.rows.size() == static_cast<std::size_t>(lines) + 1, "rows by expat");
}

void ReadByFreexl(const std::string& file, std::int32_t lines) {
    const void* handle = nullptr;
    Check(freexl_open(file.c_str(), &handle) == FREEXL_OK && handle != nullptr, "freexl open");
    Check(freexl_select_active_worksheet(handle, 0) == FREEXL_OK, "freexl sheet");
    unsigned int rows = 0;
    unsigned short columns = 0;
    freexl_worksheet_dimensions(handle, &rows, &columns);
    std::size_t cells = 0;
    for (unsigned int row = 0; row < rows; ++row) {
        for (unsigned short column = 0; column < columns; ++column) {
            FreeXL_CellValue value;
            if (freexl_get_cell_value(handle, row, column, &value) == FREEXL_OK &&
                value.type != FREEXL_CELL_NULL)
                ++cells;
        }
    }
    freexl_close(handle);
    Check(rows == static_cast<unsigned int>(lines) + 1 && cells > 0, "rows by freexl");
}

// The whole import up to the batch's text, which a scripted account set takes.
void ImportByComponent(const std::string& file) {
    fakes::FakeAccountSet set;
    set.Answer("select FID", fakes::Rows({"FID"}, {{1}}));
    Window window(0);
    Check(exchange::ImportTemplateWorkbook(window, file, -1, "bench").written, "import");
    const std::vector<std::string>& statements = set.Statements();
    const auto longest = std::max_element(statements.begin(), statements.end(),
                                          [](const auto& a, const auto& b) { return a.size() < b.size(); });
    Check(longest != statements.end() && longest->size() > 1000, "batch");
}

// --- measuring

struct Figures {
    double milliseconds = 1e300;
    long kilobytes = 0;  // above what the process had before the job
};

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Processor time: what else runs on the machine stays out of it.
double ProcessorMilliseconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

void RunOnce(const std::function<void()>& job, Figures& best) {
    int pipeEnds[2];
    Check(pipe(pipeEnds) == 0, "pipe");
    const pid_t child = fork();
    if (child == 0) {
        const long before = PeakKilobytes();
        const double start = ProcessorMilliseconds();
        job();
        Figures figures;
        figures.milliseconds = ProcessorMilliseconds() - start;
        figures.kilobytes = PeakKilobytes() - before;
        Check(write(pipeEnds[1], &figures, sizeof figures) == sizeof figures, "write");
        std::_Exit(0);
    }
    close(pipeEnds[1]);
    Figures figures;
    int status = 0;
    const bool told = read(pipeEnds[0], &figures, sizeof figures) == sizeof figures;
    close(pipeEnds[0]);
    waitpid(child, &status, 0);
    Check(told && status == 0, "job");
    best.milliseconds = std::min(best.milliseconds, figures.milliseconds);
    best.kilobytes = std::max(best.kilobytes, figures.kilobytes);
}

void Compare(const char* title, int rounds, const std::function<void()>& base,
             const std::function<void()>& candidate, const char* goal) {
    Figures baseFigures;
    Figures ours;
    for (int round = 0; round < rounds; ++round) {
        RunOnce(base, baseFigures);
        RunOnce(candidate, ours);
    }
    std::printf(
        "%-34s base %8.1f ms %7.1f MiB   ours %8.1f ms %7.1f MiB   time x%.2f memory x%.2f   (goal %s)\n",
        title, baseFigures.milliseconds, static_cast<double>(baseFigures.kilobytes) / 1024, ours.milliseconds,
        static_cast<double>(ours.kilobytes) / 1024, ours.milliseconds / baseFigures.milliseconds,
        static_cast<double>(ours.kilobytes) / static_cast<double>(std::max(1L, baseFigures.kilobytes)), goal);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const std::int32_t lines = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 3;
    PrepareProcess();
    const std::string folder = "/tmp/office_bench." + std::to_string(getpid());
    Check(std::system(("mkdir -p " + folder).c_str()) == 0, "folder");
    const std::string theirs = folder + "/theirs.xlsx";
    const std::string xlsx = folder + "/ours.xlsx";
    const std::string xls = folder + "/ours.xls";
    Window window(lines);
    std::printf("%d lines of %zu columns, best of %d rounds\n", lines, exchange::kWorkbookColumnCount,
                rounds);
    Compare(
        "export .xlsx / libxlsxwriter", rounds, [&] { ExportByLibxlsxwriter(window, theirs); },
        [&] { ExportByComponent(window, xlsx); }, "time 0.9 memory 0.5");
    Compare(
        "read .xlsx / libzip + expat", rounds, [&] { ReadByExpat(xlsx, lines); },
        [&] { ReadByComponent(xlsx, lines); }, "time 0.5");
    Compare(
        "read their .xlsx / libzip + expat", rounds, [&] { ReadByExpat(theirs, lines); },
        [&] { ReadByComponent(theirs, lines); }, "time 0.5");
    Compare(
        "import .xlsx / libzip + expat", rounds, [&] { ReadByExpat(xlsx, lines); },
        [&] { ImportByComponent(xlsx); }, "time 1.5, 200 MiB at 100,000");
    if (lines <= 65535) {
        Compare(
            "export .xls / libxlsxwriter .xlsx", rounds, [&] { ExportByLibxlsxwriter(window, theirs); },
            [&] { ExportByComponent(window, xls); }, "time 0.2");
        Compare(
            "read .xls / freexl", rounds, [&] { ReadByFreexl(xls, lines); },
            [&] { ReadByComponent(xls, lines); }, "time 1.5");
    }
    return std::system(("rm -r " + folder).c_str()) == 0 ? 0 : 1;
}
