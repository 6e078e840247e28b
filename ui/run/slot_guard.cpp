#include "ui/run/slot_guard.h"

#include <new>
#include <string>

#include "automation/error.h"
#include "platform/system/surroundings.h"
#include "store/engine_text.h"

namespace vicenter::ui {

namespace {

constexpr const char* kTitle = "信息提示";

std::string Describe(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const automation::Error& error) {
        std::string text = store::EngineTextInChinese(error.Text());
        if (!error.Source().empty()) text += "\r\n\r\n" + error.Source();
        return text;
    } catch (const std::bad_alloc&) {
        return "内存不足，操作没有完成！";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "未知错误";
    }
}

}  // namespace

void ReportFailure(const std::exception_ptr& failure) noexcept {
    static bool reporting = false;
    if (reporting) return;
    reporting = true;
    try {
        auto& boxes = system::Surroundings::Current().messageBoxes;
        if (boxes) {
            boxes->Show(Describe(failure), system::MessageButtons::Ok, system::MessageIcon::Information,
                        kTitle);
        }
    } catch (...) {
        // Nothing is left to tell it with.
    }
    reporting = false;
}

}  // namespace vicenter::ui
